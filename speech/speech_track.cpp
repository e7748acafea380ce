#include "speech/speech_track.h"

#include <algorithm>
#include <chrono>

namespace {

constexpr std::size_t kMostWords = 1000000;  // a hundred hours, in 12 MB

}  // namespace

void SpeechTrack::Append(int frames, std::size_t sourceBegin, std::size_t sourceEnd, int voice,
                         const std::vector<SpokenWord>& words) {
    const std::lock_guard<std::mutex> lock(mutex_);
    entries_.push_back({frames_, sourceBegin, sourceEnd, voice, words_.size()});
    for (const SpokenWord& word : words) {
        if (words_.size() < kMostWords)
            words_.push_back({frames_ + word.firstFrame,
                              static_cast<std::uint32_t>(word.sourceBegin - sourceBegin),
                              static_cast<std::uint32_t>(word.sourceEnd - word.sourceBegin)});
    }
    frames_ += frames;
    grown_.notify_all();
}

void SpeechTrack::Complete() {
    const std::lock_guard<std::mutex> lock(mutex_);
    isComplete_ = true;
    grown_.notify_all();
}

int SpeechTrack::Frames() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return frames_;
}

bool SpeechTrack::IsComplete() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return isComplete_;
}

SpokenStretch SpeechTrack::All() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (entries_.empty())
        return {};
    return {entries_.front().sourceBegin, entries_.back().sourceEnd, 0, frames_, -1};
}

std::optional<int> SpeechTrack::FrameOf(std::size_t source) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (entries_.empty() || source < entries_.front().sourceBegin)
        return std::nullopt;
    const auto found =
        std::partition_point(entries_.begin(), entries_.end(),
                             [&](const Entry& entry) { return entry.sourceEnd <= source; });
    return found == entries_.end() ? std::nullopt : std::optional(found->firstFrame);
}

std::size_t SpeechTrack::IndexAt(int frame) const {
    const auto after =
        std::upper_bound(entries_.begin(), entries_.end(), frame,
                         [](int at, const Entry& entry) { return at < entry.firstFrame; });
    return after == entries_.begin() ? 0 : static_cast<std::size_t>(after - entries_.begin()) - 1;
}

int SpeechTrack::StartOf(std::size_t index) const {
    return index < entries_.size() ? entries_[index].firstFrame : frames_;
}

std::optional<SpokenStretch> SpeechTrack::StretchAt(int frame) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (frame < 0 || frame >= frames_)
        return std::nullopt;
    const std::size_t index = IndexAt(frame);
    return SpokenStretch{entries_[index].sourceBegin, entries_[index].sourceEnd, StartOf(index),
                         StartOf(index + 1), entries_[index].voice};
}

std::optional<HeardWord> SpeechTrack::WordAt(int frame) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (frame < 0 || frame >= frames_)
        return std::nullopt;
    const std::size_t index = IndexAt(frame);
    const auto place = [&](std::size_t at) {
        return words_.begin() + static_cast<std::ptrdiff_t>(at);
    };
    const auto first = place(entries_[index].words);
    const auto end = place(index + 1 < entries_.size() ? entries_[index + 1].words : words_.size());
    if (first == end)
        return std::nullopt;
    const auto next = std::upper_bound(
        first, end, frame, [](int at, const Word& word) { return at < word.firstFrame; });
    HeardWord heard{.endFrame = next == end ? StartOf(index + 1) : next->firstFrame};
    if (next != first) {
        heard.sourceBegin = entries_[index].sourceBegin + std::prev(next)->begin;
        heard.sourceEnd = heard.sourceBegin + std::prev(next)->size;
    }
    return heard;
}

int SpeechTrack::SentenceStart(int frame) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return entries_.empty() ? 0 : StartOf(IndexAt(frame));
}

int SpeechTrack::PreviousSentence(int frame) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (entries_.empty())
        return 0;
    const std::size_t index = IndexAt(frame);
    return StartOf(index > 0 ? index - 1 : 0);
}

int SpeechTrack::NextSentence(int frame) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return entries_.empty() ? 0 : StartOf(IndexAt(frame) + 1);
}

void SpeechTrack::SetListener(int frame) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (listener_ == frame)
        return;
    listener_ = frame;
    listenerMoved_.Signal();
}

bool SpeechTrack::WaitBeyond(int frame, int milliseconds) const {
    std::unique_lock<std::mutex> lock(mutex_);
    return grown_.wait_for(lock, std::chrono::milliseconds(milliseconds),
                           [&] { return frames_ > frame || isComplete_; });
}

int SpeechTrack::FramesAhead() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return frames_ - std::min(listener_, frames_);
}

int SpeechTrack::StretchesAhead() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (entries_.empty() || listener_ >= frames_)
        return 0;
    return static_cast<int>(entries_.size() - IndexAt(listener_)) - 1;
}
