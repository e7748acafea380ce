// What the player is told of a reading.
#pragma once

#include <functional>
#include <memory>

#include "playback/player_info.h"
#include "speech/speech_reading.h"

// GUI thread.
class ReadingInfo final : public LPlayerBaseInfo {
public:
    // hasNext: whether another text waits to be read.
    explicit ReadingInfo(std::function<bool()> hasNext) : hasNext_(std::move(hasNext)) {}

    // From now on; null for none.
    void SetReading(std::unique_ptr<SpeechReading> reading, std::string voiceName,
                    std::string title);
    SpeechReading* Reading() const { return reading_.get(); }

    int Frame(LSoundTime time) const { return time.ToFrames(rate_); }
    LSoundTime TimeOf(int frame) const { return LSoundTime::FromFrames(frame, rate_); }

    void OpenSource(LSoundSource& source) override;
    std::string ItemText() const override;
    bool HasNextItem() const override { return hasNext_(); }
    std::string VoiceName() const override { return voiceName_; }
    LSoundTime EstimatedLength() const override;
    std::optional<LSoundTime> FindSentence(LSoundTime time, int step) const override;

private:
    const std::function<bool()> hasNext_;
    std::unique_ptr<SpeechReading> reading_;
    std::string voiceName_;
    std::string title_;
    int rate_ = 0;  // frames a second, once there is sound
};
