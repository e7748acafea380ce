// Containers, placement and the action area; the controls are in dialog_gen_controls.cpp.
#include "gui/windows/dialog_gen_context.h"

#include <algorithm>
#include <string>

#include "gui/gtk_children.h"
#include "gui/minimum_size.h"
#include "gui/mnemonic.h"
#include "gui/windows/dialog.h"

namespace {

constexpr unsigned int kPadding = 8;
constexpr unsigned int kColumns = 2;
constexpr int kActionButtonSize = 40;
constexpr auto kExpandFill = GtkAttachOptions(GTK_EXPAND | GTK_FILL);

unsigned int IndentPixels(int indent) {
    return indent > 0 ? static_cast<unsigned int>(indent) * kPadding : 0;
}

// A size request would be the size itself and cut what is added later, in a large font.
void GCAtLeastWidth(GtkWidget*, GtkRequisition* size, gpointer width) {
    size->width = std::max(size->width, GPOINTER_TO_INT(width));
}

// A group's letter goes to the first of its controls.
gboolean GCGroupLetter(GtkWidget* table, gboolean, gpointer) {
    return gtk_widget_child_focus(table, GTK_DIR_TAB_FORWARD);
}

// A table without rows would be an error to GTK.
void ShrinkTable(GtkWidget* table, unsigned int rows) {
    gtk_table_resize(GTK_TABLE(table), rows > 0 ? rows : 1, kColumns);
}

}  // namespace

LDialogGenContext::LDialogGenContext(LDialog& dialog, GtkWidget* rootTable, const char* title)
    : dialog_(dialog), title_(title) {
    Push(rootTable, Kind::kRootTable);
}

bool LDialogGenContext::InTable() {
    return Top().kind == Kind::kRootTable || Top().kind == Kind::kGroup;
}

void LDialogGenContext::Place(GtkWidget* widget, unsigned int leftColumn,
                              unsigned int rightColumn) {
    Frame& top = Top();
    if (InTable()) {
        gtk_table_attach(GTK_TABLE(top.container), widget, leftColumn, rightColumn, top.row,
                         top.row + 1, kExpandFill, GTK_FILL,
                         leftColumn == 1 ? kPadding : IndentPixels(indent_), kPadding);
    } else if (top.kind == Kind::kPanels) {
        gtk_fixed_put(GTK_FIXED(top.container), widget, 0, 0);
    } else {
        gtk_box_pack_end(GTK_BOX(top.container), widget, TRUE, TRUE, 0);
        // At position 0 the newest of those packed at the end stands last: fields read, and the Tab
        // key goes, in the order in which they are asked for.
        gtk_box_reorder_child(GTK_BOX(top.container), widget, 0);
    }
}

void LDialogGenContext::AddSpan(GtkWidget* widget, int id, unsigned int leftColumn,
                                unsigned int rightColumn) {
    Place(widget, leftColumn, rightColumn);
    dialog_.SetControlID(widget, id);
}

void LDialogGenContext::AddSpanFull(GtkWidget* widget, int id) {
    AddSpan(widget, id, 0, 2);
    ++Top().row;
}

void LDialogGenContext::AddSpanLeft(GtkWidget* widget, int id) {
    AddSpan(widget, id, 0, 1);
}

void LDialogGenContext::AddSpanRight(GtkWidget* widget, int id) {
    AddSpan(widget, id, 1, 2);
    ++Top().row;
}

void LDialogGenContext::AttachContainer(GtkWidget* widget, GtkAttachOptions horizontal,
                                        unsigned int padding) {
    Frame& top = Top();
    if (InTable()) {
        gtk_table_attach(GTK_TABLE(top.container), widget, 0, kColumns, top.row, top.row + 1,
                         horizontal, GTK_FILL, padding, kPadding);
        ++top.row;
    } else if (top.kind == Kind::kPanels) {
        gtk_fixed_put(GTK_FIXED(top.container), widget, 0, 0);
    } else {
        gtk_box_pack_end(GTK_BOX(top.container), widget, TRUE, TRUE, 0);
        gtk_box_reorder_child(GTK_BOX(top.container), widget, 0);
    }
}

void LDialogGenContext::StartVBox(int width) {
    GtkWidget* box = gtk_vbox_new(FALSE, 0);
    if (width > 0)
        gtk_widget_set_size_request(box, width, -1);
    AttachContainer(box, GTK_FILL, kPadding);
    Push(box, Kind::kBox);
}

void LDialogGenContext::StartHBox() {
    GtkWidget* box = gtk_hbox_new(TRUE, 0);
    AttachContainer(box, kExpandFill, kPadding);
    Push(box, Kind::kBox);
}

void LDialogGenContext::PopBox() {
    if (containers_.size() < 2)
        return;
    gtk_container_resize_children(GTK_CONTAINER(Top().container));
    containers_.pop_back();
}

void LDialogGenContext::EndVBox() {
    PopBox();
}

void LDialogGenContext::EndHBox() {
    PopBox();
}

void LDialogGenContext::AddGroup(int id, const char* title, int width) {
    GtkWidget* frame = gtk_frame_new(nullptr);
    GtkWidget* table = gtk_table_new(1, kColumns, FALSE);
    GtkWidget* label = gtk_label_new_with_mnemonic(MnemonicText(title).c_str());
    gtk_frame_set_label_widget(GTK_FRAME(frame), label);
    gtk_label_set_mnemonic_widget(GTK_LABEL(label), table);
    g_signal_connect(table, "mnemonic-activate", G_CALLBACK(GCGroupLetter), nullptr);
    if (width > 0)
        gtk_widget_set_size_request(table, width, -1);
    gtk_container_add(GTK_CONTAINER(frame), table);
    AttachContainer(frame, kExpandFill, IndentPixels(indent_));
    if (!InTable() && Top().kind == Kind::kBox)
        gtk_box_set_child_packing(GTK_BOX(Top().container), frame, TRUE, FALSE, 0, GTK_PACK_END);
    dialog_.SetControlID(frame, id);
    Push(table, Kind::kGroup);
}

