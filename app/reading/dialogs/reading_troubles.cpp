#include "app/reading/dialogs/reading_troubles.h"

#include <string>
#include <utility>

#include "gui/windows/message_box.h"

namespace {

void ShowCardTrouble(GtkWidget* parent, const ReadingNews& news) {
    if (news.trouble == PlayTrouble::kDeviceLost) {
        MessageBoxRun(parent, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora", "Reading stopped",
                      "The sound device stopped working while the text was read aloud.");
        return;
    }
    std::string text = "Please check that you have selected the correct sound device.";
    if (!news.route.empty())
        text += "\n\n" + news.route;
    MessageBoxRun(parent, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Cannot Play", "Cannot Play",
                  text.c_str());
}

}  // namespace

ReadingTroubles::ReadingTroubles(Narrator& narrator, Help help)
    : help_(std::move(help)),
      news_(narrator.News(), [this](const ReadingNews& news) { Hear(news); }) {}

void ReadingTroubles::Hear(const ReadingNews& news) {
    if (news.IsNew() && news.state == ReadingState::kEnded)
        soon_.Start(0, [this, news] { Show(news); });
}

// The boxes run main loops, in which this object may go.
void ReadingTroubles::Show(const ReadingNews& news) const {
    const Help help = help_;
    GtkWidget* parent = help.parent();
    if (news.end == ReadingEnd::kNoVoice && help.noVoice)
        help.noVoice();
    if (news.end == ReadingEnd::kEngineFailed && !news.note.empty())
        MessageBoxRun(parent, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Synthesize Voice",
                      news.note.c_str(), nullptr);
    if (news.end != ReadingEnd::kCardFailed)
        return;
    ShowCardTrouble(parent, news);
    if (news.trouble != PlayTrouble::kDeviceLost && help.cannotPlay)
        help.cannotPlay(help.parent());
}
