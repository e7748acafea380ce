#include "speech/sayable_units.h"

#include <glib.h>

#include <algorithm>
#include <array>

#include "speech/character_tables.h"

namespace {

// 256 letters in one run take the engine 0.1 s, 1,000 take 0.4 s and 5,000 take 5 s.
constexpr std::size_t kMaxRun = 256;
constexpr std::size_t kMaxUnitBytes = 2000;
constexpr int kMaxUnitWords = 200;  // the engine's own limit
// More punctuation words in a row than anybody writes; the rest of such a row goes.
constexpr int kMaxWordlessRow = 20;
constexpr std::string_view kClosingPunctuation = "\"'`.,:;!?(){}[]";
constexpr std::string_view kBlanks = " \t";

// Letters and digits, but neither fractions and superscripts nor the ordinal signs.
bool IsSayable(char32_t character) {
    return g_unichar_isdigit(character) ||
           (g_unichar_isalpha(character) && character != 0x00AA && character != 0x00BA);
}

std::string_view TrailingPunctuation(std::string_view word) {
    const std::size_t last = word.find_last_not_of(kClosingPunctuation);
    return last == std::string_view::npos ? word : word.substr(last + 1);
}

bool EndsInAny(std::string_view word, std::string_view punctuation) {
    return TrailingPunctuation(word).find_first_of(punctuation) != std::string_view::npos;
}

// True when the engine may end a unit after this word, given the white space that follows it.
bool MayEndUnit(std::string_view word, std::string_view whitespaceAfter) {
    if (EndsInAny(word, "?:!;"))
        return true;
    if (!EndsInAny(word, "."))
        return false;
    // A single full stop before a single blank ends a unit only when a capital follows, never
    // before punctuation.
    return TrailingPunctuation(word).size() > 1 || whitespaceAfter != " ";
}

// The same for a word of punctuation, as the engine takes it apart: opening marks, a name of at
// least one character, closing marks. "..." ends a unit, "?" and ":-)" do not.
bool MayEndWordlessUnit(std::string_view word) {
    const std::size_t start = std::min(word.find_first_not_of("\"'`({["), word.size());
    const std::string_view rest = word.substr(start);
    if (rest.empty())
        return false;
    const std::string_view trailing = TrailingPunctuation(rest);
    const std::size_t nameLength = std::max<std::size_t>(rest.size() - trailing.size(), 1);
    const std::string_view name = rest.substr(0, nameLength);
    return rest.find_first_of(".?:!;", nameLength) != std::string_view::npos ||
           (name.size() > 1 && name.find_first_not_of('-') == std::string_view::npos);
}

class UnitFilter {
public:
    UnitFilter(std::string_view text, VoiceCharset charset) : text_(text), charset_(charset) {
        for (std::size_t byte = 0; byte < sayable_.size(); ++byte)
            sayable_[byte] = IsSayable(CharacterOfByte(static_cast<unsigned char>(byte), charset));
        out_.reserve(text.size() + text.size() / 64);
    }

    PreparedText Run() {
        std::size_t at = 0;
        while (at < text_.size()) {
            const std::size_t end = std::min(text_.find('\n', at), text_.size());
            const std::string_view line = text_.substr(at, end - at);
            if (HasWords(line))
                AddLine(line);
            at = end;
            if (at < text_.size()) {
                AddLineEnd();
                ++at;
            }
        }
        EndUnit();
        out_ += gap_;
        return {std::move(out_), hasWords_};
    }

private:
    bool HasWords(std::string_view part) const {
        if (charset_ != VoiceCharset::Utf8)
            return std::any_of(part.begin(), part.end(), [this](char character) {
                return sayable_[static_cast<unsigned char>(character)];
            });
        const char* const end = part.data() + part.size();
        for (const char* at = part.data(); at < end; at = g_utf8_next_char(at))
            if (IsSayable(g_utf8_get_char(at)))
                return true;
        return false;
    }

