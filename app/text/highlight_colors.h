// In which colours the stretch that is heard is marked.
#pragma once

#include <gtk/gtk.h>

#include <span>
#include <string>

struct HighlightChoice {
    const char* key;   // as it is kept
    const char* name;  // as it is offered
    // Null: the theme's.
    const char* ground;
    const char* letters;
    const char* wordGround;
    const char* wordLetters;
};

// Those that a user can have, the usual one first.
std::span<const HighlightChoice> HighlightChoices();

struct HighlightColors {
    GdkColor ground;
    GdkColor letters;
    GdkColor wordGround;  // of the word in it
    GdkColor wordLetters;
};

// By the kept key, an unknown one counting as the usual one: yellow, but in a theme of high
// contrast what that selects in, as everybody who needs one expects. `view` is where the text
// stands.
HighlightColors HighlightColorsOf(const std::string& key, GtkWidget* view);
