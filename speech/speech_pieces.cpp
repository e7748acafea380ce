#include "speech/speech_pieces.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "speech/language_voices.h"
#include "speech/speech_engines.h"

namespace {

// Less than this speaks for less than two seconds, and the next run needs a part of them to start.
constexpr std::size_t kEnoughToListen = 25;
// A sentence longer than this is heard in parts, so that its beginning is not waited for.
constexpr std::size_t kMostToListen = 600;
// A run costs a third of a second before its first sentence, of which 2,000 bytes hold some twenty:
// longer pieces save a quarter of the time. But a slow voice speaks 4,800 in a run's 20 seconds.
constexpr std::size_t kFirstToSave = 2000;
constexpr std::size_t kLeastToSave = 500;
constexpr std::size_t kMostToSave = 8000;
constexpr double kQuickSeconds = 3;
constexpr double kSlowSeconds = 8;

SaidDifferently SaidBy(const Voice& voice, std::string_view text, const SpeakingRules& rules) {
    if (!rules.saysDifferently)
        return {};
    return {rules.pronunciations ? rules.pronunciations : CurrentPronunciations(), text,
            KeyOf(voice), voice.language};
}

}  // namespace

std::size_t SpeechPiece::Size() const {
    std::size_t size = 0;
    for (const TextUnit& unit : units)
        size += unit.text.size();
    return size;
}

std::string SpeechPiece::Text() const {
    std::string text;
    for (const TextUnit& unit : units)
        text += unit.text;
    return text;
}

SpeechPiece SpeechPiece::TakeSecondHalf() {
    const std::size_t whole = Size();
    std::size_t size = units.front().text.size();
    auto middle = std::next(units.begin());
    while (std::next(middle) != units.end() && size < whole / 2)
        size += (middle++)->text.size();
    SpeechPiece second;
    second.voice = voice;
    second.units.assign(std::make_move_iterator(middle), std::make_move_iterator(units.end()));
    units.erase(middle, units.end());
    return second;
}

SpeakingChoices ChosenSpeakingChoices() {
    return {.spellsCapitals = kSpellCapitalsSetting.Get(),
            .saysPunctuation = kSayPunctuationSetting.Get(),
            .saysEmoji = kSayEmojiSetting.Get()};
}

SpeakingRules ChosenSpeakingRules() {
    return {.byLanguage = kVoiceByLanguageSetting.Get(), .choices = ChosenSpeakingChoices()};
}

SpeechPieces::SpeechPieces(std::string_view text, int voice, ReadingUse use, SpeakingRules rules)
    : text_(text),
      rules_(std::move(rules)),
      stretches_(text, voice, rules_.byLanguage, rules_.marks),
      use_(use),
      enough_(use == ReadingUse::kListening ? kEnoughToListen
              : use == ReadingUse::kSaving  ? kFirstToSave
                                            : 1),
      most_(use == ReadingUse::kSaving ? kFirstToSave : kMostToListen) {}

bool SpeechPieces::Next(SpeechPiece& piece) {
    piece.units.clear();
    std::size_t size = 0;
    while (true) {
        const bool isAhead = ahead_ || NextUnit();
        const bool isEnough = size >= enough_ && (use_ == ReadingUse::kSaving || size >= most_ ||
                                                  (isAhead && ahead_->beginsSentence));
        const bool isOthers = !piece.units.empty() && isAhead && aheadVoice_ != piece.voice;
        if (!isAhead || isEnough || isOthers)
            return !piece.units.empty();
        size += ahead_->text.size();
        piece.voice = aheadVoice_;
        piece.units.push_back(std::move(*ahead_));
        ahead_.reset();
    }
}

// Into ahead_. False at the end.
bool SpeechPieces::NextUnit() {
    TextUnit unit;
    while (!units_ || !units_->Next(unit)) {
        if (units_) {
            unsayable_.Add(units_->Unsayable());
            const std::vector<std::string>& givenUp = units_->GivenUpPatterns();
            givenUp_.insert(givenUp_.end(), givenUp.begin(), givenUp.end());
            units_.reset();
        }
        if (!stretches_.Next(stretch_))
            return false;
        const std::string_view text = text_.substr(stretch_.begin, stretch_.end - stretch_.begin);
        stretch_.voice = rules_.instead.Of(stretch_.voice);
        const Voice voice = VoiceAt(stretch_.voice);
        units_.emplace(text, voice.charset, voice.language, SaidBy(voice, text, rules_),
                       SpokenForms(text, voice.language, SaidByEngineOf(voice), rules_.choices));
    }
    unit.sourceBegin += stretch_.begin;
    unit.sourceEnd += stretch_.begin;
    ahead_ = std::move(unit);
    aheadVoice_ = stretch_.voice;
    return true;
}

void SpeechPieces::RunTook(double seconds) {
    if (use_ != ReadingUse::kSaving)
        return;
    if (seconds < kQuickSeconds)
        enough_ = std::min(enough_ * 2, kMostToSave);
    else if (seconds > kSlowSeconds)
        enough_ = std::max(enough_ / 2, kLeastToSave);
}

void SpeechPieces::LimitTo(std::size_t size) {
    enough_ = std::min(enough_, std::max<std::size_t>(size, 1));
    most_ = std::min(most_, enough_);
}

std::string SpeechPieces::Message() const {
    UnsayableText unsayable = unsayable_;
    std::vector<std::string> givenUp = givenUp_;
    if (units_) {
        unsayable.Add(units_->Unsayable());
        givenUp.insert(givenUp.end(), units_->GivenUpPatterns().begin(),
                       units_->GivenUpPatterns().end());
    }
    std::ranges::sort(givenUp);
    givenUp.erase(std::ranges::unique(givenUp).begin(), givenUp.end());
    std::vector<std::string> sentences = {unsayable.Message(),
                                          MissingVoicesMessage(stretches_.WithoutVoice())};
    for (const std::string& pattern : givenUp)
        sentences.push_back("The pattern \"" + pattern +
                            "\" of your pronunciation list takes too long and was not used to the "
                            "end.");
    std::string message;
    for (const std::string& sentence : sentences) {
        message += message.empty() || sentence.empty() ? "" : " ";
        message += sentence;
    }
    return message;
}
