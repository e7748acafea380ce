// A command is a row: its number, what it is called and said to do, its keys, what it needs, and
// what it does. Whatever offers it only names it.
#pragma once

#include <array>
#include <string>

#include "gui/menus/key_map.h"

// What must be there for a command to act; joined by "|".
using CommandNeeds = unsigned;
constexpr CommandNeeds kNeedsText = 1u << 0;           // in the text box
constexpr CommandNeeds kNeedsSelection = 1u << 1;      // in any program, or on the clipboard
constexpr CommandNeeds kNeedsTextOrReading = 1u << 2;  // starts a reading or ends it
constexpr CommandNeeds kNeedsUndo = 1u << 3;
constexpr CommandNeeds kNeedsRedo = 1u << 4;
constexpr CommandNeeds kNeedsReading = 1u << 5;
constexpr CommandNeeds kNeedsSound = 1u << 6;        // a reading that is heard, or paused
constexpr CommandNeeds kNeedsTextOrSound = 1u << 7;  // to be played
constexpr CommandNeeds kNeedsArticle = 1u << 8;      // of a web page, of which the rest is left out
constexpr CommandNeeds kNeedsPlaces = 1u << 9;       // a reading, to move in
constexpr CommandNeeds kNeedsHeadings = 1u << 10;    // in it
constexpr CommandNeeds kNeedsWaitingFile = 1u << 11;  // to be read
constexpr CommandNeeds kNeedsChapters = 1u << 12;     // likewise
constexpr CommandNeeds kNeedsContents = 1u << 13;     // of the document in the window
constexpr CommandNeeds kNeedsPages = 1u << 14;        // likewise

// A number of 0, a null text, a key of 0 stand for none.
struct CommandFacts {
    int number = 0;
    std::array<int, 2> also{};    // further numbers of the same command
    const char* label = nullptr;  // in menus; "&" marks its letter
    const char* name = nullptr;   // on buttons
    const char* tip = nullptr;    // without the key
    int icon = 0;
    std::array<LKeyCode, 4> keys{};  // the first is shown
    CommandNeeds needs = 0;
    bool sharesKeys = false;  // somebody else gets them while the command cannot act
};

// Of a part of the window; what it does is a member function of that part.
template <typename Owner>
struct CommandRow {
    CommandFacts facts;
    void (Owner::*act)();
};

// "Read text aloud (Ctrl+Shift+R)": the tip of a place that offers the command, with its key.
std::string TipWithKey(const char* tip, const CommandFacts& facts);
