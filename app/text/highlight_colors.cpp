#include "app/text/highlight_colors.h"

#include <algorithm>

#include "foundation/owned_text.h"

namespace {

// Both colours of each, so that all of them can be read in dark themes too.
constexpr HighlightChoice kChoices[] = {
    {"usual", "Yellow, or as the theme needs it", "#ffe08a", "#000000", "#ffab2e", "#000000"},
    {"green", "Green", "#b5e6a2", "#000000", "#63c14b", "#000000"},
    {"blue", "Light blue", "#a9d8f7", "#000000", "#4fb0f0", "#000000"},
    {"pink", "Pink", "#ffc2dc", "#000000", "#ff78b0", "#000000"},
    {"dark", "Dark blue with white letters", "#123a6b", "#ffffff", "#ffffff", "#123a6b"},
    {"selection", "As selected text", nullptr, nullptr, nullptr, nullptr},
};

// The theme's name tells: many an ordinary theme has black letters on white, too.
bool IsHighContrast(GtkWidget* view) {
    gchar* name = nullptr;
    g_object_get(gtk_widget_get_settings(view), "gtk-theme-name", &name, nullptr);
    const OwnedText owned(name);
    const OwnedText lower(name != nullptr ? g_ascii_strdown(name, -1) : nullptr);
    return lower && std::string(lower.get()).find("contrast") != std::string::npos;
}

}  // namespace

std::span<const HighlightChoice> HighlightChoices() {
    return kChoices;
}

HighlightColors HighlightColorsOf(const std::string& key, GtkWidget* view) {
    const auto* found = std::ranges::find(kChoices, key, &HighlightChoice::key);
    const HighlightChoice& choice = found != std::end(kChoices) ? *found : kChoices[0];
    const bool isThemes =
        choice.ground == nullptr || (&choice == &kChoices[0] && IsHighContrast(view));
    const GtkStyle* style = gtk_widget_get_style(view);
    // The theme's two for one another.
    const GdkColor& ground = style->base[GTK_STATE_SELECTED];
    const GdkColor& letters = style->text[GTK_STATE_SELECTED];
    HighlightColors colors{ground, letters, letters, ground};
    if (!isThemes) {
        gdk_color_parse(choice.ground, &colors.ground);
        gdk_color_parse(choice.letters, &colors.letters);
        gdk_color_parse(choice.wordGround, &colors.wordGround);
        gdk_color_parse(choice.wordLetters, &colors.wordLetters);
    }
    return colors;
}
