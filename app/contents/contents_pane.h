// The contents of the document beside its text, and the ways to its chapters, headings and pages.
#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <optional>

#include "app/commands/command_set.h"
#include "app/contents/contents_tree.h"
#include "app/reading/narrator.h"
#include "app/text/text_pane.h"
#include "gui/gui_timer.h"

// A receiver of the narrator's news: the entry that is heard is shown in it. GUI thread; all that
// is handed over outlives this object, the window owns the widgets.
class ContentsPane {
public:
    struct Parts {
        TextPane& text;
        Narrator& narrator;
        CommandSet& commands;
        std::function<bool(const GtkTextIter&)> goOnAt;  // false: the text there is not read
        std::function<void(const GtkTextIter&)> readFrom;
        std::function<bool()> isWhole;          // what is read: all of the text
        std::function<void(const char*)> tell;  // a sentence for the user
        std::function<void()> reshaped;         // it wants its place, or has left it
    };
    explicit ContentsPane(Parts parts);
    ContentsPane(const ContentsPane&) = delete;
    ContentsPane& operator=(const ContentsPane&) = delete;

    GtkWidget* Create() { return widget_ = tree_.Create(); }  // with scroll bars; floating; once
    GtkWidget* Tree() const { return tree_.Tree(); }
    void AddCommands();
    CommandNeeds Available() const;
    bool IsWanted() const;             // there is something to show, and the user wants to see it
    bool EvKeyDown(unsigned int key);  // true: nobody else is to have it

private:
    void TakeStructure();
    void Hear(const ReadingNews& news);
    void GoTo(std::size_t entry);
    void CmShow();
    void CmGoTo();
    void CmGoToPage();
    std::size_t PageNow() const;

    const Parts parts_;
    ContentsTree tree_;
    GtkWidget* widget_ = nullptr;
    bool hasContents_ = false;  // as the window has it
    bool isOurs_ = false;       // what is read: the document as it stands there
    LGuiTimer filling_;
    Narrator::Subscription news_;
};
