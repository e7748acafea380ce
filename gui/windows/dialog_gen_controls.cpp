#include <gdk/gdkkeysyms.h>

#include "gui/accessible.h"
#include "gui/controls/control_factory.h"
#include "gui/display_text.h"
#include "gui/minimum_size.h"
#include "gui/mnemonic.h"
#include "gui/widgets/date_time_picker.h"
#include "gui/widgets/db_display.h"
#include "gui/widgets/db_edit.h"
#include "gui/widgets/hyper_link.h"
#include "gui/windows/dialog.h"
#include "gui/windows/dialog_gen_context.h"

namespace {

constexpr int kFieldHeight = 24;
constexpr int kButtonWidth = 110;
constexpr int kTitleWidth = 400;
// Pixels around the rows of text.
constexpr int kEditBottom = 10;
constexpr int kEditBorder = kEditBottom + 4;
constexpr int kHeadingPadding = 14;

// Pixels of a line in the widget's letters.
int RowHeight(GtkWidget* widget) {
    int height = 0;
    const auto layout =
        GObjectRef<PangoLayout>::Adopt(gtk_widget_create_pango_layout(widget, "Ay"));
    pango_layout_get_pixel_size(layout.Get(), nullptr, &height);
    return height;
}

// Of a list, whose renderer of texts leaves two pixels above and below.
int ListRowHeight(GtkWidget* list) {
    int separator = 0;
    int focus = 0;
    gtk_widget_style_get(list, "vertical-separator", &separator, "focus-line-width", &focus,
                         nullptr);
    return RowHeight(list) + 2 * 2 + 2 * focus + separator;
}

void PressOkByEnter(GtkWidget* entry) {
    gtk_entry_set_activates_default(GTK_ENTRY(entry), TRUE);
}

GtkWidget* NewLabel(const char* text) {
    return gtk_label_new(DisplayText(text).c_str());
}

// GTK's own scroll bar cannot be used from the keyboard.
gboolean GCScrollBarKey(GtkWidget* bar, GdkEventKey* event, gpointer) {
    constexpr struct {
        guint key;
        GtkScrollType step;
    } kSteps[] = {
        {GDK_KEY_Left, GTK_SCROLL_STEP_LEFT},    {GDK_KEY_Right, GTK_SCROLL_STEP_RIGHT},
        {GDK_KEY_Page_Up, GTK_SCROLL_PAGE_LEFT}, {GDK_KEY_Page_Down, GTK_SCROLL_PAGE_RIGHT},
        {GDK_KEY_Home, GTK_SCROLL_START},        {GDK_KEY_End, GTK_SCROLL_END}};
    for (const auto& step : kSteps) {
        if (step.key == event->keyval) {
            g_signal_emit_by_name(bar, "move-slider", step.step);
            return TRUE;
        }
    }
    return FALSE;
}

GtkWidget* NewScrollBar() {
    GtkWidget* bar = gtk_hscrollbar_new(nullptr);
    gtk_widget_set_can_focus(bar, TRUE);
    g_signal_connect(bar, "key-press-event", G_CALLBACK(GCScrollBarKey), nullptr);
    return bar;
}

}  // namespace

void LDialogGenContext::AddStatic(int id, const char* text, int width, int height) {
    GtkWidget* label = NewLabel(text);
    gtk_misc_set_alignment(GTK_MISC(label), 0.5F, 0.5F);
    if (height >= 1) {
        gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
        gtk_label_set_justify(GTK_LABEL(label), GTK_JUSTIFY_FILL);
        SetMinimumSize(label, -1, height);
    } else if (width > 0) {
        SetMinimumSize(label, width, -1);
    }
    AddSpanFull(label, id);
}

void LDialogGenContext::AddStaticLeft(int id, const char* text) {
    GtkWidget* label = NewLabel(text);
    gtk_misc_set_alignment(GTK_MISC(label), 0.0F, 0.5F);
    AddSpanLeft(label, id);
}

void LDialogGenContext::AddStaticTitle(int id, const char* text, int height) {
    GtkWidget* label = gtk_label_new(nullptr);
    char* markup = g_markup_printf_escaped("<span weight=\"bold\" size=\"large\"> %s </span>",
                                           DisplayText(text).c_str());
    gtk_label_set_markup(GTK_LABEL(label), markup);
    g_free(markup);
    if (height >= 1) {
        gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
        SetMinimumSize(label, kTitleWidth, height);
    }
    gtk_misc_set_alignment(GTK_MISC(label), 0.0F, 0.5F);
    AddSpanFull(label, id);
    IndentStart();  // for the rest of the dialog: what follows stands under the title
}

