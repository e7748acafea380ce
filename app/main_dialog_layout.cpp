// Where the main window's controls stand.
#include <algorithm>

#include "app/commands/command_numbers.h"
#include "app/main_dialog.h"
#include "app/settings_keys.h"

namespace {

constexpr int kBarWidth = 180;
constexpr int kNarrowestWithBar = 366;
constexpr int kButtonWidth = 150;
constexpr int kButtonsWidth = 2 * (kButtonWidth + 4);
constexpr int kButtonHeight = 54;
constexpr int kRowHeight = 60;  // of the buttons, with the gap above; higher with large letters
constexpr int kVoiceWidth = 150;
constexpr int kWidestVoice = 286;
constexpr int kLineHeight = 24;
constexpr int kGap = 8;
constexpr int kFindGap = 4;  // above the find bar
// A lower window shows no tool bar, so that the text has room.
constexpr int kLowestWithToolBar = 300;

// What the control would take; afterwards its size is to be set again.
GtkRequisition NaturalSize(GtkWidget* control) {
    GtkRequisition size{};
    gtk_widget_set_size_request(control, -1, -1);
    gtk_widget_size_request(control, &size);
    return size;
}

int TextWidth(GtkWidget* label) {
    const auto layout = GObjectRef<PangoLayout>::Adopt(
        gtk_widget_create_pango_layout(label, gtk_label_get_text(GTK_LABEL(label))));
    int width = 0;
    pango_layout_get_pixel_size(layout.Get(), &width, nullptr);
    return width;
}

}  // namespace

bool MainDialog::ShowsCommandBar() {
    return kShowCommandBarSetting.Get() != "0";
}

void MainDialog::CmShowCommandBar() {
    kShowCommandBarSetting.Set(ShowsCommandBar() ? "0" : "1");
    commands_.Check(kShowCommandBar, ShowsCommandBar());
    Layout();
}

// Voices and buttons share the bottom row. Where the command bar would leave too little room for
// that, it ends above the row; where even the whole width is too little, the voices get a row of
// their own.
void MainDialog::LayoutControls(int width, int height) {
    const bool isLow = height < kLowestWithToolBar;
    ShowToolBar(!isLow);
    int left = 0;
    int top = 0;
    LayoutBase(left, top, width, height);
    const bool hasBar = width >= kNarrowestWithBar && ShowsCommandBar();
    const int barWidth = hasBar ? kBarWidth : 0;
    const int labelWidth = TextWidth(GetControlByID(kVoiceLabel)) + 4;
    const int neededWidth = kGap + std::max(kVoiceWidth, labelWidth) + kButtonsWidth;
    const bool barBeside = width >= barWidth + neededWidth;
    const bool oneRow = width >= neededWidth;

    const int listHeight = std::max(kLineHeight, NaturalSize(GetControlByID(kVoiceList)).height);
    const int labelHeight = NaturalSize(GetControlByID(kVoiceLabel)).height;
    const int rowHeight =
        oneRow ? std::max(kRowHeight, 2 + labelHeight + listHeight + 6) : kRowHeight;
    const int bottomRow = top + height - rowHeight;
    const int rowEnd = bottomRow + rowHeight - 6;
    // Where the label does not fit beside the list, it stands above it, or nowhere.
    const bool isLabelBeside = labelWidth <= width / 2;
    const bool hasLabel = oneRow || isLabelBeside || !isLow;
    const int labelRow = oneRow || isLabelBeside || isLow ? 0 : labelHeight;
    const int listTop = oneRow ? rowEnd - listHeight : bottomRow - listHeight - 4;
    const int contentEnd = oneRow ? bottomRow : listTop - labelRow;

    const bool hasFind = text_.IsFindOpen();
    const int findHeight = hasFind ? NaturalSize(GetControlByID(kFindBar)).height + kFindGap : 0;
    const int textLeft = left + barWidth + 5;

    ShowControl(kCommandBar, hasBar);
    if (hasBar)
        MoveControl(kCommandBar, left, top, kBarWidth,
                    barBeside ? height - 6 : contentEnd - top - 6);
    MoveControl(kTextBox, textLeft, top, width - textLeft, contentEnd - top - 6 - findHeight);
    ShowControl(kFindBar, hasFind);
    if (hasFind)
        MoveControl(kFindBar, textLeft, contentEnd - 6 - findHeight + kFindGap,
                    width - textLeft - 4, findHeight - kFindGap);

    ShowControl(kVoiceLabel, hasLabel);
    const int voiceLeft = left + kGap + (barBeside ? barWidth : 0);
    if (oneRow) {
        const int free = width - 324 - (barBeside ? barWidth : 0);
        const int voiceWidth =
            std::clamp(free, std::max(kVoiceWidth, labelWidth), std::max(kWidestVoice, labelWidth));
        MoveControl(kVoiceLabel, voiceLeft, bottomRow + 2, voiceWidth, listTop - bottomRow - 2);
        MoveControl(kVoiceList, voiceLeft, listTop, voiceWidth, listHeight);
    } else {
        const int listLeft = voiceLeft + (isLabelBeside ? labelWidth : 0);
        MoveControl(kVoiceLabel, voiceLeft, contentEnd, labelWidth,
                    isLabelBeside ? listHeight : labelHeight);
        MoveControl(kVoiceList, listLeft, listTop, width - listLeft - 4, listHeight);
    }
    const int buttonWidth = std::min(kButtonWidth, width / 2 - 6);
    const int buttonTop = rowEnd - kButtonHeight;
    MoveControl(kSaveButton, width - buttonWidth - 4, buttonTop, buttonWidth, kButtonHeight);
    MoveControl(kReadButton, width - 2 * (buttonWidth + 4), buttonTop, buttonWidth, kButtonHeight);
    KeepFocus();
}
