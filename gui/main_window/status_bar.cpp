#include "gui/main_window/status_bar.h"

#include <algorithm>
#include <utility>

#include "gui/accessible.h"
#include "gui/display_text.h"
#include "gui/gtk_children.h"
#include "gui/widgets/ticking_text.h"

LStatusBar::~LStatusBar() {
    if (bar_ != nullptr)
        g_object_remove_weak_pointer(G_OBJECT(bar_), reinterpret_cast<gpointer*>(&bar_));
}

GtkWidget* LStatusBar::CreateStatusBar() {
    if (bar_ != nullptr)
        g_object_remove_weak_pointer(G_OBJECT(bar_), reinterpret_cast<gpointer*>(&bar_));
    bar_ = gtk_statusbar_new();
    g_object_add_weak_pointer(G_OBJECT(bar_), reinterpret_cast<gpointer*>(&bar_));
    gtk_statusbar_set_has_resize_grip(GTK_STATUSBAR(bar_), TRUE);
    // While a text is read it changes each second, for which the bar's own label is no good.
    GtkWidget* message = gtk_statusbar_get_message_area(GTK_STATUSBAR(bar_));
    GtkWidget* label = LGtkChildren(message).First();
    gtk_widget_set_no_show_all(label, TRUE);
    gtk_widget_hide(label);
    line_ = NewTickingText(0);
    gtk_box_pack_start(GTK_BOX(message), line_, TRUE, TRUE, 0);
    // At least this high; a size request of the bar itself would cut off large letters.
    GtkWidget* strut = gtk_vbox_new(FALSE, 0);
    gtk_widget_set_size_request(strut, 0, kHeight);
    gtk_box_pack_end(GTK_BOX(bar_), strut, FALSE, FALSE, 0);
    gtk_widget_show_all(bar_);  // what is not shown takes no height
    return bar_;
}

int LStatusBar::GetStatusBarHeight() const {
    GtkRequisition size{};
    if (bar_ != nullptr)
        gtk_widget_size_request(bar_, &size);
    return std::max(kHeight, size.height);
}

void LStatusBar::AddToStatusBar(GtkWidget* widget) {
    gtk_widget_set_no_show_all(widget, TRUE);
    gtk_box_pack_end(GTK_BOX(bar_), widget, FALSE, FALSE, 0);
}

void LStatusBar::SetStatusText(const char* text) {
    if (bar_ == nullptr)
        return;
    const std::string shown = DisplayText(text);
    if (shown == TickingTextOf(line_))
        return;
    SetTickingText(line_, shown, shown);
    SetAccessibleName(bar_, shown.c_str());
}

void LStatusBar::TellStatusText(const char* text) {
    constexpr unsigned int kMoment = 400;  // milliseconds
    SetStatusText(text);
    SayBesideStatus(std::exchange(untold_, text).c_str());
    telling_.Start(kMoment, [this] { SayBesideStatus(std::exchange(untold_, "").c_str()); });
}

void LStatusBar::SayBesideStatus(const char* text) {
    if (bar_ != nullptr && *text != '\0')
        TellScreenReader(bar_, DisplayText(text).c_str());
}
