#include "playback/sound_server.h"

#include <memory>
#include <utility>

#include "foundation/threads/detached_thread.h"
#include "playback/alsa_card.h"
#include "playback/pcm_out.h"

namespace {

constexpr unsigned int kMostMilliseconds = 1000;

// Shared by who asks and the thread, whichever lasts longer.
struct Answer {
    bool isOpen = false;  // the thread's until done is signalled
    LSignalObject done;
};

class AskingThread final : public LDetachedThread {
public:
    explicit AskingThread(std::shared_ptr<Answer> answer) : answer_(std::move(answer)) {}

private:
    void ThreadFunction() override {
        PcmOut pcm;
        answer_->isOpen = pcm.Open(kSoundServer) == 0;
        answer_->done.Signal();
    }

    std::shared_ptr<Answer> answer_;
};

}  // namespace

bool SoundServerAnswers() {
    // Never destroyed: the program's end does not wait for a server either.
    static auto& threads = *new LDetachedThreadsOwner;
    const auto answer = std::make_shared<Answer>();
    (new AskingThread(answer))->StartDetached(threads, 0);
    return answer->done.Ref().WaitSignal(kMostMilliseconds) && answer->isOpen;
}
