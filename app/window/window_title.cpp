#include "app/window/window_title.h"

#include <utility>

namespace {

// A screen reader says a new title of the window in front at once, over the first sentence.
void SetTitleUnsaid(GtkWindow* window, const char* title) {
    const auto match = GSignalMatchType(G_SIGNAL_MATCH_ID | G_SIGNAL_MATCH_DATA);
    const guint notify = g_signal_lookup("notify", G_TYPE_OBJECT);
    g_signal_handlers_block_matched(window, match, notify, 0, nullptr, nullptr, window);
    gtk_window_set_title(window, title);
    g_signal_handlers_unblock_matched(window, match, notify, 0, nullptr, nullptr, window);
}

}  // namespace

WindowTitle::WindowTitle(const LWindow& window, Narrator& narrator,
                         std::function<std::string()> document)
    : window_(window),
      narrator_(narrator),
      document_(std::move(document)),
      news_(narrator.News(), [this](const ReadingNews& news) {
          if (news.IsNew())
              Show();
      }) {}

void WindowTitle::Show() const {
    if (!window_.IsOpen())
        return;
    const std::string name = narrator_.IsReading() ? narrator_.Now().title : document_();
    const std::string title = name.empty() ? "Lectora" : name + " - Lectora";
    GtkWindow* window = GTK_WINDOW(window_.Widget());
    if (title == gtk_window_get_title(window))
        return;
    // That of a document came before the reading, and may be said.
    const auto set = document_().empty() ? SetTitleUnsaid : gtk_window_set_title;
    set(window, title.c_str());
}
