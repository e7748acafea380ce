#include "speech/speech_pieces.h"

#include <algorithm>
#include <iterator>

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
    return rules.saysDifferently
               ? SaidDifferently(CurrentPronunciations(), text, KeyOf(voice), voice.language)
               : SaidDifferently();
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
    second.units.assign(std::make_move_iterator(middle), std::make_move_iterator(units.end()));
    units.erase(middle, units.end());
    return second;
}

SpeechPieces::SpeechPieces(std::string_view text, const Voice& voice, ReadingUse use,
                           const SpeakingRules& rules)
    : units_(text, voice.charset, voice.language, SaidBy(voice, text, rules)),
      use_(use),
      enough_(use == ReadingUse::kListening ? kEnoughToListen : kFirstToSave),
      most_(use == ReadingUse::kListening ? kMostToListen : kFirstToSave) {}

bool SpeechPieces::Next(SpeechPiece& piece) {
    piece.units.clear();
    std::size_t size = 0;
    while (true) {
        if (TextUnit unit; !ahead_ && units_.Next(unit))
            ahead_ = std::move(unit);
        const bool isEnough = size >= enough_ && (use_ == ReadingUse::kSaving || size >= most_ ||
                                                  (ahead_ && ahead_->beginsSentence));
        if (!ahead_ || isEnough)
            return !piece.units.empty();
        size += ahead_->text.size();
        piece.units.push_back(std::move(*ahead_));
        ahead_.reset();
    }
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
    std::string message = units_.Unsayable().Message();
    for (const std::string& pattern : units_.GivenUpPatterns()) {
        message += message.empty() ? "" : " ";
        message += "The pattern \"" + pattern +
                   "\" of your pronunciation list takes too long and was not used to the end.";
    }
    return message;
}
