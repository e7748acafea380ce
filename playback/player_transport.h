// A player with what it plays: play, pause, stop, winding, places, card, volume and speed.
//
// GTK-free. Everything happens on the GUI thread, inside the GDK lock; the card is dealt with by
// the player's own thread (sound_player.h). It is not destroyed from within what it tells.
#pragma once

#include <memory>
#include <string>

#include "foundation/broadcast.h"
#include "playback/mixer_setter.h"
#include "playback/play_device.h"
#include "playback/player_info.h"
#include "playback/player_wind.h"
#include "playback/sound_player.h"
#include "sound/level.h"
#include "sound/sound_time.h"
#include "sound/tempo.h"

// What became of it; the transport itself tells the rest.
enum class LPlayerChange {
    kItem,     // it plays something else from now on
    kPlays,    // again too: after a pause, a move, a wind
    kPaused,   // at a place
    kTime,     // another time is being heard, or was moved to
    kLevels,   // of what is being heard
    kStopped,  // by the user
    kEnded,    // by itself: at the end, in trouble, or with a wind that had begun in silence
    kRoute,    // the way that the sound takes
    kTempo,
    kVolume,
};

class LPlayerTransport : private LSoundPlayerNotify {
public:
    using Subscription = LBroadcast<LPlayerChange>::Subscription;

    // What it plays: a fresh source is asked of `info` each time one is needed. Borrowed.
    explicit LPlayerTransport(LPlayerBaseInfo& info);
    ~LPlayerTransport() override;  // stops
    LPlayerTransport(const LPlayerTransport&) = delete;
    LPlayerTransport& operator=(const LPlayerTransport&) = delete;

    const LPlayerBaseInfo& Info() const { return info_; }
    LBroadcast<LPlayerChange>& Changes() { return changes_; }

    // Card, volume and speed as the settings have them, unless that was done; and back into them.
    void Prepare();
    bool IsPrepared() const { return isPrepared_; }
    void KeepSettings();

    virtual void Play();  // goes on when paused, else from Time() on
    void Pause();         // at the present place; begins to play first when nothing is loaded
    void TogglePause();
    void Stop();             // and back to the start
    virtual void PlayEnd();  // the last three seconds
    // Where the sound goes on. Who is paused hears it again at once.
    virtual void MoveTo(LSoundTime time);
    virtual void MoveToEnd();
    virtual void MoveToSentence(int step);  // `step` ones on; 0 repeats the one being heard
    void Wind(PlayerWind::Way way);         // until EndWind; the same way again begins anew
    void EndWind();
    virtual void NextItem() {}  // while Info().HasNextItem()

    void SetDevice(LSoundPlayDevice device);
    LSoundPlayDevice Device() const { return device_; }
    MixerResult SetVolume(LDB volume);
    LDB Volume() const { return volume_; }
    MixerResult MixerAnswer() const { return mixerAnswer_; }  // to the volume set last
    void SetTempo(int percent);
    int TempoPercent() const { return tempo_->Percent(); }
    LFade& Fade() { return *fade_; }  // of what is heard, whatever the volume

    bool IsLoaded() const { return player_.IsLoaded(); }  // playing or paused
    bool IsPaused() const { return player_.IsCued(); }
    bool IsPlaying() const { return IsLoaded() && !IsPaused(); }
    const PlayerWind& Winding() const { return wind_; }
    LSoundTime Time() const { return time_; }
    LSoundTime Length() const;                    // of the whole
    bool IsLengthKnown() const;                   // else it is an estimate
    int Frame() const { return FrameAt(time_); }  // of the source, at Time()
    LSoundTime TimeOf(int frame) const;
    int TimeRate() const { return timeRate_; }  // of the source last opened
    double Pace() const;                        // frames of it a second
    const LDBMC& Levels() const { return levels_; }
    // Why nothing can be heard, when playback ended by itself.
    PlayTrouble Trouble() const { return trouble_; }
    // What keeps the sound from the card that was chosen, as a sentence; empty when nothing does.
    const std::string& RouteText() const { return routeText_; }

    LSoundSource OpenSource();  // of the item, for who shows it

protected:
    // Before everybody else hears of it.
    virtual void EvChange(LPlayerChange /*change*/) {}

    // The speed that the voice's sound is played at, or will be.
    int TempoOf(const std::string& voice) const;

    // `info` tells of another item from now on: stops, and goes to its start.
    void TakeItem();
    void Halt();  // stops without a word
    void SetTime(LSoundTime time);

private:
    void spntfPlay(int id) override;
    void spntfStop(int id) override;
    void spntfCue(int id) override;
    void spntfTime(LSoundTime time, int id) override;
    void spntfLevel(const LDBMC& levels, int id) override;

    void Tell(LPlayerChange change);
    bool Start(const LSoundSource& source);
    int FrameAt(LSoundTime time) const;
    LSoundTime Later(LSoundTime time) const;
    void PlayFrom(const LSoundSource& source, LSoundTime time);
    void Silence();
    void ReadTempo();
    void StoreTempo();
    void EvTrouble(PlayTrouble trouble);
    void TakeRoute(const PlayRoute& route);
    void SetRouteText(const std::string& text);

    LPlayerBaseInfo& info_;
    LBroadcast<LPlayerChange> changes_;
    bool isPrepared_ = false;
    std::string voice_;  // whose speed the tempo is
    const std::shared_ptr<LTempo> tempo_ = std::make_shared<LTempo>();
    const std::shared_ptr<LFade> fade_ = std::make_shared<LFade>();
    LSoundPlayDevice device_;
    LDB volume_;
    MixerSetter mixer_;
    MixerResult mixerAnswer_ = MixerResult::kDone;
    std::string missingDevice_;  // the settings' own, which has no card at the moment
    std::string obstacle_;       // the first half of the next
    std::string routeText_;
    LSoundPlayer player_;
    int timeRate_ = 0;
    LSoundTime time_;
    LSoundTime length_;
    LDBMC levels_;
    PlayerWind wind_;
    bool isSilencing_ = false;  // the player is stopped from here, which is nobody's news
    PlayTrouble trouble_ = PlayTrouble::kNone;
};
