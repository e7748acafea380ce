// Encodes finished chapters on a thread of its own, so that the speech engine never waits for an
// encoder but when that is two chapters behind.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>

#include "books/book_tags.h"
#include "formats/pipe16_sink.h"
#include "foundation/threads/progress.h"
#include "foundation/threads/thread.h"

struct ChapterToEncode {
    std::string speech;  // the WAV file, removed once it is encoded
    std::string path;    // what it becomes; appears only whole
    std::string name;    // of the chapter, for messages
    SoundType type = SoundType::kMp3;
    bool isPart = false;  // of one file: without tags, and what can be joined
    int kilobits = 0;     // a second; 0: what serves speech of its rate
    bool evensLoudness = true;
    BookTags tags;
};

class ChapterEncoder final : public LThread {
public:
    // An encoder that takes no sound for so long hangs.
    static constexpr std::chrono::seconds kPatience{180};

    explicit ChapterEncoder(std::chrono::seconds patience = kPatience) : patience_(patience) {
        Start(0);
    }
    ~ChapterEncoder() override { End(); }

    // Both wait while the progress object does not stop them; false then, and after a problem.
    bool Add(ChapterToEncode chapter, LProgress& progress);
    bool Finish(LProgress& progress);

    std::string Problem() const;  // why a chapter could not be encoded; empty while all is well

private:
    using Clock = std::chrono::steady_clock;
    class Work;

    void ThreadFunction() override;
    void EndHangingEncoder();  // mutex_ held
    bool WaitUntilLeft(std::size_t most, LProgress& progress);
    std::string Encode(const ChapterToEncode& chapter);
    std::string Write(const ChapterToEncode& chapter, const std::string& path);
    void End();

    const std::chrono::seconds patience_;
    std::atomic<Clock::time_point> lastTaken_{};  // when the encoder took sound
    mutable std::mutex mutex_;                    // guards what follows
    std::condition_variable changed_;
    std::deque<ChapterToEncode> waiting_;  // the first is at work
    std::string problem_;
    LPipe16Sink* encoder_ = nullptr;  // what may have to be interrupted
    bool hangs_ = false;              // it was
};
