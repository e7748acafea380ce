#include "gui/windows/status_window.h"

#include <algorithm>
#include <ctime>

#include "gui/accessible.h"
#include "gui/controls/control_host.h"
#include "gui/display_text.h"
#include "gui/icons.h"

namespace {

constexpr const char* kNormalTag = "white-color";
constexpr const char* kErrorTag = "error-color";
constexpr const char* kErrorOnLight = "#B00020";
constexpr const char* kErrorOnDark = "#FF8A80";

std::string TimeText(std::time_t now) {
    std::tm local{};
    localtime_r(&now, &local);
    char text[16];
    std::strftime(text, sizeof text, "%H:%M:%S", &local);
    return text;
}

bool IsDark(const GdkColor& color) {
    return color.red + 2 * color.green + color.blue < 4 * 0x8000;
}

void CreateTags(GtkTextBuffer* buffer, const GtkStyle& style) {
    GtkTextTagTable* tags = gtk_text_buffer_get_tag_table(buffer);
    if (gtk_text_tag_table_lookup(tags, kNormalTag) != nullptr)
        return;
    gtk_text_buffer_create_tag(buffer, kNormalTag, "foreground-gdk", &style.text[GTK_STATE_NORMAL],
                               nullptr);
    gtk_text_buffer_create_tag(buffer, kErrorTag, "foreground",
                               IsDark(style.base[GTK_STATE_NORMAL]) ? kErrorOnDark : kErrorOnLight,
                               nullptr);
}

}  // namespace

void LStatusWindow::Init(LControlHost& window, int id) {
    signals_.Clear();
    view_ = window.GetControlByID(id + 1);
    if (!GTK_IS_TEXT_VIEW(view_)) {
        view_ = nullptr;
        return;
    }
    signals_.Connect(view_, "destroy", G_CALLBACK(GCViewDestroyed), this);
    SetAccessibleName(view_, "Status");
    gtk_text_view_set_pixels_below_lines(GTK_TEXT_VIEW(view_), 1);
    gtk_widget_ensure_style(view_);
    GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(view_));
    CreateTags(buffer, *gtk_widget_get_style(view_));
    GtkTextIter end;
    gtk_text_buffer_get_end_iter(buffer, &end);
    end_ = gtk_text_buffer_create_mark(buffer, "endpos", &end, FALSE);
    for (std::size_t i = 0; i < icons_.size(); ++i)
        icons_[i] = LoadIcon(kErrorIcon + static_cast<int>(i));
}

void LStatusWindow::GCViewDestroyed(GtkWidget*, gpointer self) {
    static_cast<LStatusWindow*>(self)->view_ = nullptr;
}

void LStatusWindow::DisplayStatus(const char* text, std::uint8_t kind) {
    DisplayStatus(TimeText(std::time(nullptr)).c_str(), text, kind);
}

void LStatusWindow::DisplayStatus(const char* timeText, const char* message, std::uint8_t level) {
    {
        const std::lock_guard lock(mutex_);
        if (lines_.size() == kMaxLines)
            lines_.pop_front();
        lines_.push_back({timeText, message, level});
    }
    QueueNotify();
}

void LStatusWindow::EvNotify() {
    std::deque<Line> lines;
    {
        const std::lock_guard lock(mutex_);
        lines.swap(lines_);
    }
    if (view_ == nullptr || lines.empty())
        return;
    for (const Line& line : lines)
        Insert(line);
    DropOldLines();
    gtk_text_view_scroll_mark_onscreen(GTK_TEXT_VIEW(view_), end_);
}

void LStatusWindow::Insert(const Line& line) {
    GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(view_));
    const char* tag = line.kind == kLogError ? kErrorTag : kNormalTag;
    const bool withIcon = line.kind >= 1 && line.kind <= icons_.size();
    GtkTextIter end;
    gtk_text_buffer_get_end_iter(buffer, &end);
    const std::string head = line.time + (withIcon ? " " : "     ");
    gtk_text_buffer_insert_with_tags_by_name(buffer, &end, head.c_str(), -1, tag, nullptr);
    if (withIcon && icons_[line.kind - 1u])
        gtk_text_buffer_insert_pixbuf(buffer, &end, icons_[line.kind - 1u].Get());
    const std::string tail = (withIcon ? " " : "") + DisplayText(line.message) + "\n";
    gtk_text_buffer_insert_with_tags_by_name(buffer, &end, tail.c_str(), -1, tag, nullptr);
}

void LStatusWindow::DropOldLines() {
    GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(view_));
    const int extra = gtk_text_buffer_get_line_count(buffer) - 1 - static_cast<int>(kMaxLines);
    if (extra <= 0)
        return;
    GtkTextIter start;
    GtkTextIter keep;
    gtk_text_buffer_get_start_iter(buffer, &start);
    gtk_text_buffer_get_iter_at_line(buffer, &keep, extra);
    gtk_text_buffer_delete(buffer, &start, &keep);
}

void LStatusWindow::SetFontSize(int points) {
    if (view_ == nullptr)
        return;
    PangoFontDescription* font =
        pango_font_description_copy(gtk_widget_get_style(view_)->font_desc);
    pango_font_description_set_size(font, std::clamp(points, 4, 72) * PANGO_SCALE);
    gtk_widget_modify_font(view_, font);
    pango_font_description_free(font);
}
