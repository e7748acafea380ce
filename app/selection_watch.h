// Knows whether text can be fetched from other programs: what is selected in any of them, or what
// was copied.
#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <memory>

// Asks the owners without waiting for them: one that hangs leaves what was known. GUI thread; the
// display must be open.
class SelectionWatch {
public:
    // changed: from the main loop, whenever the answer is another one.
    explicit SelectionWatch(const std::function<void()>& changed);
    ~SelectionWatch();
    SelectionWatch(const SelectionWatch&) = delete;
    SelectionWatch& operator=(const SelectionWatch&) = delete;

    bool HasText() const { return sources_[0]->hasText || sources_[1]->hasText; }

private:
    // Shared with the requests that are under way, which may outlive the watch.
    struct Source {
        GtkClipboard* clipboard;  // the display's
        std::function<void()> changed;
        // Where the display does not tell of new owners, there may always be one.
        bool hasText = true;
    };
    static void GCOwnerChanged(GtkClipboard* clipboard, GdkEvent* event, gpointer watch);
    static void GCTargets(GtkClipboard* clipboard, GdkAtom* targets, gint count, gpointer request);
    static void Ask(const std::shared_ptr<Source>& source);

    std::shared_ptr<Source> sources_[2];
};
