// Plays one sound source on a card and tells a listener about it.
//
// Threads
//   * Two: the owner's GUI thread calls every public operation and receives every notification; the
//     player's own thread (the LThread base) reads the source and writes the card.
//   * The source belongs to the player thread while that runs. Every operation that touches it
//     first stops and joins the thread. What the GUI thread needs meanwhile is in Shared below.
//   * Shared is written by the player thread, then a notification is queued; EvNotify reads it on
//     the GUI thread. No lock: each value is atomic, the flag that announces values is stored after
//     them, and several queued notifications may see only the newest values.
//   * The player thread replaces source_ (by a converted one) only before it first announces
//     anything. EvNotify touches source_ only once the end is announced, and from then on the
//     thread leaves it alone.
//   * The GUI thread may hold the GDK lock while it joins: the player thread never takes that lock.
//   * Notifications still queued when the player dies are taken back by LThreadQueuedNotify.
//   * After its first block the thread runs at real-time priority, so that a busy user interface
//     cannot starve the card.
// States change in SetState alone, on the GUI thread: idle, loaded, loaded and cued.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "foundation/gdk/queued_notify.h"
#include "foundation/thread.h"
#include "playback/block_ring.h"
#include "playback/pcm_out.h"
#include "playback/play_device.h"
#include "sound/level.h"
#include "sound/sound_source.h"
#include "sound/sound_time.h"

// What a player tells, always on the GUI thread. id is the number that the player's owner gave it.
class LSoundPlayerNotify {
public:
    virtual ~LSoundPlayerNotify() = default;
    virtual void spntfPlay(int /*id*/) {}   // started or resumed
    virtual void spntfStop(int /*id*/) {}   // stopped and the source released
    virtual void spntfCue(int /*id*/) {}    // paused at a position
    virtual void spntfPause(int /*id*/) {}  // for listeners' own use; the player never calls it
    virtual void spntfTime(LSoundTime /*time*/, int /*id*/) {}
    virtual void spntfLevel(const LDBMC& /*levels*/, int /*id*/) {}  // one level a channel
};

// Why playback ended by itself.
enum class PlayTrouble {
    None,         // played to the end, stopped by the owner, or still playing
    CannotOpen,   // no such card, or another program holds it
    CannotSetUp,  // the card refused the sound's parameters
    DeviceLost,   // the card vanished or failed while playing
};

class LSoundPlayer final : private LThread, public LThreadQueuedNotify, public LSoundPlayerNotify {
public:
    // listener may be null; it outlives the player.
    LSoundPlayer(LSoundPlayerNotify* listener, int id, LSoundPlayDevice device);
    ~LSoundPlayer() override;  // stops, with spntfStop when something is loaded

    void SetDevice(LSoundPlayDevice device) {
        device_ = device;
    }  // takes effect at the next start of the thread

    // Stops what plays, then plays source from its position; the caller may drop its own handle at
    // any time, but leaves the source alone. False: the source is not good.
    bool Start(const LSoundSource& source);
    void Play();  // resumes when cued
    void Cue();   // pauses at the start of the block last handed to the card, which Play repeats
    void Seek(int frame);  // in frames of SampleRate(); always sounds afterwards, even when the
                           // state reads cued
    void Stop();
    void WriteCueBuffer() {}

    bool IsLoaded() const { return (state_ & kLoaded) != 0; }
    bool IsCued() const { return (state_ & kCued) != 0; }
    int Position() const { return shared_.position.load(); }  // frames, last announced
    // Frames a second of Position and Seek: the source's, or the card's once playback converts.
    int SampleRate() const { return shared_.rate.load(); }

    // Why the last playback ended; valid in spntfStop and until the next Start.
    PlayTrouble Trouble() const { return shared_.trouble.load(); }
    // Called on the GUI thread when playback ended without any spntf call: the card refused its
    // parameters or was lost. The state stays loaded until the owner calls Stop, which it may do
    // right here.
    void SetTroubleHandler(std::function<void(PlayTrouble)> handler) {
        onTrouble_ = std::move(handler);
    }

private:
    static constexpr int kLoaded = 1;
    static constexpr int kResumePending = 2;  // only ever cleared
    static constexpr int kCued = 4;

    enum class BlockResult { Written, Dropped, Lost };

    struct Shared {
        std::atomic<int> position{0};
        std::atomic<int> rate{0};
        std::atomic<int> channels{0};
        std::array<std::atomic<std::int8_t>, 255> levels{};
        std::atomic<bool> ended{false};
        std::atomic<bool> updatePending{false};
        std::atomic<bool> troublePending{false};
        std::atomic<PlayTrouble> trouble{PlayTrouble::None};
    };

    // GUI thread.
    void EvNotify() override;
    void SetState(int state);
    void StartThread();
    void Halt();
    void Unload();
    void ClearAnnouncements();
    LSoundTime TimeOf(int frame) const;
    LDBMC Levels() const;

    // Player thread.
    void ThreadFunction() override;
    bool OpenCard(PcmOut& pcm);
    void MatchCard(const PcmOut& pcm);
    void PlayLoop(PcmOut& pcm);
    bool PlayStep(PcmOut& pcm);
    bool AwaitEnd(PcmOut& pcm);
    BlockResult PlayBlock(PcmOut& pcm, int position, int frames);
    BlockResult WriteBlock(PcmOut& pcm, int frames);
    BlockResult Recover(PcmOut& pcm, int error);
    void ConvertBlock(int frames, int cardChannels);
    void RaisePriorityOnce();
    void Publish();
    void FailSilently(PlayTrouble trouble);

    LSoundPlayerNotify& listener_;
    const int id_;
    LSoundPlayDevice device_;
    int card_ = 0;  // of the running thread
    LSoundSource source_;
    int state_ = 0;
    Shared shared_;
    std::function<void(PlayTrouble)> onTrouble_;

    // The player thread's own, set up before its loop so that nothing is allocated inside.
    BlockRing ring_;
    std::vector<int> block_;
    std::vector<std::int16_t> pcmBlock_;
    int blockFrames_ = 0;
    bool firstBlock_ = true;
};
