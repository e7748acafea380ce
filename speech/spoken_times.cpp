#include "speech/spoken_times.h"

#include <glib.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>

#include "foundation/leading_number.h"
#include "speech/utf8_reader.h"

namespace {

// Neither letters nor digits, nor signs that are said.
bool IsMark(char byte) {
    return static_cast<unsigned char>(byte) < 0x80 && !g_ascii_isalnum(byte);
}

// Marks around a word, of which none is said.
bool IsAroundWords(char32_t character) {
    switch (g_unichar_type(character)) {
        case G_UNICODE_OPEN_PUNCTUATION:
        case G_UNICODE_CLOSE_PUNCTUATION:
        case G_UNICODE_INITIAL_PUNCTUATION:
        case G_UNICODE_FINAL_PUNCTUATION:
            return true;
        default:
            return std::u32string_view(U"\"'.,;:!?\u2026\u00A1\u00BF").find(character) !=
                   std::u32string_view::npos;
    }
}

void TakeOffMarks(std::string_view text, SpokenWord& word) {
    std::size_t first = std::string_view::npos;
    std::size_t last = 0;
    Utf8Reader reader(text.substr(0, word.sourceEnd));
    for (reader.Skip(word.sourceBegin); !reader.AtEnd();) {
        const std::size_t at = reader.At();
        if (IsAroundWords(reader.Next()))
            continue;
        first = std::min(first, at);
        last = reader.At();
    }
    if (first == std::string_view::npos)
        return;
    word.sourceBegin = first;
    word.sourceEnd = last;
}

// The prepared words of a piece, from its first to its last.
class WordsInOrder {
public:
    explicit WordsInOrder(std::span<const TextUnit> units) {
        for (std::size_t unit = 0; unit < units.size(); ++unit) {
            for (const UnitWord& word : units[unit].words)
                words_.push_back({prepared_.size() + word.at,
                                  prepared_.size() + word.at + word.size, unit,
                                  units[unit].sourceBegin + word.sourceBegin,
                                  units[unit].sourceBegin + word.sourceEnd});
            prepared_ += units[unit].text;
        }
    }

    struct Word {
        std::size_t begin;
        std::size_t end;
        std::size_t unit;
        std::size_t sourceBegin;
        std::size_t sourceEnd;
    };

    // The word that the name stands in next; null when something else comes first.
    const Word* Next(std::string_view name) {
        while (!Rest().starts_with(name)) {
            if (!SkipMark())
                return nullptr;
        }
        while (index_ < words_.size() && words_[index_].end <= at_)
            ++index_;
        at_ += name.size();
        return !name.empty() && index_ < words_.size() && at_ <= words_[index_].end
                   ? &words_[index_]
                   : nullptr;
    }
    bool IsAtEnd() {
        while (SkipMark()) {
        }
        return Rest().empty();
    }

private:
    std::string_view Rest() const { return std::string_view(prepared_).substr(at_); }
    bool SkipMark() {
        const bool isMark = !Rest().empty() && IsMark(Rest().front());
        at_ += isMark ? 1 : 0;
        return isMark;
    }

    std::string prepared_;
    std::vector<Word> words_;
    std::size_t at_ = 0;     // in prepared_
    std::size_t index_ = 0;  // in words_
};

class ToldTimes {
public:
    ToldTimes(std::span<const TextUnit> units, std::string_view text, int frames, int rate)
        : text_(text), frames_(frames), rate_(rate), words_(units) {
        times_.unitFrames.assign(units.size(), -1);
    }

    // False: it does not fit.
    bool Take(std::string_view line) {
        const bool isStretch = line.starts_with("u ");
        if (!isStretch && !line.starts_with("w "))
            return false;
        line.remove_prefix(2);
        return isStretch ? TakeStretch(line) : TakeWord(line);
    }

    bool IsWhole() {
        return end_ == frames_ && words_.IsAtEnd() &&
               std::ranges::none_of(times_.unitFrames, [](int frame) { return frame < 0; });
    }
    SpokenTimes& Times() { return times_; }

private:
    bool TakeStretch(std::string_view line) {
        int frames = 0;
        int rate = 0;
        if (!TakeLeadingNumber(line, frames) || !TakeLeadingNumber(line, rate) || rate != rate_ ||
            frames < 0 || frames > frames_ - end_)
            return false;
        begin_ = last_ = end_;
        end_ += frames;
        isAtBegin_ = true;
        return true;
    }

    bool TakeWord(std::string_view line) {
        double begin = 0;
        double end = 0;
        if (!TakeLeadingNumber(line, begin) || !TakeLeadingNumber(line, end))
            return false;
        const WordsInOrder::Word* const word = words_.Next(line);
        if (word == nullptr)
            return false;
        const bool isHeard = end > 0;
        const double most = static_cast<double>(end_ - begin_) / rate_;
        if (!(begin >= 0 && begin <= end && end <= most + kRounding))
            return false;
        const int frame = isHeard ? begin_ + static_cast<int>(std::lround(begin * rate_)) : last_;
        if (frame < last_)
            return false;
        last_ = frame;
        int& unitFrame = times_.unitFrames[word->unit];
        if (unitFrame < 0)
            unitFrame = isAtBegin_ ? begin_ : frame;
        isAtBegin_ = false;
        if (isHeard)
            Add({std::min(frame, end_), word->sourceBegin, word->sourceEnd});
        return true;
    }

    // Forms that are said in several words stand for the same stretch of the text.
    void Add(SpokenWord word) {
        TakeOffMarks(text_, word);
        if (times_.words.empty() || times_.words.back().sourceEnd <= word.sourceBegin)
            times_.words.push_back(word);
        else
            times_.words.back().sourceEnd = std::max(times_.words.back().sourceEnd, word.sourceEnd);
    }

    static constexpr double kRounding = 0.001;  // seconds

    std::string_view text_;
    int frames_;
    int rate_;
    WordsInOrder words_;
    SpokenTimes times_;
    int begin_ = 0;  // of the stretch of sound
    int end_ = 0;
    int last_ = 0;  // beginning of its last word
    bool isAtBegin_ = false;
};

}  // namespace

void SpokenTimes::Stretch(int from, int to) {
    const auto stretched = [&](int frame) {
        return from < 1 ? 0 : static_cast<int>(std::int64_t{frame} * to / from);
    };
    for (SpokenWord& word : words)
        word.firstFrame = stretched(word.firstFrame);
    for (int& frame : unitFrames)
        frame = stretched(frame);
}

std::optional<SpokenTimes> SpokenTimesIn(std::string_view told, std::span<const TextUnit> units,
                                         std::string_view text, int frames, int rate) {
    ToldTimes times(units, text, frames, rate);
    while (!told.empty()) {
        const std::size_t end = told.find('\n');
        if (end == std::string_view::npos || !times.Take(told.substr(0, end)))
            return std::nullopt;
        told.remove_prefix(end + 1);
    }
    return times.IsWhole() ? std::optional(std::move(times.Times())) : std::nullopt;
}
