#include "app/reading/reading_info.h"

#include <utility>

#include "foundation/first_words.h"
#include "speech/voice_manner.h"
#include "speech/voice_table.h"

void ReadingInfo::SetText(ReadingText text) {
    ForgetText();
    title_ = text.title.empty() ? BeginningOf(text.text) : std::move(text.title);
    headings_ = std::move(text.headings);
    languages_ = std::move(text.languages);
    chapters_ = std::move(text.chapters);
    begin_ = std::min(text.begin, text.text.size());
    times_ = ReadingTimes(text.text.size(), begin_, UsualPace(text.text));
    isGrowing_ = text.isGrowing;
    text_ = std::make_shared<const std::string>(std::move(text.text));
}

void ReadingInfo::Forget() {
    ForgetText();
    reserve_.Drop();
}

void ReadingInfo::ForgetText() {
    reading_.reset();
    text_ = std::make_shared<const std::string>();
    headings_.clear();
    languages_.clear();
    chapters_.clear();
    times_ = ReadingTimes();
    begin_ = 0;
    spokenSize_ = 0;
    isGrowing_ = false;
    voiceName_.clear();
    title_.clear();
    rate_ = 0;
}

void ReadingInfo::Grow(std::string_view more, bool isAll) {
    text_ = std::make_shared<const std::string>(*text_ + std::string(more));
    times_.Grow(text_->size());
    isGrowing_ = !isAll;
}

void ReadingInfo::Speak(std::size_t place, int voice, int speed, const std::string& soundPath) {
    times_ = Times();
    times_.GoOnFrom(place);
    reading_.reset();  // both would write the same file
    rate_ = 0;
    begin_ = place;
    spokenSize_ = text_->size();
    spokenSpeed_ = speed;
    voiceName_ = SettingsKeyOf(VoiceAt(voice));
    reading_ =
        std::make_unique<SpeechReading>(text_, place, voice, soundPath, ReadingUse::kListening);
    SpeakingRules rules = rules_ ? *rules_ : ChosenSpeakingRules();
    rules.marks = languages_;
    rules.headings = headings_;
    // What is chosen meanwhile counts from the sentence on that VoiceChange waits for.
    if (rules.manners.empty())
        rules.manners = MannersOfVoices();
    rules.speeds.assign(KnownVoices().size(), speed);  // those of other languages do as this one
    reading_->SpeakBy(std::move(rules));
    reading_->KeepReserve(reserve_);
    reading_->Start();
}

int ReadingInfo::Frame(LSoundTime time) const {
    const int within = time.Milliseconds() - SourceBegin().Milliseconds();
    return LSoundTime(within).ToFrames(rate_);
}

LSoundTime ReadingInfo::TimeOf(int frame) const {
    const LSoundTime within = LSoundTime::FromFrames(frame, rate_);
    return LSoundTime(SourceBegin().Milliseconds() + within.Milliseconds());
}

LSoundTime ReadingInfo::TimeAt(std::size_t place) const {
    const auto frame = reading_ && rate_ > 0 ? reading_->Track().FrameOf(place) : std::nullopt;
    return frame ? TimeOf(*frame) : Times().TimeOf(place);
}

std::optional<WordInTime> ReadingInfo::WordAt(LSoundTime time) const {
    if (!reading_ || rate_ == 0)
        return std::nullopt;
    const auto stretch = reading_->Track().StretchAt(Frame(time));
    const auto word = reading_->Track().WordAt(Frame(time));
    if (!stretch || !word)
        return std::nullopt;
    return WordInTime{stretch->sourceBegin, stretch->sourceEnd, word->sourceBegin, word->sourceEnd,
                      TimeOf(word->endFrame)};
}

bool ReadingInfo::Reaches(LSoundTime time) const {
    if (!reading_ || rate_ == 0 || time < SourceBegin())
        return false;
    return IsSpokenToTheEnd() || Frame(time) <= reading_->Track().Frames();
}

ReadingTimes ReadingInfo::Times() const {
    ReadingTimes times = times_;
    if (reading_ && rate_ > 0) {
        const SpokenStretch spoken = reading_->Track().All();
        const bool isAll = reading_->Track().IsComplete();
        times.SetSpoken(isAll ? spokenSize_ : spoken.sourceEnd,
                        LSoundTime::FromFrames(spoken.endFrame, rate_));
    }
    return times;
}

void ReadingInfo::OpenSource(LSoundSource& source) {
    source = reading_ ? reading_->OpenSource() : LSoundSource();
    if (source->Status() == SoundStatus::kGood)
        rate_ = source->TimeRate();
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
