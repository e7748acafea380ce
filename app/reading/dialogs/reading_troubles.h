// Tells the user what went wrong with a reading.
#pragma once

#include <gtk/gtk.h>

#include <functional>

#include "app/reading/narrator.h"

// A receiver of the narrator's news, with boxes from the main loop. GUI thread.
class ReadingTroubles {
public:
    struct Help {
        std::function<GtkWidget*()> parent;                      // of a box
        std::function<void()> noVoice = {};                      // tells that, and what to do
        std::function<void(GtkWidget* parent)> cannotPlay = {};  // after the box about it
    };
    ReadingTroubles(Narrator& narrator, Help help);

private:
    void Hear(const ReadingNews& news);
    void Show(const ReadingNews& news) const;

    const Help help_;
    LGuiTimer soon_;
    Narrator::Subscription news_;
};
