#include "app/window/window_title.h"

#include <utility>

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
    gtk_window_set_title(GTK_WINDOW(window_.Widget()),
                         name.empty() ? "Lectora" : (name + " - Lectora").c_str());
}
