#include "app/text/text_size.h"

#include <algorithm>
#include <iterator>

#include "app/settings_keys.h"

namespace {

constexpr int kSizes[] = {6,  7,  8,  9,  10, 11, 12, 14, 16, 18, 20,
                          24, 28, 32, 36, 40, 48, 56, 64, 72, 96};  // points

}  // namespace

void TextSize::Attach(GtkWidget* view) {
    view_ = view;
    if (const int points = kTextSizeSetting.Get(); points > 0)
        Show(std::clamp(points, kSizes[0], kSizes[std::size(kSizes) - 1]));
}

void TextSize::Show(int points) {
    PangoFontDescription* font = pango_font_description_new();
    pango_font_description_set_size(font, points * PANGO_SCALE);
    gtk_widget_modify_font(view_, font);
    pango_font_description_free(font);
}

int TextSize::Shown() const {
    const PangoFontDescription* font = gtk_widget_get_style(view_)->font_desc;
    return (pango_font_description_get_size(font) + PANGO_SCALE / 2) / PANGO_SCALE;
}

int TextSize::Change(int points) {
    Show(points);
    kTextSizeSetting.Set(points);
    return points;
}

int TextSize::Larger() {
    const auto* size = std::upper_bound(std::begin(kSizes), std::end(kSizes), Shown());
    return Change(size != std::end(kSizes) ? *size : kSizes[std::size(kSizes) - 1]);
}

int TextSize::Smaller() {
    const auto* size = std::lower_bound(std::begin(kSizes), std::end(kSizes), Shown());
    return Change(size != std::begin(kSizes) ? *(size - 1) : kSizes[0]);
}

int TextSize::Normal() {
    gtk_widget_modify_font(view_, nullptr);
    kTextSizeSetting.Set(0);
    return Shown();
}
