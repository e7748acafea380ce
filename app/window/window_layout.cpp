#include "app/window/window_layout.h"

#include <algorithm>

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
constexpr int kBarsGap = 4;  // above the bars below the text
constexpr int kRim = 6;      // below what stands above something
constexpr int kLowestWithToolBar = 300;

// What has been found out on the way.
struct Rows {
    explicit Rows(const LayoutSizes& sizes);

    const LayoutSizes& s;
    int barWidth;
    bool isBarBeside;  // the bottom row; else above it
    bool isOneRow;     // voices and buttons
    bool isLabelBeside;
    int listHeight;
    int bottomRow;
    int rowEnd;
    int listTop;
    int contentEnd;
};

Rows::Rows(const LayoutSizes& sizes) : s(sizes) {
    barWidth = s.wantsCommandBar && s.width >= kNarrowestWithBar ? kBarWidth : 0;
    const int neededWidth = kGap + std::max(kVoiceWidth, s.labelWidth) + kButtonsWidth;
    isBarBeside = s.width >= barWidth + neededWidth;
    isOneRow = s.width >= neededWidth;
    isLabelBeside = s.labelWidth <= s.width / 2;
    listHeight = std::max(kLineHeight, s.listHeight);
    const int rowHeight =
        isOneRow ? std::max(kRowHeight, 2 + s.labelHeight + listHeight + kRim) : kRowHeight;
    bottomRow = s.top + s.height - rowHeight;
    rowEnd = bottomRow + rowHeight - kRim;
    listTop = isOneRow ? rowEnd - listHeight : bottomRow - listHeight - 4;
    // Where the label does not fit beside the list, it stands above it, or nowhere.
    const int labelRow = isOneRow || isLabelBeside || s.isLow ? 0 : s.labelHeight;
    contentEnd = isOneRow ? bottomRow : listTop - labelRow;
}

void PlaceContent(const Rows& rows, WindowLayout& out) {
    const LayoutSizes& s = rows.s;
    const int barEnd = rows.isBarBeside ? s.top + s.height : rows.contentEnd;
    out.commandBar = {s.left, s.top, kBarWidth, barEnd - s.top - kRim, rows.barWidth > 0};
    const int textLeft = s.left + rows.barWidth + 5;
    const int barsRoom = s.barsHeight > 0 ? s.barsHeight + kBarsGap : 0;
    const int textEnd = rows.contentEnd - kRim - barsRoom;
    out.text = {textLeft, s.top, s.width - textLeft, textEnd - s.top};
    out.bars = {textLeft, textEnd + kBarsGap, s.width - textLeft - 4, s.barsHeight,
                s.barsHeight > 0};
}

void PlaceVoices(const Rows& rows, WindowLayout& out) {
    const LayoutSizes& s = rows.s;
    const int taken = rows.isBarBeside ? rows.barWidth : 0;
    const int left = s.left + kGap + taken;
    if (rows.isOneRow) {
        const int width = std::clamp(s.width - 324 - taken, std::max(kVoiceWidth, s.labelWidth),
                                     std::max(kWidestVoice, s.labelWidth));
        const int labelTop = rows.bottomRow + 2;
        out.voiceLabel = {left, labelTop, width, rows.listTop - labelTop};
        out.voiceList = {left, rows.listTop, width, rows.listHeight};
        return;
    }
    const int listLeft = left + (rows.isLabelBeside ? s.labelWidth : 0);
    out.voiceLabel = {left, rows.contentEnd, s.labelWidth,
                      rows.isLabelBeside ? rows.listHeight : s.labelHeight,
                      rows.isLabelBeside || !s.isLow};
    out.voiceList = {listLeft, rows.listTop, s.width - listLeft - 4, rows.listHeight};
}

void PlaceButtons(const Rows& rows, WindowLayout& out) {
    const int width = std::min(kButtonWidth, rows.s.width / 2 - 6);
    const int top = rows.rowEnd - kButtonHeight;
    out.saveButton = {rows.s.width - width - 4, top, width, kButtonHeight};
    out.readButton = {rows.s.width - 2 * (width + 4), top, width, kButtonHeight};
}

}  // namespace

bool HasRoomForToolBar(int windowHeight) {
    return windowHeight >= kLowestWithToolBar;
}

WindowLayout LayOut(const LayoutSizes& sizes) {
    const Rows rows(sizes);
    WindowLayout out;
    PlaceContent(rows, out);
    PlaceVoices(rows, out);
    PlaceButtons(rows, out);
    return out;
}
