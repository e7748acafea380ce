#include "gui/main_window/tool_bar.h"

#include "foundation/settings/hosts.h"
#include "gui/accessible.h"
#include "gui/content_box.h"
#include "gui/control_focus.h"
#include "gui/display_text.h"
#include "gui/gtk_children.h"
#include "gui/icons.h"
#include "gui/windows/window.h"

namespace {

constexpr guint kBorder = 5;  // pixels

void GCToolItemClicked(GtkWidget* item, gpointer host) {
    HostOf(host).WMCommand(StoredCommand(item, "_cmd"));
}

// The pointer opens a menu by pressing, so that it can go on to the item; the keyboard by clicking.
gboolean GCArrowPressed(GtkWidget* arrow, GdkEventButton* event, gpointer host) {
    if (event->type != GDK_BUTTON_PRESS || event->button != 1)
        return FALSE;
    GCToolItemClicked(arrow, host);
    return TRUE;
}

GtkToolItem* NewToolItem(LToolBar::ToolBarItem::Kind kind, GtkWidget* image, const char* label) {
    if (kind != LToolBar::ToolBarItem::kToggle)
        return gtk_tool_button_new(image, label);
    GtkToolItem* item = gtk_toggle_tool_button_new();
    gtk_tool_button_set_icon_widget(GTK_TOOL_BUTTON(item), image);
    gtk_tool_button_set_label(GTK_TOOL_BUTTON(item), label);
    return item;
}

void NameToolItem(GtkToolItem* item, const char* name) {
    SetAccessibleName(GTK_WIDGET(item), name);
    if (GtkWidget* button = gtk_bin_get_child(GTK_BIN(item)))
        SetAccessibleName(button, name);
}

}  // namespace

LToolBar::~LToolBar() {
    if (bar_ != nullptr)
        g_object_remove_weak_pointer(G_OBJECT(bar_), reinterpret_cast<gpointer*>(&bar_));
}

void LToolBar::_SetToolBar(LWindow& window, std::span<const ToolBarItem> items, int iconSize,
                           int placeholderId) {
    GtkWidget* placeholder =
        placeholderId != kNoPlaceholder ? window.GetControlByID(placeholderId) : nullptr;
    if (placeholder == nullptr && ContentBox(window.Widget()) == nullptr)
        return;
    if (bar_ != nullptr)
        gtk_widget_destroy(bar_);
    window_ = &window;
    bar_ = gtk_toolbar_new();
    g_object_add_weak_pointer(G_OBJECT(bar_), reinterpret_cast<gpointer*>(&bar_));
    gtk_container_set_border_width(GTK_CONTAINER(bar_), kBorder);
    gtk_toolbar_set_orientation(GTK_TOOLBAR(bar_), GTK_ORIENTATION_HORIZONTAL);
    gtk_toolbar_set_tooltips(GTK_TOOLBAR(bar_), TRUE);
    for (const ToolBarItem& item : items) {
        GtkWidget* image =
            item.kind == ToolBarItem::kDelete
                ? gtk_image_new_from_stock(GTK_STOCK_DELETE, GTK_ICON_SIZE_LARGE_TOOLBAR)
                : NewIconImageAt(item.image, iconSize);
        Add(item, image);
    }
    Place(placeholder, placeholderId);
    gtk_widget_show_all(bar_);
}

void LToolBar::Place(GtkWidget* placeholder, int placeholderId) {
    atTop_ = placeholder == nullptr;
    GtkToolbar* bar = GTK_TOOLBAR(bar_);
    gtk_toolbar_set_style(bar, atTop_ ? GTK_TOOLBAR_BOTH : GTK_TOOLBAR_ICONS);
    gtk_toolbar_set_show_arrow(bar, atTop_);
    if (atTop_) {
        GtkWidget* content = ContentBox(window_->Widget());
        gtk_box_pack_start(GTK_BOX(content), bar_, FALSE, FALSE, 0);
        // A menu bar stays above it.
        const bool belowMenu = window_->GetMenuBarHeight() > 0;
        gtk_box_reorder_child(GTK_BOX(content), bar_, belowMenu ? 1 : 0);
        return;
    }
    gtk_widget_set_size_request(bar_, 60, 50);
    ReplaceWidget(placeholder, bar_);
    window_->SetControlID(bar_, placeholderId);
}

void LToolBar::AddSeparator(bool expanding) {
    GtkToolItem* item = gtk_separator_tool_item_new();
    gtk_separator_tool_item_set_draw(GTK_SEPARATOR_TOOL_ITEM(item), !expanding);
    gtk_tool_item_set_expand(item, expanding);
    gtk_toolbar_insert(GTK_TOOLBAR(bar_), item, -1);
}