void LDialogGenContext::AddHorizontalLine(int id, const char* text) {
    GtkWidget* line = gtk_hbox_new(FALSE, 5);
    GtkWidget* label = NewLabel(text);
    gtk_box_pack_start(GTK_BOX(line), label, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(line), gtk_hseparator_new(), TRUE, TRUE, 0);
    dialog_.SetControlID(label, id);
    AddSpanFull(line, -1);
}

void LDialogGenContext::AddLabelled(GtkWidget* control, int id, const char* text) {
    GtkWidget* label = gtk_label_new_with_mnemonic(MnemonicText(text).c_str());
    gtk_misc_set_alignment(GTK_MISC(label), 0.0F, 0.5F);
    Place(label, 0, 1);
    dialog_.SetCompanionID(label, id + 1);
    LabelWidget(label, control);
    AddSpanRight(control, id);
}

// A screen reader must have something to call everything that takes the focus.
void LDialogGenContext::NameUnlabelled(GtkWidget* control, const char* name) {
    for (auto frame = containers_.rbegin(); name == nullptr && frame != containers_.rend(); ++frame)
        if (frame->kind == Kind::kGroup)
            name = gtk_frame_get_label(GTK_FRAME(gtk_widget_get_parent(frame->container)));
    SetAccessibleName(control, DisplayText(name != nullptr ? name : title_).c_str());
}

void LDialogGenContext::AddUnlabelled(GtkWidget* control, int id) {
    NameUnlabelled(control, nullptr);
    AddSpanFull(control, id);
}

void LDialogGenContext::AddInput(int id, const char* text, int width) {
    GtkWidget* entry = gtk_entry_new();
    PressOkByEnter(entry);
    AddLabelled(entry, id, text);
    dialog_.HandleTextChange(id);
    if (width <= 0)
        return;
    SetMinimumSize(entry, -1, kFieldHeight);
    int height = 0;
    gtk_widget_get_size_request(entry, nullptr, &height);
    gtk_widget_set_size_request(entry, width, height);
}

void LDialogGenContext::AddInputPassword(int id, const char* text, int width) {
    AddInput(id, text, width);
    gtk_entry_set_visibility(GTK_ENTRY(dialog_.GetControlByID(id)), FALSE);
}

void LDialogGenContext::AddInputUpDown(int id, const char* text) {
    GtkWidget* field = gtk_spin_button_new_with_range(0, 100, 1);
    PressOkByEnter(field);
    AddLabelled(field, id, text);
    dialog_.HandleTextChange(id);
}

void LDialogGenContext::AddEditWidget(int id, const char* text, LRows height, bool readOnly,
                                      const char* name) {
    const LEditWidgets edit = NewEdit(readOnly, GTK_POLICY_AUTOMATIC);
    gtk_text_view_set_border_window_size(GTK_TEXT_VIEW(edit.textView), GTK_TEXT_WINDOW_BOTTOM,
                                         kEditBottom);
    if (height.count > 0)
        gtk_widget_set_size_request(edit.scrolledWindow, -1,
                                    height.count * RowHeight(edit.textView) + kEditBorder);
    AddSpanFull(edit.scrolledWindow, -1);
    NameUnlabelled(edit.textView, name);
    dialog_.SetControlID(edit.textView, id);
    dialog_.SetEditText(id, text);
}

void LDialogGenContext::AddEdit(int id, const char* text, LRows height, const char* name) {
    AddEditWidget(id, text, height, false, name);
}

void LDialogGenContext::AddEditReadOnly(int id, const char* text, LRows height, const char* name) {
    AddEditWidget(id, text, height, true, name);
}

void LDialogGenContext::AddPullDownList(int id, const char* text, int width) {
    GtkWidget* list = NewDropDownList();
    if (width > 0)
        gtk_widget_set_size_request(list, width, -1);
    AddLabelled(list, id, text);
}

void LDialogGenContext::AddPullDownList(int id) {
    AddUnlabelled(NewDropDownList(), id);
}

void LDialogGenContext::AddComboBox(int id, const char* text, int width) {
    GtkWidget* box = NewComboBox();
    PressOkByEnter(gtk_bin_get_child(GTK_BIN(box)));
    if (width > 0)
        gtk_widget_set_size_request(box, width, -1);
    AddLabelled(box, id, text);
}

