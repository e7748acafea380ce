#include "app/window/window_title.h"

#include <utility>

namespace {

// A screen reader says a new title of the window in front at once, over the first sentence of a
// text that is called by it. It is not told until there is a title that may be said.
void SetTitle(GtkWindow* window, const char* title, bool isSaid) {
    constexpr const char* kUnsaid = "title-unsaid";
    auto* accessible = G_OBJECT(gtk_widget_get_accessible(GTK_WIDGET(window)));
    const bool wasUnsaid = g_object_get_data(accessible, kUnsaid) != nullptr;
    if (!isSaid && !wasUnsaid)
        g_object_freeze_notify(accessible);
    g_object_set_data(accessible, kUnsaid, GINT_TO_POINTER(isSaid ? 0 : 1));
    gtk_window_set_title(window, title);
    if (isSaid && wasUnsaid)
        g_object_thaw_notify(accessible);
}

}  // namespace

WindowTitle::WindowTitle(const LWindow& window, Narrator& narrator,
                         std::function<std::string()> document)
    : window_(window),
      narrator_(narrator),
      document_(std::move(document)),
      news_(narrator.News(), [this](const ReadingNews& news) { Hear(news); }) {}

void WindowTitle::Hear(const ReadingNews& news) {
    const bool isNewChapter = std::exchange(chapter_, news.chapter) != news.chapter;
    if (news.IsNew() || isNewChapter)
        Show();
}

void WindowTitle::Show() const {
    if (!window_.IsOpen())
        return;
    const ReadingNews now = narrator_.Now();
    std::string name = IsReading(now.state) ? now.title : document_();
    if (const std::string chapter = ChapterOf(now); IsReading(now.state) && !chapter.empty())
        name += " - " + chapter;
    const std::string title = name.empty() ? "Lectora" : name + " - Lectora";
    GtkWindow* window = GTK_WINDOW(window_.Widget());
    if (title == gtk_window_get_title(window))
        return;
    // That of a document came before the reading, and may be said; not each chapter over its words.
    SetTitle(window, title.c_str(), !document_().empty() && now.chapters == 0);
}
