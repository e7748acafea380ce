#include "speech/speech_reading.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "formats/wave_file.h"
#include "foundation/files/file_io.h"
#include "foundation/log/log.h"
#include "sound/convert.h"
#include "speech/reading_source.h"
#include "speech/run_files.h"

namespace {

// The listener may be so far behind before the engine pauses; two stretches in any case.
constexpr int kSecondsAhead = 15;
constexpr int kStretchesAhead = 2;
constexpr int kBitsPerSample = 16;
// What the 32-bit sizes of a WAV file can tell, with room for its header.
constexpr long long kMostDataBytes = 0xFFFFFFFFLL - 1024;

// A producer thread as what long work waits through.
class ThreadProgress final : public LSilentProgress {
public:
    explicit ThreadProgress(const LThread& thread) : thread_(thread) {}
    bool IsToStop() override { return thread_.IsStopping(); }
    LProcessResult ProcessWaitSignal(LSignalObjectRef signal, unsigned int milliseconds) override {
        return ::ProcessWaitSignal(thread_, signal, milliseconds);
    }
    LProcessResult ProcessWait(unsigned int milliseconds) override {
        return thread_.StopSignal().WaitSignal(milliseconds) ? kProcessStopped : kProcessDone;
    }

private:
    const LThread& thread_;
};

}  // namespace

// Appends the pieces' sound to the file. Producer thread.
class SpeechReading::FileTaker final : public SpokenPieceTaker {
public:
    FileTaker(SpeechReading& reading) : reading_(reading), track_(*reading.track_) {}

    SynthesisOutcome TakePiece(const LSoundSource& sound, const SpeechPiece& piece) override {
        LSoundSource adapted = sound;
        if (!isOpen_)
            Open(*sound);
        else
            LSPConvertSourceRateChannels(sink_->SampleRate(), sink_->Channels(), adapted);
        const int frames = adapted->GetEndSample();
        if (!HasRoomFor(frames))
            return SynthesisOutcome::kTooLong;
        if (!Write(adapted, frames))
            return SynthesisOutcome::kCannotWrite;
        const std::size_t end = reading_.begin_ + piece.SourceEnd();
        track_.Append(frames, reading_.begin_ + piece.SourceBegin(), end, piece.voice,
                      WordsOf(piece.times, sound->SampleRate()));
        {
            const std::lock_guard<std::mutex> lock(reading_.mutex_);
            reading_.fraction_ =
                static_cast<double>(end) / static_cast<double>(reading_.text_->size());
        }
        reading_.firstSound_.Signal();
        return SynthesisOutcome::kSpoken;
    }

    bool IsMoreWanted() override {
        if (reading_.use_ == ReadingUse::kSaving)
            return true;
        track_.ForgetListenerMoves();
        return track_.StretchesAhead() < kStretchesAhead ||
               track_.FramesAhead() < kSecondsAhead * sink_->SampleRate();
    }
    LSignalObjectRef MoreWanted() override { return track_.ListenerMoved(); }

    int Finish() { return isOpen_ ? sink_->Finish() : 0; }

private:
    void Open(const LSoundSourceBase& first) {
        struct stat status = {};
        if (::stat(reading_.path_.c_str(), &status) == 0 && status.st_size > 0)
            ::unlink(reading_.path_.c_str());
        // For its user alone: what is read may be private.
        const UniqueFd empty = OpenRegularFile(reading_.path_.c_str(), O_RDWR | O_CREAT, 0600);
        if (empty.IsOpen())
            ::fchmod(empty.Get(), 0600);
        sink_ = LWaveFile::OpenSinkPCM(reading_.path_.c_str(), first.SampleRate(), first.Channels(),
                                       kBitsPerSample, 0);
        isOpen_ = true;
        const std::lock_guard<std::mutex> lock(reading_.mutex_);
        if (::stat(reading_.path_.c_str(), &status) == 0)
            reading_.file_ = {status.st_dev, status.st_ino};
    }

    bool HasRoomFor(int frames) const {
        const long long most =
            std::min<long long>(kMostDataBytes / (2 * sink_->Channels()), kMostFrames);
        return track_.Frames() <= most - frames;
    }

    // As they stand in the text and in the file.
    std::vector<SpokenWord> WordsOf(SpokenTimes times, int rate) const {
        times.Stretch(rate, sink_->SampleRate());
        for (SpokenWord& word : times.words) {
            word.sourceBegin += reading_.begin_;
            word.sourceEnd += reading_.begin_;
        }
        return std::move(times.words);
    }

    bool Write(const LSoundSource& sound, int frames) {
        block_.resize(static_cast<std::size_t>(kMaxBlockFrames) * sink_->Channels());
        for (int left = frames; left > 0; left -= kMaxBlockFrames) {
            const int count = std::min(left, kMaxBlockFrames);
            sound->Read(block_.data(), count);
            sink_->Write(block_.data(), count);
        }
        return (sink_->Status() & 1) == 0 && sink_->WriteError() == 0;
    }