    void AddLine(std::string_view line) {
        std::size_t at = 0;
        while (at < line.size()) {
            const std::size_t word = std::min(line.find_first_not_of(kBlanks, at), line.size());
            gap_ += line.substr(at, word - at);
            if (word == line.size())
                return;
            const std::size_t end = std::min(line.find_first_of(kBlanks, word), line.size());
            const std::size_t next = std::min(line.find_first_not_of(kBlanks, end), line.size());
            const std::string_view after =
                next < line.size() ? line.substr(end, next - end) : std::string_view("\n");
            AddRun(line.substr(word, end - word), after);
            at = end;
        }
    }

    void AddLineEnd() {
        gap_ += '\n';
        gapLineStart_ = gap_.size();
        if (++gapLines_ == 2)
            EndUnit();
    }

    void AddBlankLine() {
        AddLineEnd();
        AddLineEnd();
    }

    // Cuts a run without white space into pieces, each a unit of its own.
    void AddRun(std::string_view run, std::string_view after) {
        while (run.size() > kMaxRun) {
            std::size_t length = kMaxRun;
            if (charset_ == VoiceCharset::Utf8)
                while (length > 1 && (static_cast<unsigned char>(run[length]) & 0xC0U) == 0x80U)
                    --length;
            AddWord(run.substr(0, length), "\n\n");
            AddBlankLine();
            run.remove_prefix(length);
        }
        AddWord(run, after);
    }

    void AddWord(std::string_view word, std::string_view after) {
        if (!HasWords(word)) {
            AddWordless(word);
            return;
        }
        if (unitBytes_ > kMaxUnitBytes && gapLines_ < 2)
            AddBlankLine();
        TakeGap();
        out_ += word;
        hasWords_ = true;
        pendingFrom_ = std::string::npos;
        wordlessRow_ = 0;
        CountWord(word);
        // From the engine's limit on, a unit may end after any word.
        unitHasWords_ = unitWords_ < kMaxUnitWords - 1 && !MayEndUnit(word, after);
        if (EndsInAny(word, "?:!;"))
            unitWords_ = 0;
        if (EndsInAny(word, ".?:!;") || unitWords_ % kMaxUnitWords == 0)
            unitBytes_ = 0;
    }

    // Punctuation: stays in a unit that has words, or waits for one; goes when it might make a unit
    // of its own.
    void AddWordless(std::string_view word) {
        const bool mayEnd = MayEndWordlessUnit(word);
        if ((!unitHasWords_ && mayEnd) || wordlessRow_ >= kMaxWordlessRow) {
            gap_.resize(gapLineStart_);
            return;
        }
        const std::size_t before = out_.size();
        TakeGap();
        if (!unitHasWords_ && pendingFrom_ == std::string::npos)
            pendingFrom_ = before;
        out_ += word;
        ++wordlessRow_;
        CountWord(word);
        if (mayEnd)
            unitHasWords_ = false;
    }

    void CountWord(std::string_view word) {
        ++unitWords_;
        unitBytes_ += word.size() + 1;
    }

    void TakeGap() {
        out_ += gap_;
        gap_.clear();
        gapLineStart_ = 0;
        gapLines_ = 0;
    }

    // A unit ends for certain: punctuation that still waits for a word goes, its line ends stay.
    void EndUnit() {
        if (pendingFrom_ != std::string::npos) {
            const auto from = out_.begin() + static_cast<std::ptrdiff_t>(pendingFrom_);
            out_.erase(std::remove_if(from, out_.end(), [](char c) { return c != '\n'; }),
                       out_.end());
        }
        pendingFrom_ = std::string::npos;
        unitHasWords_ = false;
        unitBytes_ = 0;
        unitWords_ = 0;
        wordlessRow_ = 0;
    }

    std::string_view text_;
    VoiceCharset charset_;
    std::array<bool, 256> sayable_;
    std::string out_;
    bool hasWords_ = false;

    std::string gap_;               // white space since the last word
    std::size_t gapLineStart_ = 0;  // in gap_: behind its last line end
    int gapLines_ = 0;              // line ends in gap_

    bool unitHasWords_ = false;  // a word stands before, and the engine does not cut in between
    std::size_t pendingFrom_ = std::string::npos;  // in out_: punctuation that waits for a word
    int wordlessRow_ = 0;
    std::size_t unitBytes_ = 0;
    int unitWords_ = 0;
};

}  // namespace

PreparedText KeepSayableUnits(std::string_view text, VoiceCharset charset) {
    return UnitFilter(text, charset).Run();
}
