// Cutting a text into the pieces that one run of the engine each speaks.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/settings/setting.h"
#include "speech/spoken_times.h"
#include "speech/text_preparation.h"
#include "speech/voice_manner.h"
#include "speech/voice_stretches.h"
#include "speech/voice_table.h"
#include "speech/voices_instead.h"

class Pronunciations;

// What a reading is for decides how its pieces are cut: the first sentence at once, the whole at
// the least cost, or so that it is known when each sentence is heard: alone, unless the engine
// tells its times.
enum class ReadingUse { kListening, kSaving, kSavingSentences };

// How a text is spoken, beside the voice.
struct SpeakingRules {
    bool saysDifferently = true;           // by the pronunciation list (pronunciations.h)
    bool saysHosts = true;                 // of web addresses, and not the rest
    bool byLanguage = false;               // each language by a voice of its own
    std::vector<LanguageMark> marks = {};  // of the text's document
    // That list, whatever becomes of the files meanwhile; null: as they are now.
    std::shared_ptr<const Pronunciations> pronunciations = {};
    VoicesInstead instead = {};  // of voices that cannot speak any more
    SpeakingChoices choices = {};
    // Where lines begin that a pause comes before and behind, in order; longer ones are no
    // headings.
    std::vector<std::size_t> headings = {};
    std::vector<int> speeds = {};           // percent of each voice's own, by its index; else 100
    std::vector<VoiceManner> manners = {};  // likewise; else as they are kept at the moment

    int SpeedOf(int voice) const;
    VoiceManner MannerAt(int voice) const;
};

// Those for the text from the byte on, as it stands then.
std::vector<std::size_t> HeadingsFrom(const std::vector<std::size_t>& headings, std::size_t begin);

// As the user has chosen.
SpeakingRules ChosenSpeakingRules();
SpeakingChoices ChosenSpeakingChoices();
constexpr UserSetting<bool> kVoiceByLanguageSetting{"Settings", "VoiceByLanguage", true};
constexpr UserSetting<bool> kSpellCapitalsSetting{"Settings", "SpellCapitals", false};
constexpr UserSetting<bool> kSayPunctuationSetting{"Settings", "SayPunctuation", false};
constexpr UserSetting<bool> kSayEmojiSetting{"Settings", "SayEmoji", true};
constexpr UserSetting<bool> kSkipAddressesSetting{"Skipping", "Addresses", true};

// Consecutive units of a text; never empty.
struct SpeechPiece {
    std::vector<TextUnit> units;
    int voice = 0;              // index into the voice table
    int pauseMilliseconds = 0;  // of silence behind it
    SpokenTimes times = {};     // in its sound, once that is there and as far as they are known

    std::size_t Size() const;  // bytes of prepared text
    std::string Text() const;  // the units' prepared texts joined
    // The stretch of the user's text.
    std::size_t SourceBegin() const { return units.front().sourceBegin; }
    std::size_t SourceEnd() const { return units.back().sourceEnd; }
    bool HoldsSentences() const;  // more than one
    // Leaves about the first half here and gives the rest, from a sentence on where one begins
    // there; there must be more than one unit.
    SpeechPiece TakeSecondHalf();
    // Leaves the first sentence here and gives the rest; without units when there is no more.
    SpeechPiece TakeOtherSentences();

private:
    SpeechPiece TakeFrom(std::vector<TextUnit>::iterator middle);
};

// Each in one voice. Pieces end only where a unit ends, so that their sound joined is what one run
// gives for the whole; for a listener also only where a sentence of the text does, unless that is
// over-long. Made as they are asked for. One thread.
class SpeechPieces {
public:
    // The text's bytes outlive this.
    SpeechPieces(std::string_view text, int voice, ReadingUse use, SpeakingRules rules = {});

    bool Next(SpeechPiece& piece);  // false at the end
    // A run over a piece took so long: the next ones are cut by that when saving.
    void RunTook(double seconds);
    // The voice's engine is said to tell its times, but did not.
    void ToldNoTimes(int voice) { untold_.insert(voice); }
    void LimitTo(std::size_t size);  // bytes of prepared text; never less than a unit
    // What the user is to be told of the text that was read so far; empty for nothing.
    std::string Message() const;

private:
    bool NextUnit();
    bool IsEnough(std::size_t size, bool isAhead) const;
    bool BeginsBehindPause(std::size_t pieceBegin) const;

    std::string_view text_;
    SpeakingRules rules_;
    std::vector<std::size_t> pauses_;  // bytes of the text, in order
    VoiceStretches stretches_;
    VoiceStretch stretch_{};
    std::optional<TextUnits> units_;  // of the stretch
    UnsayableText unsayable_;         // of those before
    std::vector<std::string> givenUp_;
    ReadingUse use_;
    std::size_t enough_;  // a piece is closed at so many bytes
    std::size_t most_;    // and here also within a sentence
    std::optional<TextUnit> ahead_;
    int aheadVoice_ = 0;
    bool tellsTimes_ = false;  // the engine of that voice
    std::set<int> untold_;
};
