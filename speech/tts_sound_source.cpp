#include "speech/tts_sound_source.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <thread>

#include "foundation/files/file.h"
#include "foundation/files/unique_fd.h"
#include "foundation/threads/ticks.h"

namespace {

constexpr int kPathAttempts = 100;
constexpr int kThreadPriority = -10;  // nice 10
constexpr unsigned int kConstructionTimeoutMilliseconds = 60000;
constexpr int kProvisionalPeak = 2097152;

}  // namespace

LTTSSoundSource::LTTSSoundSource(const char* text, int voice)
    : LSoundSourceBase(8000, 1, kProvisionalPeak) {
    request_.outputPath = path_;
    request_.voice = voice;
    if (!ChoosePath())
        return;
    reading_.emplace(text, voice, path_, ReadingUse::kListening);
    Start(kThreadPriority);
    reading_->FirstSound().WaitSignal(kConstructionTimeoutMilliseconds);
    OpenInner();
}

LTTSSoundSource::~LTTSSoundSource() {
    StopThreadSoon();
    Join();
    inner_.Close();
    if (path_[0] != '\0')
        ::unlink(path_);
}

bool LTTSSoundSource::ChoosePath() {
    for (int attempt = 0; attempt < kPathAttempts; ++attempt) {
        char name[32];
        std::snprintf(name, sizeof name, "%u.wav", static_cast<unsigned int>(GetTickCount()));
        CopyText(path_, "/tmp");
        LFile::_FilePathCat(path_, name);
        const UniqueFd file(::open(path_, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
        if (file.IsOpen()) {
            ::flock(file.Get(), LOCK_EX | LOCK_NB);
            return ::ftruncate(file.Get(), 0) == 0;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));  // to the next tick
    }
    path_[0] = '\0';
    return false;
}

void LTTSSoundSource::OpenInner() {
    inner_ = reading_->OpenSource();
    SetFormat(inner_->SampleRate(), inner_->Channels(), inner_->PeakMagnitude());
}

void LTTSSoundSource::ThreadFunction() {
    reading_->Produce(*this);
    request_.outcome = reading_->Outcome();
    request_.result = request_.outcome == SynthesisOutcome::kSpoken ? kProcessDone : kProcessFailed;
    request_.done.Signal();
}

SynthesisOutcome LTTSSoundSource::Outcome() const {
    if (!reading_)
        return SynthesisOutcome::kCannotWrite;
    if (reading_->Ended().IsSignaled())
        return reading_->Outcome();
    return reading_->HasSound() ? SynthesisOutcome::kSpoken : SynthesisOutcome::kTimedOut;
}

LSoundSource OpenTTSSoundSource(const char* text, int voice) {
    return LSoundSource(new LTTSSoundSource(text, voice));
}
