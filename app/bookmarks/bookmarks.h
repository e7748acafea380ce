// Places of the text that its reader marks, and goes back to.
#pragma once

#include <gtk/gtk.h>

#include <cstddef>
#include <functional>
#include <string>

#include "app/commands/command_set.h"
#include "app/reading/kept_bookmarks.h"
#include "app/reading/narrator.h"
#include "app/text/text_pane.h"

// Of the document in the window; one for all texts that are in no file. GUI thread; all that is
// handed over outlives this object.
class Bookmarks {
public:
    struct Parts {
        TextPane& text;
        Narrator& narrator;
        CommandSet& commands;
        std::function<GtkWidget*()> parent;            // of the list
        std::function<bool(const GtkTextIter&)> goOn;  // with what is read, if it is there
        std::function<void(const char*)> tell;
    };
    explicit Bookmarks(Parts parts) : parts_(std::move(parts)) {}
    Bookmarks(const Bookmarks&) = delete;
    Bookmarks& operator=(const Bookmarks&) = delete;

    void AddCommands();

private:
    void CmSet();
    void CmList();
    TextToRead Here() const;
    std::string Key() const;
    bool MayKeep() const;
    void GoTo(const Bookmark& bookmark);
    void Tell(const std::string& text) const { parts_.tell(text.c_str()); }

    const Parts parts_;
};
