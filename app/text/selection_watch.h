// What other programs offer as text: what is selected in any of them, and what was copied.
#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <memory>
#include <string>

// Asks the owners without waiting for them: one that hangs leaves what was known. A selection in
// this program's own windows does not count. GUI thread; the display must be open.
class SelectionWatch {
public:
    // changed: from the main loop, whenever HasText is another one.
    explicit SelectionWatch(const std::function<void()>& changed);
    ~SelectionWatch();
    SelectionWatch(const SelectionWatch&) = delete;
    SelectionWatch& operator=(const SelectionWatch&) = delete;

    bool HasText() const;
    // Counts the texts that were offered by now: another number, another text. Where the display
    // does not tell of new owners, each may be another one.
    unsigned int Offered() const;

    enum class From { kNewest, kSelection, kClipboard };
    // Asks for the text that was selected or copied last, or for one of both. taken: from the main
    // loop, once, with the text, empty where there is none; never once the request was dropped or
    // this object is gone. False, and nothing happens: a request is under way already.
    bool Fetch(std::function<void(const std::string&)> taken, From from = From::kNewest);
    void DropFetch();

private:
    struct Source {
        GdkAtom selection;
        GtkClipboard* clipboard;  // the display's
        // Where the display does not tell of new owners, there may always be one.
        bool hasText = true;
        guint32 since = 0;  // server time at which its owner got it; 0: not known
    };
    // Shared with the requests that are under way, which may outlive the watch.
    struct Sources {
        Source sources[2];  // the selection before the clipboard
        std::function<void()> changed;
        std::function<void(const std::string&)> taken;  // null: no request is under way
        unsigned int request = 0;                       // counts them
        unsigned int offered = 0;                       // likewise, texts
        bool tells = false;                             // the display, of new owners
    };
    struct Asked {
        std::weak_ptr<Sources> sources;
        int index;
        unsigned int request;  // of a fetch
        bool isLast;           // no other one is asked after it
    };
    static void GCOwnerChanged(GtkClipboard* clipboard, GdkEvent* event, gpointer watch);
    static void GCTargets(GtkClipboard* clipboard, GdkAtom* targets, gint count, gpointer asked);
    static void GCTime(GtkClipboard* clipboard, GtkSelectionData* data, gpointer asked);
    static void GCText(GtkClipboard* clipboard, const char* text, gpointer asked);
    void Ask(int index);
    void RequestText(int index, bool isLast);

    std::shared_ptr<Sources> shared_;
};
