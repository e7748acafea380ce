#include "books/chapter_encoder.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <thread>

#include "books/book_estimate.h"
#include "books/codec_frames.h"
#include "books/loudness.h"
#include "formats/aac_sink.h"
#include "formats/mp3_sink.h"
#include "formats/opus_sink.h"
#include "formats/pipe16_sink.h"
#include "formats/sndfile_file.h"
#include "formats/wave_file.h"
#include "formats/whole_file.h"
#include "foundation/threads/thread.h"
#include "sound/source_to_sink.h"

namespace {

using namespace std::chrono_literals;

// Each has a chapter as WAV on the disk.
constexpr unsigned int kFewestWorkers = 2;
constexpr unsigned int kMostWorkers = 4;
constexpr const char* kUnreadable = "its speech cannot be read";

LSoundSink OpenChapterSink(const ChapterToEncode& chapter, const char* path, int rate) {
    const int kilobits =
        chapter.kilobits > 0 ? chapter.kilobits : SpeechKilobits(chapter.type, rate);
    LMp3EncodeSettings mp3;
    mp3.cbrBitRate = static_cast<std::uint16_t>(kilobits);
    switch (chapter.type) {
        case SoundType::kMp3:
            return OpenMp3Sink(path, mp3, rate, 1, Mp3Part::kToBeJoined);
        case SoundType::kOpus:
            return OpenOpusSink(path, 1, kilobits);
        case SoundType::kM4b:
            return OpenAacSink(path, AacRate(rate), 1, kilobits, AacContainer::kAdts);
        default:
            return OpenFlacSink(path, rate, 1);
    }
}

std::string WhyNotOpen(SoundType type) {
    const char* const encoder = RowOf(type).encoder;
    return encoder != nullptr ? std::string("the ") + encoder + " is not installed"
                              : "cannot be written";
}

}  // namespace

class ChapterEncoder::Worker final : public LThread {
public:
    explicit Worker(ChapterEncoder& owner) : owner_(owner) { Start(0); }
    ~Worker() override { End(); }

    void EndHangingEncoder();  // the owner's mutex held

private:
    using Clock = std::chrono::steady_clock;
    class Blocks;

    void ThreadFunction() override;
    std::string Encode(const ChapterToEncode& chapter);
    std::string Write(const ChapterToEncode& chapter, const std::string& path);
    void End();

    ChapterEncoder& owner_;
    std::atomic<Clock::time_point> lastTaken_{};  // when the encoder took sound
    LPipe16Sink* encoder_ = nullptr;              // what may have to be interrupted
    bool hangs_ = false;                          // it was
};

// Asked before each block.
class ChapterEncoder::Worker::Blocks final : public LSilentProgress {
public:
    explicit Blocks(Worker& worker) : worker_(worker) {}
    bool IsToStop() override {
        worker_.lastTaken_ = Clock::now();
        return worker_.IsStopping();
    }

private:
    Worker& worker_;
};

void ChapterEncoder::Worker::EndHangingEncoder() {
    if (encoder_ == nullptr || hangs_ || Clock::now() - lastTaken_.load() < owner_.patience_)
        return;
    hangs_ = true;
    encoder_->Interrupt();
}

void ChapterEncoder::Worker::ThreadFunction() {
    while (!IsStopping()) {
        ChapterToEncode chapter;
        {
            std::unique_lock lock(owner_.mutex_);
            if (owner_.waiting_.empty()) {
                owner_.changed_.wait_for(lock, 50ms);
                continue;
            }
            chapter = std::move(owner_.waiting_.front());
            owner_.waiting_.pop_front();
            ++owner_.atWork_;
        }
        const std::string problem = Encode(chapter);
        ::unlink(chapter.speech.c_str());
        const std::lock_guard lock(owner_.mutex_);
        --owner_.atWork_;
        if (!problem.empty() && owner_.problem_.empty())
            owner_.problem_ = chapter.name + ": " + problem;
        owner_.changed_.notify_all();
    }
}

