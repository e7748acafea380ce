#include "playback/mixer_setter.h"

#include <mutex>
#include <optional>
#include <utility>

#include "foundation/threads/detached_thread.h"

namespace {

constexpr unsigned int kMostWaitedMilliseconds = 100;

struct Wish {
    LSoundPlayDevice device;
    LDB volume;
};

}  // namespace

// Shared with the thread, whichever lasts longer.
struct MixerSetter::Wishes {
    std::mutex mutex;  // of what follows
    std::optional<Wish> next;
    bool isBusy = false;  // a thread sets volumes, or is about to
    MixerResult answer = MixerResult::kUnanswered;
    LSignalObject done;  // no wish is left
};

class MixerSetter::SettingThread final : public LDetachedThread {
public:
    explicit SettingThread(std::shared_ptr<Wishes> wishes) : wishes_(std::move(wishes)) {}

private:
    // The program's end, and a test's look at it, wait for no card that stands still.
    bool IsPendingWork() const override { return false; }

    void ThreadFunction() override {
        std::unique_lock lock(wishes_->mutex);
        while (wishes_->next) {
            const Wish wish = *std::exchange(wishes_->next, std::nullopt);
            lock.unlock();
            const MixerResult answer = wish.device.SetVolumeOverride(wish.volume, LDB());
            lock.lock();
            wishes_->answer = answer;
        }
        wishes_->isBusy = false;
        wishes_->done.Signal();
    }

    std::shared_ptr<Wishes> wishes_;
};

MixerSetter::MixerSetter() : wishes_(std::make_shared<Wishes>()) {}

MixerSetter::~MixerSetter() = default;

MixerResult MixerSetter::Set(LSoundPlayDevice device, LDB volume) {
    // Never destroyed: it would wait for its threads.
    static auto& threads = *new LDetachedThreadsOwner;
    {
        const std::lock_guard lock(wishes_->mutex);
        wishes_->next = Wish{device, volume};
        if (wishes_->isBusy)
            return MixerResult::kUnanswered;
        wishes_->isBusy = true;
        wishes_->done.Reset();
    }
    const bool isStarted = (new SettingThread(wishes_))->StartDetached(threads, 0);
    if (isStarted)
        wishes_->done.Ref().WaitSignal(kMostWaitedMilliseconds);
    const std::lock_guard lock(wishes_->mutex);
    if (!isStarted) {
        wishes_->isBusy = false;  // the next volume tries again
        return MixerResult::kFailed;
    }
    return wishes_->isBusy ? MixerResult::kUnanswered : wishes_->answer;
}
