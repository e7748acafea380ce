// The bar below the text box that finds words in it.
#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <string>

#include "app/text/long_lines.h"

// Owns no widget: the window does. GUI thread.
class FindBar {
public:
    // tell: a sentence for the user. reshaped: the bar wants its place, or has left it.
    FindBar(std::function<void(const char*)> tell, std::function<void()> reshaped)
        : tell_(std::move(tell)), reshaped_(std::move(reshaped)) {}
    FindBar(const FindBar&) = delete;
    FindBar& operator=(const FindBar&) = delete;

    // A new bar (floating), once. View and lines, which are those of its buffer, are borrowed and
    // outlive what is found.
    GtkWidget* Create(GtkTextView* view, const LongLines& lines, const char* nextTip);

    void Open();  // with the keyboard in it, and what is selected, when that is a word or a few
    bool IsOpen() const { return isOpen_; }
    bool HasKeyboard() const;
    void Close();
    // Selects the next place and gives the text box the keyboard; at the end of the text goes on
    // from its beginning, and says so.
    void FindNext();

private:
    static void GCFind(GtkWidget* widget, gpointer self);
    static void GCClose(GtkWidget* widget, gpointer self);
    std::string SelectedWords() const;

    std::function<void(const char*)> tell_;
    std::function<void()> reshaped_;
    GtkTextView* view_ = nullptr;
    const LongLines* lines_ = nullptr;
    GtkWidget* entry_ = nullptr;
    bool isOpen_ = false;
};