    static constexpr long long kMostFrames = 0x7FFFFFFF;

    SpeechReading& reading_;
    SpeechTrack& track_;
    LSoundSink sink_;
    bool isOpen_ = false;
    std::vector<int> block_;
};

class SpeechReading::Producer final : public LThread {
public:
    explicit Producer(SpeechReading& reading) : reading_(reading) {}
    ~Producer() override {
        StopThreadSoon();
        Join();
    }

private:
    void ThreadFunction() override { reading_.Produce(*this); }

    SpeechReading& reading_;
};

SpeechReading::SpeechReading(std::string text, int voice, std::string path, ReadingUse use)
    : SpeechReading(std::make_shared<const std::string>(std::move(text)), 0, voice, std::move(path),
                    use) {}

SpeechReading::SpeechReading(std::shared_ptr<const std::string> text, std::size_t begin, int voice,
                             std::string path, ReadingUse use)
    : text_(std::move(text)),
      begin_(std::min(begin, text_->size())),
      voice_(voice),
      path_(std::move(path)),
      use_(use),
      track_(std::make_shared<SpeechTrack>()) {}

SpeechReading::~SpeechReading() = default;

void SpeechReading::Start() {
    producer_ = std::make_unique<Producer>(*this);
    producer_->Start(0);
    if (producer_->IsRunning() || ended_.Ref().IsSignaled())
        return;
    End(SynthesisOutcome::kCannotStart, {});  // the system has no room for another thread
}

void SpeechReading::Stop() {
    producer_.reset();
}

void SpeechReading::Produce(const LThread& thread) {
    FileTaker taker(*this);
    const std::string_view rest = std::string_view(*text_).substr(begin_);
    SpeakingRules rules = rules_;
    rules.marks = MarksFrom(rules_.marks, begin_);
    rules.headings = HeadingsFrom(rules_.headings, begin_);
    PieceRuns runs(rest, voice_, FolderOf(path_), use_, taker, std::move(rules));
    if (reserve_ != nullptr)
        runs.KeepReserve(*reserve_);
    ThreadProgress progress(thread);
    Process(progress, runs);
    const int error = taker.Finish();
    const bool isWhole = runs.Outcome() != SynthesisOutcome::kSpoken || error == 0;
    End(isWhole ? runs.Outcome() : SynthesisOutcome::kCannotWrite, runs.LeftOutMessage());
}

void SpeechReading::End(SynthesisOutcome outcome, const std::string& leftOut) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        outcome_ = outcome;
        if (outcome == SynthesisOutcome::kSpoken)
            fraction_ = 1;
        leftOut_ = leftOut;
    }
    track_->Complete();
    ended_.Signal();
    firstSound_.Signal();
}

LSoundSource SpeechReading::OpenSource() const {
    struct stat status = {};
    if (!HasSound() || ::stat(path_.c_str(), &status) != 0 || !IsOurs(status))
        return LSoundSource();
    const LSoundSource file = LWaveFile::OpenSource(path_.c_str());
    if (file->Status() != SoundStatus::kGood)
        return file;
    return LSoundSource(new ReadingSource(file, track_, rules_.SpeedOf(voice_)));
}

bool SpeechReading::IsOurs(const struct stat& status) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return file_ == std::pair(status.st_dev, status.st_ino);
}

double SpeechReading::Fraction() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return fraction_;
}

SynthesisOutcome SpeechReading::Outcome() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return outcome_;
}

std::string SpeechReading::Message() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (outcome_ != SynthesisOutcome::kSpoken)
        return SynthesisMessage(outcome_, VoiceAt(voice_));
    return leftOut_;
}

LProcessResult Process(LProgress& progress, SpeechReading& reading) {
    constexpr unsigned int kStepMilliseconds = 200;  // between two steps of the bar
    progress.SetFirstLabel("Synthesizing Voice");
    progress.SetSecondLabel("Please wait");
    const bool isToHear = reading.Use() == ReadingUse::kListening;
    const LSignalObjectRef awaited = isToHear ? reading.FirstSound() : reading.Ended();
    LProcessResult waited = kProcessFailed;
    while (waited == kProcessFailed) {
        waited = progress.ProcessWaitSignal(awaited, kStepMilliseconds);
        if (!isToHear)
            progress.SetFraction(reading.Fraction());
    }
    if (waited == kProcessStopped) {
        reading.Stop();
        return kProcessStopped;
    }
    if (isToHear)
        return reading.HasSound() ? kProcessDone : kProcessFailed;
    return reading.Outcome() == SynthesisOutcome::kSpoken ? kProcessDone : kProcessFailed;
}
