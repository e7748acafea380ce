// Reading aloud: a text becomes a sound file, and the player plays it.
#pragma once

#include <gtk/gtk.h>

#include "playback/sound_player.h"
#include "sound/sound_time.h"

// Where the main window follows a reading. GUI thread.
class ReadAloudListener {
public:
    virtual ~ReadAloudListener() = default;
    virtual void EvReadingStarted() = 0;
    virtual void EvReadingTime(LSoundTime position, LSoundTime length) = 0;
    virtual void EvReadingEnded(bool inTrouble) = 0;  // inTrouble: the user will be told
};

// One reading at a time. GUI thread only; Start blocks with a progress dialog while the engine
// speaks, playing then goes on by itself.
class ReadAloud : private LSoundPlayerNotify {
public:
    // listener outlives this object.
    explicit ReadAloud(ReadAloudListener& listener);
    ~ReadAloud() override;

    // Speaks text with the voice and plays it; stops what was playing. Troubles are told to the
    // user here.
    void Start(GtkWidget* parent, const char* text, int voice);
    void Stop();
    bool IsReading() const { return player_.IsLoaded(); }

private:
    void spntfPlay(int id) override;
    void spntfStop(int id) override;
    void spntfTime(LSoundTime time, int id) override;
    void EvTrouble(PlayTrouble trouble);
    void ShowTrouble(PlayTrouble trouble);

    ReadAloudListener& listener_;
    GtkWidget* parent_ = nullptr;  // of message boxes; borrowed
    LSoundTime length_;
    LSoundPlayer player_;
};
