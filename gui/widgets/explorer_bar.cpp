#include "gui/widgets/explorer_bar.h"

#include <algorithm>

#include "gui/accessible.h"
#include "gui/display_text.h"
#include "gui/icons.h"
#include "gui/widgets/theme_paint.h"
#include "gui/widgets/wrapped_label.h"

namespace {

constexpr const char* kCommandKey = "_cmd";
constexpr int kIconSize = 16;  // pixels
constexpr int kTitleRim = 2;   // pixels above and below a title

constexpr const char* kIconKey = "topic-icon";
constexpr int kIconRoom = kIconSize + 8;

// A band behind the topic's title, so that topics are told apart at a glance. The expander draws
// its arrow and its focus over it.
gboolean GCPaintBand(GtkWidget* expander, GdkEventExpose* event, gpointer) {
    const GtkAllocation& title = gtk_expander_get_label_widget(GTK_EXPANDER(expander))->allocation;
    const GtkStyle* style = gtk_widget_get_style(expander);
    const LCairo cairo = BeginPaint(expander, event);
    const GtkAllocation& place = expander->allocation;
    const int height = title.y + title.height - place.y + kTitleRim;
    AddRoundedRectangle(cairo.get(), place.x, place.y, place.width, height, 4);
    SetPaintColor(cairo.get(), style->bg[GTK_STATE_SELECTED],
                  IsDarkGround(style->base[GTK_STATE_NORMAL]) ? 0.45 : 0.22);
    cairo_fill(cairo.get());
    if (auto* icon = static_cast<GdkPixbuf*>(g_object_get_data(G_OBJECT(expander), kIconKey))) {
        gdk_cairo_set_source_pixbuf(cairo.get(), icon, place.x + place.width - kIconSize - 5,
                                    place.y + (height - kIconSize) / 2.0);
        cairo_paint(cairo.get());
    }
    return FALSE;
}

// An expander gives its title what the title asks for; here that is all the room there is, for
// long titles to be broken into lines.
void GCFitTitle(GtkWidget* expander, GtkAllocation* place, gpointer) {
    GtkWidget* title = gtk_expander_get_label_widget(GTK_EXPANDER(expander));
    int arrow = 0;
    int spacing = 0;
    gtk_widget_style_get(expander, "expander-size", &arrow, "expander-spacing", &spacing, nullptr);
    const int icon = g_object_get_data(G_OBJECT(expander), kIconKey) != nullptr ? kIconRoom : 4;
    const int room = std::max(1, place->width - arrow - 2 * spacing - icon - 4);
    int asked = 0;
    gtk_widget_get_size_request(title, &asked, nullptr);
    if (asked != room)
        gtk_widget_set_size_request(title, room, -1);
}

GtkWidget* NewTitle(const std::string& text) {
    GtkWidget* label = gtk_label_new(text.c_str());
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_misc_set_alignment(GTK_MISC(label), 0, 0.5);
    gtk_misc_set_padding(GTK_MISC(label), 2, kTitleRim);
    PangoAttrList* bold = pango_attr_list_new();
    pango_attr_list_insert(bold, pango_attr_weight_new(PANGO_WEIGHT_BOLD));
    gtk_label_set_attributes(GTK_LABEL(label), bold);
    pango_attr_list_unref(bold);
    return label;
}

}  // namespace

