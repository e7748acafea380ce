// Shows that a reading waits for its engine, once that takes long enough to be noticed.
#pragma once

#include <gtk/gtk.h>

#include <functional>

#include "app/reading/narrator.h"

// A receiver of the narrator's news; it keeps nobody from using the windows. Its Cancel, Escape and
// closing it stop the reading. GUI thread.
class ReadingWaitBox {
public:
    // parent: the window that it belongs to when it comes, null for none.
    ReadingWaitBox(Narrator& narrator, std::function<GtkWidget*()> parent);
    ~ReadingWaitBox();
    ReadingWaitBox(const ReadingWaitBox&) = delete;
    ReadingWaitBox& operator=(const ReadingWaitBox&) = delete;

private:
    void Hear(const ReadingNews& news);
    void Show();
    void Close();
    void ShowWhatFor();
    void Pulse();
    static void GCResponse(GtkDialog* box, gint response, gpointer self);

    Narrator& narrator_;
    const std::function<GtkWidget*()> parent_;
    // All three are gone, and null, while it is not shown.
    GtkWidget* box_ = nullptr;
    GtkWidget* label_ = nullptr;
    GtkWidget* bar_ = nullptr;
    LGuiTimer patience_;
    LGuiTimer pulse_;
    Narrator::Subscription news_;
};
