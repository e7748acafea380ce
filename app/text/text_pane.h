// The text box of the main window and what belongs to it: long lines, undoing, finding, the size of
// the letters, what is dropped on it, where a reading begins, and the stretch that is being heard.
#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

#include "app/commands/command_set.h"
#include "app/text/document_structure.h"
#include "app/text/drop_target.h"
#include "app/text/find_bar.h"
#include "app/text/kept_text.h"
#include "app/text/long_lines.h"
#include "app/text/original_text.h"
#include "app/text/reading_start.h"
#include "app/text/spoken_highlight.h"
#include "app/text/text_clicks.h"
#include "app/text/text_history.h"
#include "app/text/text_size.h"
#include "documents/document.h"

struct LEditWidgets;

// Owns no widget: the window does. GUI thread.
class TextPane {
public:
    // All from the main loop, and never before the widgets are there.
    struct Listener {
        std::function<void(const char*)> tell;  // a sentence for the user
        std::function<void()> reshaped;         // the find bar has come or gone
        std::function<void(const std::vector<std::string>&)> dropped;  // files, pages
        std::function<void()> changed;                                 // the text, by whomever
        std::function<void()> renamed;     // Title() is another, with the text that came back
        std::function<void()> startMoved;  // Start() may be another now
        TextClicks::Listener clicks;
    };
    explicit TextPane(Listener listener);
    TextPane(const TextPane&) = delete;
    TextPane& operator=(const TextPane&) = delete;

    // Once, in this order; the widgets are floating. Window and widgets end before this object.
    LEditWidgets NewTextBox();
    GtkWidget* NewFindBar(const CommandSet& commands);
    void TakeDrops(GtkWidget* window);

    void AddCommands(CommandSet& commands);  // of editing
    CommandNeeds Available() const;          // text, undo, redo
    // Escape in the find bar closes it. True: nobody else is to have the key.
    bool EvKeyDown(unsigned int key);
    bool IsFindOpen() const { return find_.IsOpen(); }

    bool IsEmpty() const;
    // As it was given, whatever is broken for showing.
    std::string Text() const { return lines_.Text(); }
    // These replace all text, as one step to be undone.
    // isPart: more of the document will come.
    void TakeFile(const Document& document, const std::string& path, bool isPart = false);
    void TakeFromProgram(const std::string& text);  // selected or copied there, or dropped
    // What has come of the document in the meantime, behind the text and in the same step. What the
    // user edited stays, and so does the cursor.
    void TakeMore(const Document& more, bool isPart);
    // Another one for each text that replaced all text; the same again when it is brought back.
    unsigned int Generation() const { return generation_; }
    // Where the text is from and, later, is kept; empty: in no file.
    const std::string& File() const { return kept_.File(); }
    bool IsKept() const { return kept_.IsKept(); }
    void WasSavedAs(const std::string& path);
    void KeepNow() { kept_.KeepNow(); }  // for the next start
    // What the document calls itself, else its file's name; empty: it is none.
    std::string Title() const;
    DocumentStructure& Structure() { return structure_; }
    const DocumentStructure& Structure() const { return structure_; }
    void GoTo(const GtkTextIter& place);  // the cursor, with what follows in view
    void TakeKeyboard() { gtk_widget_grab_focus(GTK_WIDGET(view_)); }
    const ReadingStart& Start() const { return start_; }
    GtkTextIter PlaceCursor(std::size_t byte);  // of the text; it comes into view
    std::string WordAtCursor() const;           // or what is selected; may be empty
    SpokenHighlight& Highlight() { return highlight_; }

private:
    void Replace(const std::string& text);
    TextFacts Facts() const;
    void TakeBack(const TextFacts& facts, bool isWhole);
    void EvTextChanged();
    void CmUndo();
    void CmRedo();
    void CmFind();
    void CmFindNext();
    void CmLarger() { TellSize(size_.Larger()); }
    void CmSmaller() { TellSize(size_.Smaller()); }
    void CmNormalSize() { TellSize(size_.Normal()); }
    void ShowCursor();
    void TellSize(int points) const;
    static void GCPasted(GtkTextBuffer* buffer, GtkClipboard* from, gpointer self);

    Listener listener_;
    GtkTextView* view_ = nullptr;
    GObjectRef<GtkTextBuffer> buffer_;  // outlives the window, which may close within a command
    LongLines lines_;
    TextHistory history_;
    KeptText kept_;
    TextSize size_;
    bool isArticle_ = false;
    bool isGrowing_ = false;  // what changes is what comes of the document
    unsigned int generation_ = 0;
    unsigned int generations_ = 0;
    SpokenHighlight highlight_;
    ReadingStart start_;
    TextClicks clicks_;
    DocumentStructure structure_;
    OriginalText original_;
    FindBar find_;
    DropTarget drop_;
    LSignalOwner pasted_;
};
