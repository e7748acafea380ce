#include "app/reading/dialogs/reading_view.h"

#include <utility>

namespace {

// In the status bar while there is nothing else to tell.
constexpr const char* kBanner = "Lectora v 1.05";

}  // namespace

ReadingView::ReadingView(LMainWindow& window, Narrator& narrator, Ways ways)
    : window_(window),
      narrator_(narrator),
      player_(narrator, {std::move(ways.keys), std::move(ways.reshaped)}),
      waitBox_(narrator, [this] { return player_.BoxParent(); }),
      troubles_(narrator, {.parent = [this] { return player_.BoxParent(); },
                           .noVoice = std::move(ways.noVoice),
                           .cannotPlay = std::move(ways.cannotPlay)}),
      status_(narrator,
              {.show = [this](const char* text) { window_.SetStatusText(text); },
               .tell = [this](const char* text) { window_.TellStatusText(text); },
               .say = [this](const char* text) { window_.SayBesideStatus(text); },
               .more = std::move(ways.statusMore)},
              kBanner) {}

void ReadingView::ShowStatus() const {
    const std::string status = StatusOf(narrator_.Now());
    window_.SetStatusText(status.empty() ? kBanner : status.c_str());
}
