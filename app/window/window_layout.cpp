#include "app/window/window_layout.h"

#include <algorithm>

namespace {

constexpr int kBarWidth = 180;
constexpr int kNarrowestWithBar = 366;
constexpr int kContentsWidth = 160;  // a third of the room, if that is more
constexpr int kWidestContents = 320;
constexpr int kNarrowestText = 240;  // beside the contents
constexpr int kButtonWidth = 150;
constexpr int kButtonHeight = 54;
constexpr int kButtonGap = 4;
constexpr int kVoiceWidth = 150;
constexpr int kWidestVoice = 286;
constexpr int kLineHeight = 24;
constexpr int kGap = 8;
constexpr int kTextGap = 5;
constexpr int kBarsGap = 4;  // above the bars below the text
constexpr int kRim = 6;      // below what stands above something
constexpr int kLowestWithToolBar = 300;

int BarWidth(const LayoutSizes& s) {
    return s.wantsCommandBar && s.width >= kNarrowestWithBar ? kBarWidth : 0;
}

int TextLeft(const LayoutSizes& s) {
    return s.left + BarWidth(s) + kTextGap;
}

// What has been found out on the way.
struct Rows {
    explicit Rows(const LayoutSizes& sizes);

    const LayoutSizes& s;
    int barWidth;
    bool isBarBeside;  // the bottom row; else above it
    bool isOneRow;     // voices and buttons
    bool isLabelBeside;
    int buttonWidth;
    int buttonHeight;
    int listHeight;
    int bottomRow;
    int rowEnd;
    int listTop;
    int contentEnd;
};

Rows::Rows(const LayoutSizes& sizes) : s(sizes) {
    barWidth = BarWidth(s);
    buttonWidth = std::max(kButtonWidth, s.buttonWidth);
    const int neededWidth =
        kGap + std::max(kVoiceWidth, s.labelWidth) + 2 * (buttonWidth + kButtonGap);
    isBarBeside = s.width >= barWidth + neededWidth;
    isOneRow = s.width >= neededWidth;
    isLabelBeside = s.labelWidth <= s.width / 2;
    listHeight = std::max(kLineHeight, s.listHeight);
    // Where the voices need a row of their own, the text needs the room.
    buttonHeight = isOneRow ? std::max(kButtonHeight, s.buttonHeight) : kButtonHeight;
    const int besideButtons = isOneRow ? 2 + s.labelHeight + listHeight : 0;
    const int rowHeight = std::max(buttonHeight, besideButtons) + kRim;
    bottomRow = s.top + s.height - rowHeight;
    rowEnd = bottomRow + rowHeight - kRim;
    listTop = isOneRow ? rowEnd - listHeight : bottomRow - listHeight - 4;
    // Where the label does not fit beside the list, it stands above it, or nowhere.
    const int labelRow = isOneRow || isLabelBeside || s.isLow ? 0 : s.labelHeight;
    contentEnd = isOneRow ? bottomRow : listTop - labelRow;
    if (!s.hasVoices)
        contentEnd = s.top + s.height;
}

void PlaceContent(const Rows& rows, WindowLayout& out) {
    const LayoutSizes& s = rows.s;
    const int barEnd = rows.isBarBeside ? s.top + s.height : rows.contentEnd;
    out.commandBar = {s.left, s.top, kBarWidth, barEnd - s.top - kRim, rows.barWidth > 0};
    const int textLeft = TextLeft(s);
    const int barsRoom = s.barsHeight > 0 ? s.barsHeight + kBarsGap : 0;
    const int textEnd = rows.contentEnd - kRim - barsRoom;
    const int room = s.width - textLeft;
    const int contentsWidth = std::clamp(room / 3, kContentsWidth, kWidestContents);
    out.contents = {textLeft, s.top, contentsWidth, textEnd - s.top,
                    s.wantsContents && room >= contentsWidth + kGap + kNarrowestText};
    const int taken = out.contents.isShown ? contentsWidth + kGap : 0;
    out.text = {textLeft + taken, s.top, room - taken, textEnd - s.top};
    out.bars = {textLeft, textEnd + kBarsGap, BarsWidth(s), s.barsHeight, s.barsHeight > 0};
}

void PlaceVoices(const Rows& rows, WindowLayout& out) {
    const LayoutSizes& s = rows.s;
    const int taken = rows.isBarBeside ? rows.barWidth : 0;
    const int left = s.left + kGap + taken;
    if (rows.isOneRow) {
        const int buttons = 2 * (rows.buttonWidth + kButtonGap);
        const int width =
            std::clamp(s.width - buttons - 2 * kGap - taken, std::max(kVoiceWidth, s.labelWidth),
                       std::max(kWidestVoice, s.labelWidth));
        const int labelTop = rows.bottomRow + 2;
        out.voiceLabel = {left, labelTop, width, rows.listTop - labelTop, s.hasVoices};
        out.voiceList = {left, rows.listTop, width, rows.listHeight, s.hasVoices};
        return;
    }
    const int listLeft = left + (rows.isLabelBeside ? s.labelWidth : 0);
    out.voiceLabel = {left, rows.contentEnd, s.labelWidth,
                      rows.isLabelBeside ? rows.listHeight : s.labelHeight,
                      s.hasVoices && (rows.isLabelBeside || !s.isLow)};
    out.voiceList = {listLeft, rows.listTop, s.width - listLeft - 4, rows.listHeight, s.hasVoices};
}

void PlaceButtons(const Rows& rows, WindowLayout& out) {
    const int width = std::min(rows.buttonWidth, rows.s.width / 2 - 6);
    const int top = rows.rowEnd - rows.buttonHeight;
    const int room = width + kButtonGap;
    out.saveButton = {rows.s.width - room, top, width, rows.buttonHeight, rows.s.hasVoices};
    out.readButton = {rows.s.width - 2 * room, top, width, rows.buttonHeight, rows.s.hasVoices};
}

}  // namespace

bool HasRoomForToolBar(int windowHeight) {
    return windowHeight >= kLowestWithToolBar;
}

int BarsWidth(const LayoutSizes& sizes) {
    return sizes.width - TextLeft(sizes) - 4;
}

WindowLayout LayOut(const LayoutSizes& sizes) {
    const Rows rows(sizes);
    WindowLayout out;
    PlaceContent(rows, out);
    PlaceVoices(rows, out);
    PlaceButtons(rows, out);
    return out;
}
