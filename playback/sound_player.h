// Plays one sound source on a card and tells a listener about it.
//
// Everything here happens on the GUI thread; the card is dealt with by a PlayRun, whose head says
// how the two threads share the source. A run lasts from a start to the next halt; what it had
// still to tell goes with it. No operation waits for the card: a run that its card does not let go
// is left behind and ends by itself.
//
// A listener, and the handlers, may call any operation from within any call, and may delete
// the player.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "foundation/gdk/queued_notify.h"
#include "playback/play_device.h"
#include "playback/play_run.h"
#include "sound/fade.h"
#include "sound/level.h"
#include "sound/sound_source.h"
#include "sound/sound_time.h"
#include "sound/tempo.h"

// What a player tells, always on the GUI thread. id is the number that the player's owner gave it.
class LSoundPlayerNotify {
public:
    virtual ~LSoundPlayerNotify() = default;
    virtual void spntfPlay(int /*id*/) {}   // started or resumed
    virtual void spntfStop(int /*id*/) {}   // stopped and the source released
    virtual void spntfCue(int /*id*/) {}    // paused at a position
    virtual void spntfPause(int /*id*/) {}  // for listeners' own use; the player never calls it
    virtual void spntfTime(LSoundTime /*time*/, int /*id*/) {}
    // One level a channel, of what is being heard. Whoever was told a level is told silence before
    // the stop or the pause.
    virtual void spntfLevel(const LDBMC& /*levels*/, int /*id*/) {}
};

class LSoundPlayer final : public LThreadQueuedNotify, public LSoundPlayerNotify {
public:
    // listener may be null; it outlives the player.
    LSoundPlayer(LSoundPlayerNotify* listener, int id, LSoundPlayDevice device);
    ~LSoundPlayer() override;  // stops, with spntfStop when something is loaded

    // Takes effect when the card is opened next: at Start, Play after Cue, and Seek.
    void SetDevice(LSoundPlayDevice device) { device_ = device; }

    // How fast to play, from the next opening of the card on; changes of the tempo itself are heard
    // at once. None: at the source's own.
    void SetTempo(std::shared_ptr<const LTempo> tempo) { tempo_ = std::move(tempo); }
    // Likewise how loud. None: as the source is.
    void SetFade(std::shared_ptr<LFade> fade) { fade_ = std::move(fade); }

    // Stops what plays, then plays source from its position; the caller may drop its own handle at
    // any time, but leaves the source alone. False: the source is not good, or another Start waits
    // for the spntfStop that this is called from.
    bool Start(const LSoundSource& source);
    void Play();  // resumes when cued
    void Cue();   // pauses at the start of the block being heard, which Play repeats
    // Always sounds afterwards, even when the state reads cued.
    void Seek(int frame);
    void Seek(LSoundTime time) { Seek(time.ToFrames(timeRate_)); }
    void Stop();
    void WriteCueBuffer() {}  // a cued player has no card open, so there is no buffer to write

    bool IsLoaded() const { return state_ != State::kIdle; }
    bool IsCued() const { return state_ == State::kCued; }

    // Frames are those of the source that was started, whatever the card is given; 0 when idle.
    int TimeRate() const { return timeRate_; }  // of them in a second of its time
    int Position() const { return position_; }  // last told: what is being heard
    LSoundTime PositionTime() const { return TimeOf(position_); }
    int EndSample() const;  // grows while the source streams
    LSoundTime Length() const { return TimeOf(EndSample()); }

    // Why the last playback ended; valid in spntfStop and until the next Start.
    PlayTrouble Trouble() const { return trouble_; }
    // Called when playback ended without any spntf call: the card refused its parameters or was
    // lost. The state stays loaded until the owner calls Stop, which it may do right here.
    void SetTroubleHandler(std::function<void(PlayTrouble)> handler) {
        onTrouble_ = std::move(handler);
    }

    // Called whenever the sound takes another way than it did, or has to wait for its card.
    void SetRouteHandler(std::function<void(const PlayRoute&)> handler) {
        onRoute_ = std::move(handler);
    }

private:
    enum class State { kIdle, kLoaded, kCued };

    // Where a call of a listener leaves its caller.
    class Moment {
    public:
        explicit Moment(const LSoundPlayer& player)
            : halts_(player.halts_), atStart_(*player.halts_) {}
        bool HasPlayer() const { return !halts_.expired(); }
        // The player is there, and nothing has stopped, paused or moved it since.
        bool Holds() const { return HasPlayer() && *halts_.lock() == atStart_; }

    private:
        std::weak_ptr<const unsigned> halts_;
        unsigned atStart_;
    };

    void EvNotify() override;
    void EvEnded(const PlayNews& news);
    void StartRun();
    void Halt();
    bool TellSilence();
    LSoundTime TimeOf(int frame) const { return LSoundTime::FromFrames(frame, timeRate_); }

    LSoundPlayerNotify& listener_;
    const int id_;
    LSoundPlayDevice device_;
    std::shared_ptr<const LTempo> tempo_;
    std::shared_ptr<LFade> fade_;
    LSoundSource source_;  // the run's while there is one
    int timeRate_ = 0;
    int position_ = 0;
    State state_ = State::kIdle;
    std::unique_ptr<PlayRun> run_;
    bool wasOnServer_ = false;         // the last run, instead of on its card
    std::shared_ptr<unsigned> halts_;  // counts them; gone with the player
    bool isStarting_ = false;          // a Start from within would be undone by the one that waits
    std::uint8_t toldChannels_ = 0;    // of the last level told; 0 after silence
    PlayTrouble trouble_ = PlayTrouble::kNone;
    std::function<void(PlayTrouble)> onTrouble_;
    std::function<void(const PlayRoute&)> onRoute_;
};
