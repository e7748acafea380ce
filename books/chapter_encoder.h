// Encodes spoken sections, as what can be joined (book_joint.h), on threads of their own, two to
// four as there are cores: encoders are slower than quick engines. The engine waits only while all
// of them are at work.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "books/book_levels.h"
#include "formats/sound_types.h"
#include "foundation/threads/progress.h"

struct ChapterToEncode {
    std::string speech;                // the WAV file, removed once it is encoded
    std::string path;                  // what it becomes; appears only whole
    std::string name;                  // of the chapter, for messages
    SoundType type = SoundType::kMp3;  // of the book
    int kilobits = 0;                  // a second; 0: what serves speech of its rate
    std::vector<LevelStretch> levels;  // none: as it is
};

class ChapterEncoder {
public:
    // An encoder that takes no sound for so long hangs.
    static constexpr std::chrono::seconds kPatience{180};

    explicit ChapterEncoder(std::chrono::seconds patience = kPatience);
    ~ChapterEncoder();  // what is not encoded by now is dropped
    ChapterEncoder(const ChapterEncoder&) = delete;
    ChapterEncoder& operator=(const ChapterEncoder&) = delete;

    // Both wait while the progress object does not stop them; false then, and after a problem.
    bool Add(ChapterToEncode chapter, LProgress& progress);
    bool Finish(LProgress& progress);

    std::string Problem() const;  // why a chapter could not be encoded; empty while all is well

private:
    class Worker;

    bool WaitUntilLeft(std::size_t most, LProgress& progress);

    const std::chrono::seconds patience_;
    mutable std::mutex mutex_;  // guards what follows, and what the workers say of themselves
    std::condition_variable changed_;
    std::deque<ChapterToEncode> waiting_;
    std::size_t atWork_ = 0;
    std::string problem_;
    std::vector<std::unique_ptr<Worker>> workers_;
};
