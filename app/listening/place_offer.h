// A bar below the text that offers to go on where the listener stopped.
#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <string>

// GUI thread. Owns no widget: the window does.
class PlaceOffer {
public:
    struct Listener {
        std::function<void()> reshaped;  // it has come or gone
        std::function<void()> goOn;      // pressed, once it has gone
        std::function<void()> beginAnew;
    };
    explicit PlaceOffer(Listener listener) : listener_(std::move(listener)) {}
    PlaceOffer(const PlaceOffer&) = delete;
    PlaceOffer& operator=(const PlaceOffer&) = delete;

    GtkWidget* Create();  // once; floating
    void Open(const std::string& text);
    void Close();
    bool IsOpen() const { return isOpen_; }

private:
    static void GCGoOn(GtkWidget* button, gpointer self);
    static void GCBeginAnew(GtkWidget* button, gpointer self);

    const Listener listener_;
    GtkWidget* label_ = nullptr;
    bool isOpen_ = false;
};
