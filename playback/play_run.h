// One stretch of playback: the thread that feeds the card, from a start to the next halt.
//
// Threads
//   * The GUI thread makes a run, starts it, takes its news and halts it. Everything else happens
//     on the run's own thread, which reads the source and writes the card.
//   * The source belongs to the thread until Halt. A card may keep the thread in a call for as long
//     as it likes, so Halt does not wait for it: it takes the source back under sourceMutex_, which
//     the thread never holds while it deals with the card, and the thread then ends by itself.
//   * News go to the GUI thread under newsMutex_, with a notification queued behind them; several
//     may coalesce to the newest. After Halt there are none.
//   * After its first block the thread runs at real-time priority, so that a busy user interface
//     cannot starve the card.
//
// The thread hands over what fits, follows by the card's delay what is being heard, and sleeps in
// one poll of the card's descriptors and its stop signal.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "foundation/threads/thread.h"
#include "playback/block_ring.h"
#include "playback/card_clock.h"
#include "playback/pcm_out.h"
#include "playback/play_device.h"
#include "playback/play_news.h"
#include "sound/fade.h"
#include "sound/sound_source.h"
#include "sound/tempo.h"

class PlayRun final : private LThread {
public:
    // notify is called on the thread when there are news, never once Halt has returned. Without a
    // tempo the source plays at its own, without a fade at its own loudness. Who was heard through
    // the sound server just now does not wait for a card that another program holds.
    PlayRun(const LSoundSource& source, LSoundPlayDevice device, bool waitsForCard,
            std::shared_ptr<const LTempo> tempo, std::shared_ptr<LFade> fade,
            std::function<void()> notify);
    ~PlayRun() override;  // waits for the thread

    using LThread::IsRunning;
    void Start() { LThread::Start(0); }
    // Ends playback and gives the source back: no handle of the run holds it any longer. Returns
    // within 20 ms, also while the card keeps the thread, which IsRunning then tells.
    void Halt();
    bool HasFinished() const { return !IsRunning() || finished_.Ref().IsSignaled(); }
    // Each flag is told once.
    PlayNews TakeNews();
    int EndFrame();

private:
    enum class Supply {
        kBlock,  // a block waits to be handed over
        kFull,   // enough is underway
        kDry,    // nothing there yet
        kOver,   // nothing will come
    };

    void ThreadFunction() override;
    bool IsPendingWork() const override { return false; }
    bool OpenCard();
    PlayTrouble TryDevice(LSoundPlayDevice device);
    void TellRoute(PlayRoute::Way way, bool isBusy);
    bool MatchCard();
    bool Step();
    Supply NextBlock();
    void ReadBlock(int position, int frames);
    void ConvertBlock(int frames);
    bool WriteBlock();
    bool FollowCard();
    void Publish(const BlockRecord& record);
    bool Wait(Supply supply);
    bool Recover(int error);
    bool Resume();
    void GoBackToHeard();
    void RaisePriorityOnce();
    void TellEnd(PlayTrouble trouble);
    bool Fail(PlayTrouble trouble);
    void Tell(const std::function<void(PlayNews&)>& change);

    const LSoundPlayDevice device_;
    const bool waitsForCard_;
    const int rate_;  // of the owner's source, which may be taken back while the card is opened
    const std::uint8_t channels_;
    const std::shared_ptr<const LTempo> tempo_;
    const std::shared_ptr<LFade> fade_;
    const std::function<void()> notify_;
    LSignalObject finished_;
    std::mutex sourceMutex_;
    LSoundSource original_;     // as the owner gave it
    LSoundSource source_;       // as the card gets it
    bool isTakenBack_ = false;  // under both mutexes

    std::mutex newsMutex_;
    PlayNews news_;

    // The thread's own, set up before its loop so that nothing is allocated inside.
    bool isBusy_ = false;  // the card, once it was tried
    PcmOut pcm_;
    CardClock clock_;
    BlockRing ring_;
    std::vector<int> block_;
    std::vector<std::int16_t> pcmBlock_;
    int blockFrames_ = 0;
    int pendingFrames_ = 0;  // of pcmBlock_, still to be handed over
    int pendingFrom_ = 0;
    bool hasRoom_ = true;      // as far as is known
    bool isRoomTold_ = false;  // by the card, not taken for granted
    bool isRefused_ = false;   // the card tells of room but takes nothing
    bool isFirstBlock_ = true;
    int nextFrame_ = 0;  // of the owner's source: behind the last block
    std::int64_t toldFirst_ = -1;
    std::int64_t preparedAt_ = -1;  // frames written until then
    std::optional<int> wentBackTo_;
};
