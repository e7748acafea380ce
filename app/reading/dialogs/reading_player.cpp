#include "app/reading/dialogs/reading_player.h"

#include <utility>

ReadingPlayer::ReadingPlayer(Narrator& narrator, std::function<bool(unsigned int key)> keys)
    : narrator_(narrator),
      player_(narrator),
      news_(narrator.News(), [this](const ReadingNews& news) { Hear(news); }) {
    player_.keys = std::move(keys);
    player_.left = [this] { LeaveSoon(); };
    player_.closed = [this] {
        narrator_.Stop();
        narrator_.Forget();
    };
}

void ReadingPlayer::Expect(const LPlayerNeighbour& neighbour, bool takesKeyboard) {
    neighbour_ = neighbour;
    takesKeyboard_ = takesKeyboard;
}

GtkWidget* ReadingPlayer::BoxParent() const {
    return player_.IsOpen() ? player_.Widget() : neighbour_.window;
}

void ReadingPlayer::Close() {
    leaving_.Stop();
    player_.Close(kCommandOk);
}

void ReadingPlayer::Hear(const ReadingNews& news) {
    if (!news.IsNew())
        return;
    const bool inTrouble =
        news.end == ReadingEnd::kCardFailed || news.end == ReadingEnd::kEngineFailed;
    if (news.state == ReadingState::kPlaying)
        player_.Show(neighbour_, takesKeyboard_);
    else if (news.state == ReadingState::kIdle)
        Close();
    else if (news.state == ReadingState::kEnded && !inTrouble)
        LeaveSoon();
}

// Not in the middle of what the player is telling, and not when another reading follows at once.
void ReadingPlayer::LeaveSoon() {
    constexpr unsigned int kMomentMilliseconds = 50;
    leaving_.Start(kMomentMilliseconds, [this] {
        // A box that is up belongs to the player.
        if (narrator_.IsReading() || player_.HasFocus() || gtk_grab_get_current() != nullptr)
            return;
        Close();
        narrator_.Forget();
    });
}
