// Reading aloud: a text becomes sound sentence by sentence, and the player plays it from the first
// one on.
#pragma once

#include <gtk/gtk.h>

#include <cstddef>
#include <memory>
#include <string>

#include "app/reading_info.h"
#include "gui/gui_timer.h"
#include "playback/dialogs/play_dialog.h"
#include "sound/sound_time.h"
#include "speech/speech_reading.h"

// Where the main window follows a reading. GUI thread.
class ReadAloudListener {
public:
    virtual ~ReadAloudListener() = default;
    virtual void EvReadingStarted() = 0;  // again too, after a pause or a stop in the player
    // length is an estimate until the engine has spoken the whole text.
    virtual void EvReadingTime(LSoundTime position, LSoundTime length) = 0;
    virtual void EvReadingStretch(std::size_t begin, std::size_t end) = 0;  // bytes, being heard
    virtual void EvReadingRoute(const std::string& /*text*/) {}  // why the sound card is not used
    virtual void EvReadingWaits() = 0;  // nothing is heard: the voice is slower than speech
    // note: what the user is to be told about a reading that went well; inTrouble: it did not, and
    // the user will be told.
    virtual void EvReadingEnded(const std::string& note, bool inTrouble) = 0;
    // The player's "Next Track".
    virtual bool HasNextReading() const { return false; }
    virtual void EvNextReading() {}
    virtual void EvReadingStopped() {}  // by the user, in the player
    // A key pressed in the player that is none of its own; true when it was of use.
    virtual bool EvReadingKey(unsigned int /*key*/) { return false; }
};

// One reading at a time, in a player beside the main window. The player is there while it plays or
// pauses, and as long as the user is in it, to hear a sentence again for example.
//
// GUI thread only; Start waits for the first sentence, with a progress dialog when that takes long,
// and playing then goes on by itself.
class ReadAloud : private LPlayDlgListener {
public:
    // kUnseen is for modal windows, beside which no player could be used.
    enum class Player { kBeside, kUnseen };
    // listener outlives this object.
    explicit ReadAloud(ReadAloudListener& listener, Player player = Player::kBeside);
    ~ReadAloud() override;

    // Speaks text with the voice and plays it; stops what was playing. Troubles are told to the
    // user here. takesKeyboard: whether a player that comes with it gets the keyboard.
    void Start(const LPlayerNeighbour& mainWindow, const std::string& text, int voice,
               bool takesKeyboard);
    void Stop();  // also from within the wait of Start
    // Stops, and takes the player from the screen.
    void Close();
    bool IsReading() const { return isStarting_ || player_.IsLoaded(); }

private:
    void EvPlayerStarted() override;
    void EvPlayerPaused() override { silence_.Stop(); }
    void EvPlayerTime(LSoundTime time) override;
    void EvPlayerEnded(PlayTrouble trouble) override;
    void EvPlayerStopped() override { listener_.EvReadingStopped(); }
    void EvPlayerLeft() override { LeaveSoon(); }
    void EvPlayerRoute(const std::string& text) override { listener_.EvReadingRoute(text); }
    void EvPlayerClosed() override;
    void EvNextTrack() override { listener_.EvNextReading(); }
    bool EvPlayerKey(unsigned int key) override { return listener_.EvReadingKey(key); }

    void ShowTrouble(PlayTrouble trouble);
    void ShowEngineTrouble(const std::string& message);
    bool AwaitFirstSound(SpeechReading& reading);
    void EndEngine();
    void WatchForSilence();
    void LeaveSoon();
    static gboolean GCLeave(gpointer self);
    GtkWidget* BoxParent() const;

    ReadAloudListener& listener_;
    const bool isUnseen_;
    LPlayerNeighbour mainWindow_;
    ReadingInfo info_;
    bool isStarting_ = false;
    bool isStopped_ = false;      // while starting
    bool isFailureTold_ = false;  // the engine's, of this reading
    int position_ = 0;            // frame being heard
    LGuiTimer silence_;
    unsigned int leaving_ = 0;  // idle source that takes the player from the screen, 0 when none
    LPlayDlgModeless player_;
};