std::string ChapterEncoder::Worker::Encode(const ChapterToEncode& chapter) {
    WholeFile file(chapter.path, WholeFile::Existing::kReplace, WholeFile::Unfinished::kLeave);
    if (!file.Problem().empty())
        return file.Problem();
    const std::string problem = Write(chapter, file.WritePath());
    return problem.empty() ? file.Commit() : problem;
}

std::string ChapterEncoder::Worker::Write(const ChapterToEncode& chapter, const std::string& path) {
    const LSoundSource speech = LWaveFile::OpenSource(chapter.speech.c_str());
    if (speech->Status() != SoundStatus::kGood)
        return kUnreadable;
    const LSoundSource source = chapter.levels.empty() ? speech : Louder(speech, chapter.levels);
    const LSoundSink sink = OpenChapterSink(chapter, path.c_str(), source->SampleRate());
    if ((sink->Status() & 1) != 0)
        return WhyNotOpen(chapter.type);
    {
        const std::lock_guard lock(owner_.mutex_);
        encoder_ = dynamic_cast<LPipe16Sink*>(sink.Get());
        lastTaken_ = Clock::now();
    }
    Blocks blocks(*this);
    LPRSourceToSink request{"", source, sink};
    const LProcessResult result = Process(blocks, request);
    if (source->GetEndSample() == 0) {  // not every format can hold no sound at all
        const int silence = 0;
        sink->Write(&silence, 1);
    }
    const int error = sink->Finish();
    const std::lock_guard lock(owner_.mutex_);
    encoder_ = nullptr;
    if (result == kProcessStopped)
        return "stopped";
    if (speech->FramesMissing() > 0)
        return kUnreadable;
    if (hangs_)
        return std::string("the ") + RowOf(chapter.type).encoder + " takes no more sound";
    if (error != 0 && RowOf(chapter.type).encoder != nullptr)
        return std::string("the ") + RowOf(chapter.type).encoder + " failed; is the disk full?";
    return error != 0 ? std::strerror(error) : "";
}

// One that hangs takes its encoder with it.
void ChapterEncoder::Worker::End() {
    StopThreadSoon();
    for (int waits = 0; IsRunning(); ++waits) {
        {
            const std::lock_guard lock(owner_.mutex_);
            owner_.changed_.notify_all();
            if (waits >= 20 && encoder_ != nullptr)
                encoder_->Interrupt();
        }
        ::usleep(50000);
    }
    Join();
}

ChapterEncoder::ChapterEncoder(std::chrono::seconds patience) : patience_(patience) {
    const unsigned int cores = std::thread::hardware_concurrency();
    const std::lock_guard lock(mutex_);
    for (unsigned int i = 0; i < std::clamp(cores, kFewestWorkers, kMostWorkers); ++i)
        workers_.push_back(std::make_unique<Worker>(*this));
}

ChapterEncoder::~ChapterEncoder() {
    for (const auto& worker : workers_)
        worker->StopThreadSoon();
    workers_.clear();
    for (const ChapterToEncode& dropped : waiting_)
        ::unlink(dropped.speech.c_str());
}

bool ChapterEncoder::Add(ChapterToEncode chapter, LProgress& progress) {
    if (!WaitUntilLeft(workers_.size() - 1, progress))
        return false;
    const std::lock_guard lock(mutex_);
    waiting_.push_back(std::move(chapter));
    changed_.notify_all();
    return true;
}

bool ChapterEncoder::Finish(LProgress& progress) {
    return WaitUntilLeft(0, progress);
}

bool ChapterEncoder::WaitUntilLeft(std::size_t most, LProgress& progress) {
    for (;;) {
        if (progress.IsToStop())
            return false;
        std::unique_lock lock(mutex_);
        if (!problem_.empty() || waiting_.size() + atWork_ <= most)
            return problem_.empty();
        changed_.wait_for(lock, 50ms);
        for (const auto& worker : workers_)
            worker->EndHangingEncoder();
    }
}

std::string ChapterEncoder::Problem() const {
    const std::lock_guard lock(mutex_);
    return problem_;
}