struct LExplorerBarCallbacks {
    static void GCClicked(GtkWidget* button, gpointer bar) {
        auto* self = static_cast<LExplorerBar*>(bar);
        const int command = GPOINTER_TO_INT(g_object_get_data(G_OBJECT(button), kCommandKey));
        const auto send = self->send_;  // the command may take the bar down
        if (send)
            send(command);
    }
    // The keyboard reaches items behind the lower edge, so they must come into view.
    static gboolean GCItemFocus(GtkWidget* button, GdkEventFocus*, gpointer bar) {
        auto* self = static_cast<LExplorerBar*>(bar);
        int x = 0;
        int y = 0;
        if (gtk_widget_translate_coordinates(button, self->box_, 0, 0, &x, &y))
            gtk_adjustment_clamp_page(
                gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(self->bar_)), y,
                y + button->allocation.height);
        return FALSE;
    }
    static void GCItemShown(GtkWidget* button, GParamSpec*, gpointer bar) {
        static_cast<LExplorerBar*>(bar)->ShowTopicOf(button);
    }
    // The view's ground is the theme's for text, which the topics' bands stand out from.
    static void GCStyleSet(GtkWidget* view, GtkStyle* old, gpointer) {
        const GtkStyle* style = gtk_widget_get_style(view);
        if (old == nullptr ||
            !gdk_color_equal(&old->base[GTK_STATE_NORMAL], &style->base[GTK_STATE_NORMAL]))
            gtk_widget_modify_bg(view, GTK_STATE_NORMAL, &style->base[GTK_STATE_NORMAL]);
    }
    static void GCDestroyed(GtkWidget*, gpointer bar) {
        auto* self = static_cast<LExplorerBar*>(bar);
        self->bar_ = nullptr;
        self->topics_.clear();
        self->items_.clear();
    }
};

LExplorerBar::~LExplorerBar() {
    if (bar_ == nullptr)
        return;
    g_signal_handlers_disconnect_matched(bar_, G_SIGNAL_MATCH_DATA, 0, 0, nullptr, nullptr, this);
    for (const Item& item : items_)
        g_signal_handlers_disconnect_matched(item.button, G_SIGNAL_MATCH_DATA, 0, 0, nullptr,
                                             nullptr, this);
}

