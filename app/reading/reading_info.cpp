#include "app/reading/reading_info.h"

#include <utility>

void ReadingInfo::SetReading(std::unique_ptr<SpeechReading> reading, std::string voiceName,
                             std::string title) {
    reading_ = std::move(reading);
    voiceName_ = std::move(voiceName);
    title_ = std::move(title);
    rate_ = 0;
}

void ReadingInfo::OpenSource(LSoundSource& source) {
    source = reading_ ? reading_->OpenSource() : LSoundSource();
    if (source->Status() == SoundStatus::kGood)
        rate_ = source->SampleRate();
}

std::string ReadingInfo::ItemText() const {
    return title_.empty() ? "speech.wav" : title_;
}

LSoundTime ReadingInfo::EstimatedLength() const {
    return reading_ ? TimeOf(reading_->Track().EstimatedEnd()) : LSoundTime();
}

std::optional<LSoundTime> ReadingInfo::FindSentence(LSoundTime time, int step) const {
    if (!reading_ || !reading_->HasSound())
        return std::nullopt;
    // A time is told in whole milliseconds: that of a sentence's first frame would fall before it.
    const int frame = Frame(LSoundTime(time.Milliseconds() + 1));
    const SpeechTrack& track = reading_->Track();
    if (step == 0)
        return TimeOf(track.SentenceStart(frame));
    return TimeOf(step < 0 ? track.PreviousSentence(frame) : track.NextSentence(frame));
}
