#include "gui/widgets/paint_control.h"

#include "gui/widgets/theme_paint.h"

struct LPaintControlCallbacks {
    static gboolean GCExpose(GtkWidget* area, GdkEventExpose* event, gpointer control) {
        const LCairo cairo = BeginPaint(area, event);
        static_cast<LPaintControl*>(control)->Paint(cairo.get(), event->area);
        GtkWidget* front = GTK_IS_BIN(area) ? gtk_bin_get_child(GTK_BIN(area)) : nullptr;
        if (front != nullptr)
            gtk_container_propagate_expose(GTK_CONTAINER(area), front, event);
        return TRUE;
    }
    // A drawing area is told of its size by an event, what holds another widget is not.
    static void GCAllocated(GtkWidget*, GtkAllocation* place, gpointer control) {
        static_cast<LPaintControl*>(control)->EvSize(place->width, place->height);
    }
    static gboolean GCConfigure(GtkWidget*, GdkEventConfigure* event, gpointer control) {
        static_cast<LPaintControl*>(control)->EvSize(event->width, event->height);
        return FALSE;
    }
    static gboolean GCButtonPress(GtkWidget*, GdkEventButton* event, gpointer control) {
        return event->type == GDK_BUTTON_PRESS && event->button == 1 &&
               static_cast<LPaintControl*>(control)->EvPointer(static_cast<int>(event->x),
                                                               static_cast<int>(event->y));
    }
    static gboolean GCMotion(GtkWidget*, GdkEventMotion* event, gpointer control) {
        const bool wanted = (event->state & GDK_BUTTON1_MASK) != 0 &&
                            static_cast<LPaintControl*>(control)->EvPointer(
                                static_cast<int>(event->x), static_cast<int>(event->y));
        gdk_event_request_motions(event);
        return wanted;
    }
    static void GCDestroyed(GtkWidget*, gpointer control) {
        static_cast<LPaintControl*>(control)->area_ = nullptr;
    }
};

LPaintControl::~LPaintControl() {
    if (area_ != nullptr)
        g_signal_handlers_disconnect_matched(area_, G_SIGNAL_MATCH_DATA, 0, 0, nullptr, nullptr,
                                             this);
}

void LPaintControl::Attach(GtkWidget* area) {
    area_ = area;
    gtk_widget_add_events(
        area, GDK_BUTTON_PRESS_MASK | GDK_BUTTON1_MOTION_MASK | GDK_POINTER_MOTION_HINT_MASK);
    g_signal_connect(area, "expose-event", G_CALLBACK(LPaintControlCallbacks::GCExpose), this);
    if (GTK_IS_BIN(area))
        g_signal_connect(area, "size-allocate", G_CALLBACK(LPaintControlCallbacks::GCAllocated),
                         this);
    else
        g_signal_connect(area, "configure-event", G_CALLBACK(LPaintControlCallbacks::GCConfigure),
                         this);
    g_signal_connect(area, "button-press-event", G_CALLBACK(LPaintControlCallbacks::GCButtonPress),
                     this);
    g_signal_connect(area, "motion-notify-event", G_CALLBACK(LPaintControlCallbacks::GCMotion),
                     this);
    g_signal_connect(area, "destroy", G_CALLBACK(LPaintControlCallbacks::GCDestroyed), this);
}

int LPaintControl::Width() const {
    return area_ != nullptr ? area_->allocation.width : 0;
}

int LPaintControl::Height() const {
    return area_ != nullptr ? area_->allocation.height : 0;
}

void LPaintControl::Invalidate(int left, int width) {
    if (area_ != nullptr)
        gtk_widget_queue_draw_area(area_, left, 0, width, Height());
}

void LPaintControl::Invalidate() {
    Invalidate(0, Width());
}

void LPaintControl::EvSize(int, int) {}

bool LPaintControl::EvPointer(int, int) {
    return false;
}
