// How texts come into the window: files and pages that are opened or were open before, and what is
// selected or copied in any program.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "app/commands/command_set.h"
#include "app/commands/command_turn.h"
#include "app/reading/narrator.h"
#include "app/text/document_loading.h"
#include "app/text/recent_list.h"
#include "app/text/selection_watch.h"
#include "app/text/text_pane.h"
#include "gui/main_window/main_window.h"

// GUI thread.
class TextSources {
public:
    enum class FileFrom { kUser, kElsewhere };
    struct Listener {
        std::function<void()> changed;  // Available() is another one
        std::function<void()> filed;    // the text is another file's
        std::function<void()> opened;   // a file that the user chose
        // A file from elsewhere cannot be read: nobody may be there to see it.
        std::function<void(const std::string& note)> unreadable;
        std::function<void()> readable;  // that was told, and another file is here
        std::function<std::string(const std::string& path)> labelOf;  // among the recent files
        // More of the document has come behind the window's text; isAll: nothing else will.
        std::function<void(const std::string& more, bool isAll)> grown;
    };
    // All are borrowed. The narrator's texts wait for the window.
    TextSources(LMainWindow& window, CommandTurn& turn, TextPane& text, Narrator& narrator,
                CommandPlaces& places, Listener listener);
    TextSources(const TextSources&) = delete;
    TextSources& operator=(const TextSources&) = delete;

    void AddCommands(CommandSet& commands);
    CommandNeeds Available() const { return selection_.HasText() ? kNeedsSelection : 0; }

    // False: unreadable, which is told, or cancelled; the text stays.
    bool LoadFile(const std::string& path, FileFrom from = FileFrom::kUser,
                  bool isWholePage = false);
    bool OpenFile();                       // likewise, after a chooser
    std::string ChooseFile();              // empty: cancelled
    void ShowRecent() { recent_.Show(); }  // once the menus are there

    // Then runs from the main loop, once the text is there or there is none, unless the text was
    // changed meanwhile. One at a time.
    void Fetch(std::function<void(const std::string& text)> then,
               SelectionWatch::From from = SelectionWatch::From::kNewest);
    // What was fetched comes into the window; of a web address alone, its page. False, and the text
    // stays: nothing was fetched, the page was cancelled, or it cannot be read, which is told.
    bool Take(const std::string& text, FileFrom from = FileFrom::kUser);
    // Fetches and takes. Where nothing is selected or copied, that is the text
    // that was there.
    void UpdateThen(std::function<void()> then);
    void DropFetch() { selection_.DropFetch(); }
    unsigned int Offered() const { return selection_.Offered(); }  // selection_watch.h

    // Of a document that is still coming: waits for the rest under a dialog, and asks where only a
    // part of it is here. False: the user does not want that, or has closed the window.
    bool AwaitAll();
    bool IsComing() const { return rest_ && !IsRestOfAnother(); }
    // Where only a part of the document is here and nothing more will come, says so.
    void TellIfPart();

    void EvTextChanged();
    void WasSavedAs(const std::string& path);

private:
    void CmCopyFromClipboard();
    void CmOpenFile() { OpenFile(); }
    void CmWholePage();
    void TellUnreadable(const std::string& path, const std::string& problem, FileFrom from);
    void NoteFile(const std::string& path);
    void EvMore(const Document& more, bool isAll);
    void DropRest();
    bool WantsPart();
    bool IsRestOfAnother() const {
        return rest_ && (text_.IsEmpty() || text_.Generation() != restOf_);
    }

    LMainWindow& window_;
    CommandTurn& turn_;
    TextPane& text_;
    Narrator& narrator_;
    const Listener listener_;
    SelectionWatch selection_;
    std::unique_ptr<DocumentRest> rest_;  // of the text in the window; null: it is all there
    unsigned int restOf_ = 0;             // TextPane::Generation
    RecentList recent_;
    bool isTakingFromElsewhere_ = false;
    bool isUnreadableTold_ = false;
};
