// Where the main window's controls stand: from sizes to places, without a window.
#pragma once

// A lower window shows no tool bar, so that the text has room. Pixels, of the whole window.
bool HasRoomForToolBar(int windowHeight);

// What there is to be placed; pixels.
struct LayoutSizes {
    int left = 0;  // the free area below the bars
    int top = 0;
    int width = 0;
    int height = 0;
    bool isLow = false;  // the tool bar has made room already
    bool wantsCommandBar = false;
    bool wantsContents = false;
    int barsHeight = 0;  // of what stands below the text; 0: nothing
    int labelWidth = 0;  // of "Choose Voice: "
    int labelHeight = 0;
    int listHeight = 0;   // of the list of voices
    int buttonWidth = 0;  // of the large buttons, which grow with their letters
    int buttonHeight = 0;
    bool hasVoices = true;  // and large buttons; else their room is the text's
};

struct LayoutPlace {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool isShown = true;
};

struct WindowLayout {
    LayoutPlace commandBar;
    LayoutPlace contents;
    LayoutPlace text;
    LayoutPlace bars;  // below the text
    LayoutPlace voiceLabel;
    LayoutPlace voiceList;
    LayoutPlace readButton;
    LayoutPlace saveButton;
};

// The width of the bars, which depends on nothing but the window's.
int BarsWidth(const LayoutSizes& sizes);

// Voices and buttons share the bottom row. Where the command bar would leave too little room for
// that, it ends above the row; where even the whole width is too little, the voices get a row of
// their own. The contents stand beside the text where both have room.
WindowLayout LayOut(const LayoutSizes& sizes);
