#include "app/window/main_controls.h"

#include <utility>

#include "app/commands/command_numbers.h"
#include "app/settings_keys.h"
#include "app/window/large_button.h"
#include "app/window/window_layout.h"
#include "gui/accessible.h"

namespace {

bool ShowsCommandBar() {
    return kShowCommandBarSetting.Get() != "0";
}

// What the control would take; afterwards its size is to be set again.
int NaturalHeight(GtkWidget* control) {
    GtkRequisition size{};
    gtk_widget_set_size_request(control, -1, -1);
    gtk_widget_size_request(control, &size);
    return size.height;
}

int TextWidth(GtkWidget* label) {
    const auto layout = GObjectRef<PangoLayout>::Adopt(
        gtk_widget_create_pango_layout(label, gtk_label_get_text(GTK_LABEL(label))));
    int width = 0;
    pango_layout_get_pixel_size(layout.Get(), &width, nullptr);
    return width;
}

}  // namespace

void MainControls::AddCommands() {
    static constexpr CommandRow<MainControls> kRows[] = {
        {{.number = kShowCommandBar, .label = "Show Command Bar"}, &MainControls::CmShowCommandBar},
    };
    commands_.Add(*this, kRows);
    ShowChoice();
}

void MainControls::CmShowCommandBar() {
    kShowCommandBarSetting.Set(ShowsCommandBar() ? "0" : "1");
    ShowChoice();
    window_.Layout();
}

void MainControls::ShowChoice() {
    commands_.Check(kShowCommandBar, ShowsCommandBar());
}

void MainControls::Create(const LEditWidgets& text, Bar beside, std::vector<Bar> bars) {
    window_.AddControl(text.textView, kTextBox, text.scrolledWindow);
    window_.SetTooltip(kTextBox, "Enter your text here or click on the Update Text button");
    CreateVoices();
    CreateButton(kReadButton);
    window_.SetCoolButtonUp(kReadButton);
    CreateButton(kSaveButton);
    window_.AddControl(places_.NewCommandBar(), kCommandBar);
    beside_ = std::move(beside);
    window_.AddControl(beside_.widget, beside_.control, beside_.frame);
    bars_ = std::move(bars);
    for (const Bar& bar : bars_)
        window_.AddControl(bar.widget, bar.control);
    SetFocusOrder();
    window_.HandlePDLSelChange(kVoiceList);
    window_.HandleEditTextChange(kTextBox, kTextChanged);
}

void MainControls::CreateVoices() {
    GtkWidget* label = gtk_label_new("Choose Voice: ");
    gtk_widget_set_size_request(label, 40, 20);
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_misc_set_alignment(GTK_MISC(label), 0.0F, 0.5F);
    window_.AddControl(label, kVoiceLabel);
    GtkWidget* voices = NewComboBox();
    window_.AddControl(voices, kVoiceList);
    LabelWidget(label, voices);
}

void MainControls::CreateButton(int number) {
    window_.AddControl(gtk_toggle_button_new(), number);
    const CommandFacts& facts = commands_.Facts(number);
    window_.CoolButtonInit(number, facts.icon, facts.name);
    window_.SetTooltip(number, commands_.Tip(number).c_str());
    commands_.AddProxy(number, window_.GetControlByID(number), LAction::WhenOff::kGrey);
}

void MainControls::SetFocusOrder() {
    std::vector<int> order = {kCommandBar, beside_.control, kTextBox};
    for (const Bar& bar : bars_)
        order.push_back(bar.control);
    order.insert(order.end(), {kVoiceList, kReadButton, kSaveButton});
    window_.SetFocusOrder(order);
}

void MainControls::LayOut(int width, int height) {
    LayoutSizes sizes{.width = width, .height = height, .wantsCommandBar = ShowsCommandBar()};
    sizes.wantsContents = beside_.isOpen();
    sizes.isLow = !HasRoomForToolBar(height);
    window_.ShowToolBar(!sizes.isLow);
    window_.LayoutBase(sizes.left, sizes.top, sizes.width, sizes.height);
    MeasureBars(sizes);
    sizes.labelWidth = TextWidth(window_.GetControlByID(kVoiceLabel)) + 4;
    sizes.labelHeight = NaturalHeight(window_.GetControlByID(kVoiceLabel));
    sizes.listHeight = NaturalHeight(window_.GetControlByID(kVoiceList));
    const GtkRequisition button = LargeButtonSize(window_.GetControlByID(kReadButton));
    sizes.buttonWidth = button.width;
    sizes.buttonHeight = button.height;
    const WindowLayout layout = ::LayOut(sizes);
    Place(kCommandBar, layout.commandBar);
    Place(beside_.control, layout.contents);
    Place(kTextBox, layout.text);
    PlaceBars(layout.bars);
    Place(kVoiceLabel, layout.voiceLabel);
    Place(kVoiceList, layout.voiceList);
    Place(kReadButton, layout.readButton);
    Place(kSaveButton, layout.saveButton);
    KeepFocus();
}

void MainControls::MeasureBars(LayoutSizes& sizes) {
    for (const Bar& bar : bars_) {
        window_.ShowControl(bar.control, bar.isOpen());  // what is hidden has no size
        if (!bar.isOpen())
            continue;
        if (bar.fit) {
            bar.fit(BarsWidth(sizes), sizes.isLow);
            sizes.hasVoices = !sizes.isLow;
        }
        sizes.barsHeight += NaturalHeight(bar.widget);
    }
}

void MainControls::PlaceBars(LayoutPlace place) {
    for (const Bar& bar : bars_) {
        place.isShown = bar.isOpen();
        place.height = place.isShown ? NaturalHeight(bar.widget) : 0;
        Place(bar.control, place);
        place.y += place.height;
    }
}

void MainControls::Place(int control, const LayoutPlace& place) {
    window_.ShowControl(control, place.isShown);
    if (place.isShown)
        window_.MoveControl(control, place.x, place.y, place.width, place.height);
}

void MainControls::KeepFocus() {
    if (window_.IsOpen() && gtk_window_get_focus(GTK_WINDOW(window_.Widget())) == nullptr)
        window_.FocusControl(kTextBox);
}