void LDialogGenContext::AddComboBox(int id) {
    GtkWidget* box = NewComboBox();
    PressOkByEnter(gtk_bin_get_child(GTK_BIN(box)));
    AddUnlabelled(box, id);
}

void LDialogGenContext::AddList(int id, LRows height, const char* name) {
    GtkWidget* scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    GtkWidget* list = gtk_tree_view_new();
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_AUTOMATIC,
                                   GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scrolled), GTK_SHADOW_ETCHED_IN);
    if (height.count > 0)
        gtk_widget_set_size_request(
            list, -1, height.count * ListRowHeight(list) + RowHeight(list) + kHeadingPadding);
    gtk_container_add(GTK_CONTAINER(scrolled), list);
    Place(scrolled, 0, 2);
    ++Top().row;
    NameUnlabelled(list, name);
    dialog_.SetCompanionID(scrolled, id + 1);
    dialog_.SetControlID(list, id);
}

void LDialogGenContext::AddButton(int id, const char* text, int align, int width, int height) {
    GtkWidget* button = gtk_button_new_with_mnemonic(MnemonicText(text).c_str());
    SetMinimumSize(button, width > 0 ? width : kButtonWidth, height > 0 ? height : -1);
    if (align == 1)
        gtk_button_set_alignment(GTK_BUTTON(button), 0.0F, 0.5F);
    dialog_.SetButtonCommandHandler(button, id);
    AddSpanFull(button, id);
}

void LDialogGenContext::AddCheckBox(int id, const char* text, int width) {
    GtkWidget* button = gtk_check_button_new_with_mnemonic(MnemonicText(text).c_str());
    if (width > 0)
        SetMinimumSize(button, width, -1);
    AddSpanFull(button, id);
    dialog_.SetRadioCheckButtonCommandHandler(button, id);
}

void LDialogGenContext::AddRadioButtonGroup(int id, const char* text) {
    radioGroup_ = nullptr;
    AddRadioButton(id, text);
}

void LDialogGenContext::AddRadioButton(int id, const char* text) {
    GtkWidget* button = gtk_radio_button_new_with_mnemonic_from_widget(
        radioGroup_ != nullptr ? GTK_RADIO_BUTTON(radioGroup_) : nullptr,
        MnemonicText(text).c_str());
    if (radioGroup_ == nullptr)
        radioGroup_ = button;
    AddSpanFull(button, id);
    dialog_.SetRadioCheckButtonCommandHandler(button, id);
}

void LDialogGenContext::AddScrollBar(int id, const char* text) {
    AddLabelled(NewScrollBar(), id, text);
}

void LDialogGenContext::AddScrollBar(int id) {
    AddUnlabelled(NewScrollBar(), id);
}

void LDialogGenContext::AddProgressBar(int id) {
    AddUnlabelled(NewProgressBar(), id);
}

void LDialogGenContext::AddDBEdit(int id, const char* text) {
    GtkWidget* box = LDBEdit::CreateControl();
    LDBEdit::SetName(box, WithoutMnemonic(text).c_str());
    LDBEdit::Init(id, box);
    AddLabelled(box, id, text);
    gtk_label_set_mnemonic_widget(GTK_LABEL(dialog_.GetControlByID(id + 1)),
                                  LDBEdit::GetHandle(box, false));
}

void LDialogGenContext::AddDBEdit(int id) {
    GtkWidget* box = LDBEdit::CreateControl();
    LDBEdit::SetName(box, "Level");
    LDBEdit::Init(id, box);
    AddSpanFull(box, id);
}

void LDialogGenContext::AddDBDisplay(int id) {
    AddSpanFull(LDBDisplay::CreateControl(), id);
}

void LDialogGenContext::AddHyperLink(int id, const char* text, const char* link) {
    AddSpanFull(NewHyperLink(text, link), id);
}

void LDialogGenContext::AddDateTime(int id, const char* text, int width) {
    const LDateTimeWidgets picker = NewDateTimePicker();
    PressOkByEnter(picker.entry);
    if (width > 0)
        gtk_widget_set_size_request(picker.entry, width, -1);
    GtkWidget* label = gtk_label_new_with_mnemonic(MnemonicText(text).c_str());
    gtk_misc_set_alignment(GTK_MISC(label), 0.0F, 0.5F);
    Place(label, 0, 1);
    LabelWidget(label, picker.entry);
    AddSpanRight(picker.box, -1);
    dialog_.SetControlID(picker.button, id);
    dialog_.SetCompanionID(picker.entry, id + 1);
}
