#include "speech/speech_pieces.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "sound/tempo.h"
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
// What is told a listener of a heading's rank: more than the pause between two paragraphs.
constexpr int kHeadingPauseMs = 600;
constexpr std::size_t kLongestHeading = 300;
constexpr double kQuickSeconds = 3;
constexpr double kSlowSeconds = 8;

SaidDifferently SaidBy(const Voice& voice, std::string_view text, const SpeakingRules& rules) {
    SaidDifferently said(!rules.saysDifferently ? nullptr
                         : rules.pronunciations ? rules.pronunciations
                                                : CurrentPronunciations(),
                         text, KeyOf(voice), voice.language);
    if (rules.saysHosts)
        said.SayHosts();
    return said;
}

// Before and behind each.
std::vector<std::size_t> PausesAt(const std::vector<std::size_t>& headings, std::string_view text) {
    std::vector<std::size_t> pauses;
    for (const std::size_t begin : headings) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        if (begin >= text.size() || end - begin > kLongestHeading)
            continue;
        pauses.push_back(begin);
        pauses.push_back(end);
    }
    return pauses;
}

}  // namespace

std::vector<std::size_t> HeadingsFrom(const std::vector<std::size_t>& headings, std::size_t begin) {
    std::vector<std::size_t> rest;
    for (const std::size_t heading : headings)
        if (heading >= begin)
            rest.push_back(heading - begin);
    return rest;
}

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

bool SpeechPiece::HoldsSentences() const {
    return std::any_of(std::next(units.begin()), units.end(),
                       [](const TextUnit& unit) { return unit.beginsSentence; });
}

SpeechPiece SpeechPiece::TakeSecondHalf() {
    const std::size_t whole = Size();
    std::size_t size = units.front().text.size();
    auto middle = std::next(units.begin());
    while (std::next(middle) != units.end() && size < whole / 2)
        size += (middle++)->text.size();
    const auto sentence =
        std::find_if(middle, units.end(), [](const TextUnit& unit) { return unit.beginsSentence; });
    return TakeFrom(sentence != units.end() ? sentence : middle);
}

SpeechPiece SpeechPiece::TakeOtherSentences() {
    return TakeFrom(std::find_if(std::next(units.begin()), units.end(),
                                 [](const TextUnit& unit) { return unit.beginsSentence; }));
}

SpeechPiece SpeechPiece::TakeFrom(std::vector<TextUnit>::iterator middle) {
    SpeechPiece second;
    if (middle == units.end())
        return second;
    second.voice = voice;
    second.pauseMilliseconds = std::exchange(pauseMilliseconds, 0);
    second.units.assign(std::make_move_iterator(middle), std::make_move_iterator(units.end()));
    units.erase(middle, units.end());
    return second;
}

SpeakingChoices ChosenSpeakingChoices() {
    return {.spellsCapitals = kSpellCapitalsSetting.Get(),
            .saysPunctuation = kSayPunctuationSetting.Get(),
            .saysEmoji = kSayEmojiSetting.Get()};
}

int SpeakingRules::SpeedOf(int voice) const {
    const auto index = static_cast<std::size_t>(voice);
    const bool isKnown = voice >= 0 && index < speeds.size();
    return isKnown ? std::clamp(speeds[index], LTempo::kSlowestPercent, LTempo::kFastestPercent)
                   : LTempo::kOwnPercent;
}

VoiceManner SpeakingRules::MannerAt(int voice) const {
    const auto index = static_cast<std::size_t>(voice);
    return voice >= 0 && index < manners.size() ? manners[index] : MannerOf(VoiceAt(voice));
}

SpeakingRules ChosenSpeakingRules() {
    return {.saysHosts = kSkipAddressesSetting.Get(),
            .byLanguage = kVoiceByLanguageSetting.Get(),
            .choices = ChosenSpeakingChoices()};
}

SpeechPieces::SpeechPieces(std::string_view text, int voice, ReadingUse use, SpeakingRules rules)
    : text_(text),
      rules_(std::move(rules)),
      pauses_(PausesAt(rules_.headings, text)),
      stretches_(text, voice, rules_.byLanguage, rules_.marks),
      use_(use),
      enough_(use == ReadingUse::kListening ? kEnoughToListen : kFirstToSave),
      most_(use == ReadingUse::kSaving ? kFirstToSave : kMostToListen) {}

bool SpeechPieces::Next(SpeechPiece& piece) {
    piece.units.clear();
    piece.pauseMilliseconds = 0;
    std::size_t size = 0;
    while (true) {
        const bool isAhead = ahead_ || NextUnit();
        const bool isOthers = !piece.units.empty() && isAhead && aheadVoice_ != piece.voice;
        const bool isPause =
            !piece.units.empty() && isAhead && BeginsBehindPause(piece.SourceBegin());
        if (isPause)
            piece.pauseMilliseconds = kHeadingPauseMs;
        if (!isAhead || IsEnough(size, isAhead) || isOthers || isPause)
            return !piece.units.empty();
        size += ahead_->text.size();
        piece.voice = aheadVoice_;
        piece.units.push_back(std::move(*ahead_));
        ahead_.reset();
    }
}

bool SpeechPieces::IsEnough(std::size_t size, bool isAhead) const {
    const bool isWhole = isAhead && ahead_->beginsSentence;
    switch (use_) {
        case ReadingUse::kListening:
            return size >= enough_ && (isWhole || size >= most_);
        case ReadingUse::kSaving:
            return size >= enough_;
        case ReadingUse::kSavingSentences:
            break;
    }
    const bool isTold = tellsTimes_ && !untold_.contains(aheadVoice_);
    return isTold ? size >= enough_ && (isWhole || size >= enough_ + kMostToListen)
                  : size > 0 && (isWhole || size >= most_);
}

bool SpeechPieces::BeginsBehindPause(std::size_t pieceBegin) const {
    const auto pause = std::ranges::upper_bound(pauses_, pieceBegin);
    return pause != pauses_.end() && *pause <= ahead_->sourceBegin;
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
        tellsTimes_ = EngineOf(voice).timesOption != nullptr;
        units_.emplace(text, voice.charset, voice.language, SaidBy(voice, text, rules_),
                       SpokenForms(text, voice.language, SaidByEngineOf(voice), rules_.choices),
                       stretch_.language);
    }
    unit.sourceBegin += stretch_.begin;
    unit.sourceEnd += stretch_.begin;
    ahead_ = std::move(unit);
    aheadVoice_ = stretch_.voice;
    return true;
}

void SpeechPieces::RunTook(double seconds) {
    if (use_ == ReadingUse::kListening)
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
    givenUp.erase(std::unique(givenUp.begin(), givenUp.end()), givenUp.end());
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