void LToolBar::Add(const ToolBarItem& row, GtkWidget* image) {
    if (row.kind == ToolBarItem::kSeparator || row.kind == ToolBarItem::kExpandingSeparator) {
        AddSeparator(row.kind == ToolBarItem::kExpandingSeparator);
        return;
    }
    const std::string label = DisplayText(row.label);
    GtkToolItem* item = NewToolItem(row.kind, image, label.c_str());
    gtk_tool_item_set_tooltip_text(item, DisplayText(row.tooltip).c_str());
    NameToolItem(item, label.c_str());
    items_.Add(GTK_WIDGET(item), row.command);
    StoreCommand(item, "_cmd", row.command, row.command);
    signals_.Connect(item, "clicked", G_CALLBACK(GCToolItemClicked),
                     static_cast<LControlHost*>(window_));
    gtk_toolbar_insert(GTK_TOOLBAR(bar_), item, -1);
    if (row.kind == ToolBarItem::kDropDown)
        AddArrow(item, row);
}

void LToolBar::AddArrow(GtkToolItem* item, const ToolBarItem& row) {
    GtkWidget* arrow = gtk_button_new();
    gtk_button_set_relief(GTK_BUTTON(arrow), GTK_RELIEF_NONE);
    gtk_button_set_focus_on_click(GTK_BUTTON(arrow), FALSE);
    gtk_container_add(GTK_CONTAINER(arrow), gtk_arrow_new(GTK_ARROW_DOWN, GTK_SHADOW_NONE));
    SetAccessibleName(arrow, (DisplayText(row.label) + " menu").c_str());
    gtk_widget_set_tooltip_text(arrow, (DisplayText(row.label) + " menu").c_str());
    GtkToolItem* holder = gtk_tool_item_new();
    gtk_tool_item_set_homogeneous(holder, FALSE);
    gtk_container_add(GTK_CONTAINER(holder), arrow);
    g_object_set_data(G_OBJECT(item), "_arrow", arrow);
    gtk_toolbar_insert(GTK_TOOLBAR(bar_), holder, -1);
}

GtkWidget* LToolBar::ArrowOf(int command) const {
    GtkWidget* item = GetToolItemFromID(command);
    return item != nullptr ? static_cast<GtkWidget*>(g_object_get_data(G_OBJECT(item), "_arrow"))
                           : nullptr;
}

void LToolBar::HandleToolBarItemDropdown(int command, int dropDownCommand) {
    GtkWidget* arrow = ArrowOf(command);
    if (arrow == nullptr)
        return;
    StoreCommand(arrow, "_cmd", dropDownCommand, dropDownCommand);
    auto* host = static_cast<LControlHost*>(window_);
    signals_.Connect(arrow, "button-press-event", G_CALLBACK(GCArrowPressed), host);
    signals_.Connect(arrow, "clicked", G_CALLBACK(GCToolItemClicked), host);
}

void LToolBar::AddToolboxAndHelp() {
    if (bar_ == nullptr)
        return;
    AddSeparator(true);
    if (HasWebSite())
        Add({kCommandProductsPage, kToolboxIcon, "Toolbox", "Other Quillon programs",
             ToolBarItem::kButton},
            NewIconImageAt(kToolboxIcon, kIconSize));
    Add({kCommandHelpContents, kHelpIcon, "Help", "Open the help documentation (F1)",
         ToolBarItem::kButton},
        NewIconImageAt(kHelpIcon, kIconSize));
    gtk_widget_show_all(bar_);
}

void LToolBar::SetToolBarItemText(int command, const char* text) {
    GtkWidget* item = GetToolItemFromID(command);
    if (item == nullptr)
        return;
    gtk_tool_button_set_label(GTK_TOOL_BUTTON(item), DisplayText(text).c_str());
    NameToolItem(GTK_TOOL_ITEM(item), DisplayText(text).c_str());
}

void LToolBar::SetToolBarItemCheck(int command, bool checked) {
    GtkWidget* item = GetToolItemFromID(command);
    if (!GTK_IS_TOGGLE_TOOL_BUTTON(item))
        return;
    const auto clicked = reinterpret_cast<gpointer>(GCToolItemClicked);
    auto* host = static_cast<LControlHost*>(window_);
    g_signal_handlers_block_by_func(item, clicked, host);
    gtk_toggle_tool_button_set_active(GTK_TOGGLE_TOOL_BUTTON(item), checked);
    g_signal_handlers_unblock_by_func(item, clicked, host);
}

void LToolBar::EnableToolBarItem(int command, bool enabled) {
    if (GtkWidget* item = GetToolItemFromID(command))
        SetControlSensitive(item, enabled);
}

void LToolBar::HideToolBarItem(int command, bool hidden) {
    for (GtkWidget* widget : {GetToolItemFromID(command), ArrowOf(command)}) {
        if (widget == nullptr)
            continue;
        gtk_widget_set_no_show_all(widget, hidden);
        gtk_widget_set_visible(widget, !hidden);
    }
}

void LToolBar::ShowToolBar(bool shown) {
    if (bar_ == nullptr)
        return;
    gtk_widget_set_no_show_all(bar_, !shown);
    gtk_widget_set_visible(bar_, shown);
}

int LToolBar::GetToolBarHeight() const {
    if (bar_ == nullptr || !atTop_ || !gtk_widget_get_visible(bar_))
        return 0;
    GtkRequisition size;
    gtk_widget_size_request(bar_, &size);
    return size.height;
}