GtkWidget* LExplorerBar::Create(std::function<void(int command)> send) {
    send_ = std::move(send);
    bar_ = gtk_scrolled_window_new(nullptr, nullptr);
    GtkScrolledWindow* scrolled = GTK_SCROLLED_WINDOW(bar_);
    gtk_scrolled_window_set_policy(scrolled, GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_widget_set_can_focus(bar_, FALSE);  // its topics and items are the stops
    box_ = gtk_vbox_new(FALSE, 4);
    gtk_container_set_border_width(GTK_CONTAINER(box_), 4);
    gtk_scrolled_window_add_with_viewport(scrolled, box_);
    GtkWidget* view = gtk_bin_get_child(GTK_BIN(bar_));
    gtk_viewport_set_shadow_type(GTK_VIEWPORT(view), GTK_SHADOW_NONE);
    g_signal_connect(view, "style-set", G_CALLBACK(LExplorerBarCallbacks::GCStyleSet), nullptr);
    g_signal_connect(bar_, "destroy", G_CALLBACK(LExplorerBarCallbacks::GCDestroyed), this);
    SetAccessibleName(bar_, "Command Bar");
    gtk_widget_show_all(view);
    return bar_;
}

int LExplorerBar::AddTopic(const char* text, int imageNumber) {
    const std::string shown = DisplayText(text);
    GtkWidget* expander = gtk_expander_new(nullptr);
    gtk_expander_set_label_widget(GTK_EXPANDER(expander), NewTitle(shown));
    gtk_expander_set_expanded(GTK_EXPANDER(expander), TRUE);
    gtk_expander_set_spacing(GTK_EXPANDER(expander), 5);
    SetAccessibleName(expander, shown.c_str());
    if (imageNumber >= 0) {
        if (GdkPixbuf* icon = LoadIconAt(imageNumber, kIconSize).Release())
            g_object_set_data_full(G_OBJECT(expander), kIconKey, icon, g_object_unref);
    }
    g_signal_connect(expander, "expose-event", G_CALLBACK(GCPaintBand), nullptr);
    g_signal_connect(expander, "size-allocate", G_CALLBACK(GCFitTitle), nullptr);
    GtkWidget* items = gtk_vbox_new(FALSE, 0);
    gtk_container_add(GTK_CONTAINER(expander), items);
    gtk_box_pack_start(GTK_BOX(box_), expander, FALSE, FALSE, 0);
    gtk_widget_show_all(expander);
    // Seen from its first item on; a show-all of the window must not bring back what is hidden.
    gtk_widget_hide(expander);
    gtk_widget_set_no_show_all(expander, TRUE);
    topics_.push_back({expander, items});
    return static_cast<int>(topics_.size()) - 1;
}

GtkWidget* LExplorerBar::AddItem(int topic, const char* text, const char* tooltip, int command) {
    const Topic* found = TopicAt(topic);
    if (found == nullptr)
        return nullptr;
    const std::string shown = DisplayText(text);
    GtkWidget* button = gtk_button_new();
    gtk_button_set_relief(GTK_BUTTON(button), GTK_RELIEF_NONE);
    GtkWidget* label = NewWrappedLabel(shown.c_str());
    gtk_container_add(GTK_CONTAINER(button), label);
    if (tooltip != nullptr)
        gtk_widget_set_tooltip_text(button, DisplayText(tooltip).c_str());
    SetAccessibleName(button, shown.c_str());
    g_object_set_data(G_OBJECT(button), kCommandKey, GINT_TO_POINTER(command));
    g_signal_connect(button, "clicked", G_CALLBACK(LExplorerBarCallbacks::GCClicked), this);
    g_signal_connect(button, "focus-in-event", G_CALLBACK(LExplorerBarCallbacks::GCItemFocus),
                     this);
    gtk_box_pack_start(GTK_BOX(found->items), button, FALSE, FALSE, 0);
    gtk_widget_show_all(button);
    gtk_widget_show(found->expander);
    gtk_widget_set_no_show_all(button, TRUE);
    items_.push_back({command, topic, button});
    g_signal_connect(button, "notify::visible", G_CALLBACK(LExplorerBarCallbacks::GCItemShown),
                     this);
    return button;
}

const LExplorerBar::Item* LExplorerBar::Find(int command) const {
    const auto found = std::find_if(items_.begin(), items_.end(),
                                    [&](const Item& item) { return item.command == command; });
    return found == items_.end() ? nullptr : &*found;
}

const LExplorerBar::Topic* LExplorerBar::TopicAt(int number) const {
    return number >= 0 && number < static_cast<int>(topics_.size())
               ? &topics_[static_cast<std::size_t>(number)]
               : nullptr;
}

void LExplorerBar::ShowItem(int command, bool shown) {
    if (const Item* item = Find(command))
        gtk_widget_set_visible(item->button, shown);
}

void LExplorerBar::ShowTopicOf(GtkWidget* button) {
    const auto item = std::find_if(items_.begin(), items_.end(),
                                   [&](const Item& each) { return each.button == button; });
    if (item == items_.end())
        return;
    const bool any = std::any_of(items_.begin(), items_.end(), [&](const Item& other) {
        return other.topic == item->topic && gtk_widget_get_visible(other.button);
    });
    gtk_widget_set_visible(TopicAt(item->topic)->expander, any);
}

bool LExplorerBar::IsItemShown(int command) const {
    const Item* item = Find(command);
    return item != nullptr && gtk_widget_get_visible(item->button);
}

void LExplorerBar::SetItemText(int command, const char* text) {
    const Item* item = Find(command);
    if (item == nullptr)
        return;
    const std::string shown = DisplayText(text);
    gtk_label_set_text(GTK_LABEL(gtk_bin_get_child(GTK_BIN(item->button))), shown.c_str());
    SetAccessibleName(item->button, shown.c_str());
}

void LExplorerBar::FoldTopic(int topic, bool folded) {
    if (const Topic* found = TopicAt(topic))
        gtk_expander_set_expanded(GTK_EXPANDER(found->expander), !folded);
}

bool LExplorerBar::IsTopicFolded(int topic) const {
    const Topic* found = TopicAt(topic);
    return found != nullptr && !gtk_expander_get_expanded(GTK_EXPANDER(found->expander));
}
