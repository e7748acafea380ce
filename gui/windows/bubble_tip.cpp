#include "gui/windows/bubble_tip.h"

#include <algorithm>

#include "gui/accessible.h"
#include "gui/display_text.h"
#include "gui/monitor.h"

namespace {

constexpr int kBubbleShownMs = 6000;

GtkWidget* NewTipContent(const char* title, const char* text) {
    GtkWidget* box = gtk_vbox_new(FALSE, 4);
    gtk_container_set_border_width(GTK_CONTAINER(box), 8);
    GtkWidget* heading = gtk_label_new(nullptr);
    char* markup = g_markup_printf_escaped("<b>%s</b>", DisplayText(title).c_str());
    gtk_label_set_markup(GTK_LABEL(heading), markup);
    g_free(markup);
    gtk_box_pack_start(GTK_BOX(box), heading, FALSE, FALSE, 0);
    GtkWidget* label = gtk_label_new(DisplayText(text).c_str());
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_box_pack_start(GTK_BOX(box), label, FALSE, FALSE, 0);
    GtkWidget* frame = gtk_frame_new(nullptr);
    gtk_container_add(GTK_CONTAINER(frame), box);
    return frame;
}

// Beside the control's window, level with the control: what has to be done about the message is
// done in that window, often in the next control. Where the screen ends, just below the control.
void PlacePopUp(GtkWidget* popUp, GtkWidget* control) {
    GdkWindow* window = control != nullptr ? gtk_widget_get_window(control) : nullptr;
    if (window == nullptr) {
        gtk_window_set_position(GTK_WINDOW(popUp), GTK_WIN_POS_CENTER);
        return;
    }
    int x = 0;
    int y = 0;
    gdk_window_get_origin(window, &x, &y);
    GtkAllocation place;
    gtk_widget_get_allocation(control, &place);
    if (!gtk_widget_get_has_window(control)) {
        x += place.x;
        y += place.y;
    }
    GtkRequisition size;
    gtk_widget_size_request(popUp, &size);
    const GdkRectangle monitor = MonitorOf(control);
    const int right = monitor.x + monitor.width - size.width;
    GdkRectangle frame;
    gdk_window_get_frame_extents(gdk_window_get_toplevel(window), &frame);
    if (frame.x + frame.width <= right) {
        x = frame.x + frame.width;
    } else if (frame.x - size.width >= monitor.x) {
        x = frame.x - size.width;
    } else {
        x = std::min(x, right);
        y += place.height;
    }
    x = std::max(monitor.x, x);
    y = std::max(monitor.y, std::min(y, monitor.y + monitor.height - size.height));
    gtk_window_move(GTK_WINDOW(popUp), x, y);
}

}  // namespace

struct LBubbleTipCallbacks {
    static gboolean GCClick(GtkWidget*, GdkEventButton*, gpointer tip) {
        static_cast<LBubbleTip*>(tip)->Hide();
        return TRUE;
    }
    static void GCDestroyed(GtkWidget*, gpointer tip) {
        static_cast<LBubbleTip*>(tip)->popUp_ = nullptr;
    }
};

void LBubbleTip::Show(GtkWidget* control, const char* title, const char* text) {
    Hide();
    popUp_ = gtk_window_new(GTK_WINDOW_POPUP);
    gtk_window_set_type_hint(GTK_WINDOW(popUp_), GDK_WINDOW_TYPE_HINT_NOTIFICATION);
    // A screen reader says what comes up in this role, and only in this, although the focus is
    // elsewhere.
    atk_object_set_role(gtk_widget_get_accessible(popUp_), ATK_ROLE_NOTIFICATION);
    SetAccessibleName(popUp_, DisplayText(text).c_str());
    GtkWidget* content = NewTipContent(title, text);
    gtk_widget_show_all(content);
    gtk_container_add(GTK_CONTAINER(popUp_), content);
    gtk_widget_add_events(popUp_, GDK_BUTTON_PRESS_MASK);
    g_signal_connect(popUp_, "button-press-event", G_CALLBACK(LBubbleTipCallbacks::GCClick), this);
    g_signal_connect(popUp_, "destroy", G_CALLBACK(LBubbleTipCallbacks::GCDestroyed), this);
    PlacePopUp(popUp_, control);
    gtk_widget_show_all(popUp_);
    timer_.Start(kBubbleShownMs, [this] { Hide(); });
}

void LBubbleTip::Hide() {
    timer_.Stop();
    if (popUp_ != nullptr)
        gtk_widget_destroy(popUp_);  // the "destroy" handler forgets it
}
