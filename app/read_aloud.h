// Reading aloud: a text becomes sound sentence by sentence, and the player plays it from the first
// one on.
#pragma once

#include <gtk/gtk.h>

#include <cstddef>
#include <memory>
#include <string>

#include "playback/sound_player.h"
#include "sound/sound_time.h"
#include "speech/speech_reading.h"

// Where the main window follows a reading. GUI thread.
class ReadAloudListener {
public:
    virtual ~ReadAloudListener() = default;
    virtual void EvReadingStarted() = 0;
    // length is an estimate until the engine has spoken the whole text.
    virtual void EvReadingTime(LSoundTime position, LSoundTime length) = 0;
    virtual void EvReadingStretch(std::size_t begin, std::size_t end) = 0;  // bytes, being heard
    virtual void EvReadingWaits() = 0;  // nothing is heard: the voice is slower than speech
    // note: what the user is to be told about a reading that went well; inTrouble: it did not, and
    // the user will be told.
    virtual void EvReadingEnded(const std::string& note, bool inTrouble) = 0;
};

// One reading at a time. GUI thread only; Start waits for the first sentence, with a progress
// dialog when that takes long, and playing then goes on by itself.
class ReadAloud : private LSoundPlayerNotify {
public:
    // listener outlives this object.
    explicit ReadAloud(ReadAloudListener& listener);
    ~ReadAloud() override;

    // Speaks text with the voice and plays it; stops what was playing. Troubles are told to the
    // user here.
    void Start(GtkWidget* parent, const std::string& text, int voice);
    void Stop();  // also from within the wait of Start
    bool IsReading() const { return isStarting_ || player_.IsLoaded(); }

private:
    void spntfPlay(int id) override;
    void spntfStop(int id) override;
    void spntfTime(LSoundTime time, int id) override;
    void EvTrouble(PlayTrouble trouble);
    void ShowTrouble(PlayTrouble trouble);
    bool AwaitFirstSound(SpeechReading& reading);
    void Play(const LSoundSource& source);
    void EndEngine();
    static gboolean GCLookForSilence(gpointer self);

    ReadAloudListener& listener_;
    GtkWidget* parent_ = nullptr;  // of message boxes; borrowed
    // Null when stopped; shared with a Start that waits for it.
    std::shared_ptr<SpeechReading> reading_;
    bool isStarting_ = false;
    int rate_ = 0;      // frames a second
    int position_ = 0;  // frame being heard
    unsigned int silenceTimer_ = 0;
    LSoundPlayer player_;
};