void LDialogGenContext::GroupEnd() {
    if (Top().kind != Kind::kGroup)
        return;
    ShrinkTable(Top().container, Top().row);
    containers_.pop_back();
}

void LDialogGenContext::StartPanels() {
    GtkWidget* panels = gtk_fixed_new();
    AttachContainer(panels, kExpandFill, kPadding);
    Push(panels, Kind::kPanels);
}

void LDialogGenContext::StartPanel(int id) {
    GtkWidget* panel = gtk_vbox_new(FALSE, 0);
    AttachContainer(panel, kExpandFill, kPadding);
    dialog_.SetControlID(panel, id);
    Push(panel, Kind::kBox);
}

void LDialogGenContext::EndPanel() {
    PopBox();
}

void LDialogGenContext::EndPanels() {
    PopBox();
}

void LDialogGenContext::SetWidth(int width) {
    if (width > 0)
        g_signal_connect(Top().container, "size-request", G_CALLBACK(GCAtLeastWidth),
                         GINT_TO_POINTER(width + 10));
}

void LDialogGenContext::Finalize() {
    if (Top().kind == Kind::kRootTable)
        ShrinkTable(Top().container, Top().row);
}

GtkWidget* LDialogGenContext::FindButtonBox() {
    if (!GTK_IS_DIALOG(dialog_.Widget()))
        return nullptr;
    for (GtkWidget* child :
         LGtkChildren(gtk_dialog_get_content_area(GTK_DIALOG(dialog_.Widget())))) {
        if (GTK_IS_HBUTTON_BOX(child))
            return child;
    }
    return nullptr;
}

void LDialogGenContext::SetUpActionButton(GtkWidget* button, LDialogButtons buttons,
                                          const char* okLabel) {
    constexpr struct {
        const char* stock;
        LDialogButtons flag;
        int command;
    } kButtons[] = {{GTK_STOCK_OK, kOkButton, kCommandOk},
                    {GTK_STOCK_CANCEL, kCancelButton, kCommandCancel},
                    {GTK_STOCK_HELP, kHelpButton, kCommandHelp}};
    const std::string stock = gtk_button_get_label(GTK_BUTTON(button));
    for (const auto& known : kButtons) {
        if (stock != known.stock)
            continue;
        if ((buttons & known.flag) == 0) {
            gtk_widget_destroy(button);
            return;
        }
        dialog_.SetButtonCommandHandler(button, known.command);
        if (known.flag == kOkButton)
            gtk_window_set_default(GTK_WINDOW(dialog_.Widget()), button);
        if (known.flag == kOkButton && okLabel != nullptr) {
            gtk_button_set_use_stock(GTK_BUTTON(button), FALSE);
            gtk_button_set_use_underline(GTK_BUTTON(button), TRUE);
            gtk_button_set_label(GTK_BUTTON(button), MnemonicText(okLabel).c_str());
            gtk_button_set_image(GTK_BUTTON(button),
                                 gtk_image_new_from_stock(GTK_STOCK_OK, GTK_ICON_SIZE_BUTTON));
        }
    }
    SetMinimumSize(button, kActionButtonSize, kActionButtonSize);
}

// The dialog itself goes on knowing its action area, so that the box is emptied and hidden.
void LDialogGenContext::RemoveActionArea(GtkWidget* box) {
    gtk_dialog_set_has_separator(GTK_DIALOG(dialog_.Widget()), FALSE);
    for (GtkWidget* button : LGtkChildren(box))
        gtk_widget_destroy(button);
    gtk_widget_set_no_show_all(box, TRUE);
    gtk_widget_hide(box);
}

void LDialogGenContext::AddOkCancelHelp(LDialogButtons buttons, const char* okLabel) {
    GtkWidget* box = FindButtonBox();
    if (box == nullptr)
        return;
    if (buttons == kNoButtons)
        return RemoveActionArea(box);
    for (GtkWidget* button : LGtkChildren(box))
        SetUpActionButton(button, buttons, okLabel);
    gtk_button_box_set_layout(GTK_BUTTON_BOX(box), GTK_BUTTONBOX_SPREAD);
}

void LDialogGenContext::AddSpecialOkCancelHelp(int id, const char* stockIdOrText,
                                               LDialogButtons buttons, const char* okLabel) {
    AddOkCancelHelp(buttons, okLabel);
    GtkWidget* box = FindButtonBox();
    if (box == nullptr)
        return;
    GtkStockItem stock;
    GtkWidget* button = gtk_stock_lookup(stockIdOrText, &stock)
                            ? gtk_button_new_from_stock(stockIdOrText)
                            : gtk_button_new_with_mnemonic(MnemonicText(stockIdOrText).c_str());
    gtk_button_set_image(GTK_BUTTON(button),
                         gtk_image_new_from_stock(GTK_STOCK_YES, GTK_ICON_SIZE_MENU));
    dialog_.SetButtonCommandHandler(button, id);
    SetMinimumSize(button, kActionButtonSize, kActionButtonSize);
    gtk_box_pack_start(GTK_BOX(box), button, FALSE, FALSE, 0);
    gtk_box_reorder_child(GTK_BOX(box), button, 0);
}
