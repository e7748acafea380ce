// What is read, and what the player is told of it.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/reading/reading_times.h"
#include "playback/player_info.h"
#include "speech/speech_reading.h"

// What there is to read. Places are bytes of the text.
struct ReadingText {
    std::string text;                          // UTF-8
    std::string title = {};                    // what it is called; empty: by its first words
    std::size_t begin = 0;                     // where the reading begins
    std::vector<std::size_t> headings = {};    // where they begin, in order
    std::vector<std::size_t> chapters = {};    // likewise
    std::vector<LanguageMark> languages = {};  // what the document says of its language
    bool isGrowing = false;                    // more of it will come
};

// A word of what is spoken, and the stretch that it is of, in bytes of the text. Where no word is
// heard in its stretch yet, it is empty.
struct WordInTime {
    std::size_t stretchBegin = 0;
    std::size_t stretchEnd = 0;
    std::size_t begin = 0;
    std::size_t end = 0;
    LSoundTime until;  // then it is another, or another stretch
};

// A text, and the part of it that is being spoken: from a place on, which changes when the listener
// wants to be where nothing is spoken yet. GUI thread.
class ReadingInfo final : public LPlayerBaseInfo {
public:
    // hasNext: whether another text waits to be read.
    explicit ReadingInfo(std::function<bool()> hasNext) : hasNext_(std::move(hasNext)) {}

    // From now on; nothing of it is spoken yet.
    void SetText(ReadingText text);
    void Forget();  // text and speech, and no engine waits for another place
    // More of the text has come, and stands behind what is known of it.
    void Grow(std::string_view more, bool isAll);
    bool IsGrowing() const { return isGrowing_; }
    bool HasGrown() const { return spokenSize_ < text_->size(); }     // since Speak
    std::size_t SpokenSize() const { return spokenSize_; }            // of the text, at Speak
    int SpokenSpeed() const { return spokenSpeed_; }                  // likewise
    void SpeakBy(SpeakingRules rules) { rules_ = std::move(rules); }  // from the next Speak on
    // Ends what is being spoken, and speaks from the place on into the file, at that percentage of
    // the voice's own speed.
    void Speak(std::size_t place, int voice, int speed, const std::string& soundPath);

    SpeechReading* Reading() const { return reading_.get(); }  // null before Speak
    const std::string& Text() const { return *text_; }
    const std::vector<std::size_t>& Headings() const { return headings_; }
    const std::vector<std::size_t>& Chapters() const { return chapters_; }
    std::size_t Begin() const { return begin_; }  // of what is spoken, or will be

    // Of what is spoken; 0 before its source was opened.
    int Frame(LSoundTime time) const;
    LSoundTime TimeOf(int frame) const;
    // Of a place of the text: that of its sound once it is spoken, else an estimate.
    LSoundTime TimeAt(std::size_t place) const;
    std::optional<WordInTime> WordAt(LSoundTime time) const;
    bool IsSpokenTo(std::size_t place) const {
        return reading_ && (IsSpokenToTheEnd() || reading_->Track().All().sourceEnd >= place);
    }
    // Whether that time is in the sound that is there, or its very end.
    bool Reaches(LSoundTime time) const;
    bool IsSpokenToTheEnd() const {
        return reading_ && reading_->Track().IsComplete() && !isGrowing_ && !HasGrown();
    }
    ReadingTimes Times() const;

    void OpenSource(LSoundSource& source) override;
    std::string ItemText() const override { return title_; }
    bool HasNextItem() const override { return hasNext_(); }
    std::string VoiceName() const override { return voiceName_; }
    LSoundTime SourceBegin() const override { return times_.PartBegin(); }
    LSoundTime EstimatedLength() const override { return Times().Length(); }
    std::optional<LSoundTime> FindSentence(LSoundTime time, int step) const override;

private:
    void ForgetText();

    const std::function<bool()> hasNext_;
    std::shared_ptr<const std::string> text_ = std::make_shared<const std::string>();
    std::vector<std::size_t> headings_;
    std::vector<LanguageMark> languages_;
    std::vector<std::size_t> chapters_;
    std::optional<SpeakingRules> rules_;  // else as the user has chosen
    EngineReserve reserve_;
    std::unique_ptr<SpeechReading> reading_;
    ReadingTimes times_;  // but for what was spoken since the part began
    std::size_t begin_ = 0;
    std::size_t spokenSize_ = 0;
    int spokenSpeed_ = 100;
    bool isGrowing_ = false;
    std::string voiceName_;
    std::string title_;
    int rate_ = 0;  // frames in a second of its time, once there is sound
};
