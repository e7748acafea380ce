#include "speech/sayable_units.h"

#include <glib.h>
#include <unicode/uchar.h>

#include <algorithm>

#include "speech/character_tables.h"

namespace {

constexpr int kLongUnit = 300;  // in characters: from here on a comma is where it is cut
constexpr int kMaxUnit = 500;
constexpr int kMaxUnitWords = 150;  // the engine's own limit is 200
// As much as anybody writes on purpose; what is longer is a ruled line and goes.
constexpr std::size_t kMaxWordless = 64;
// More punctuation words in a row than anybody writes; the rest of such a row goes.
constexpr int kMaxWordlessRow = 20;
// A row of left-out words that is a page long is a pause.
constexpr int kLongLeftOutRow = 500;
constexpr std::size_t kMaxGap = 80;
constexpr std::string_view kOpeningPunctuation = "\"'`({[";
constexpr std::string_view kClosingPunctuation = "\"'`.,:;!?(){}[]";

// Letters and digits, but neither fractions and superscripts nor the ordinal signs.
bool IsSayable(char32_t character) {
    return g_unichar_isdigit(character) ||
           (g_unichar_isalpha(character) && character != 0x00AA && character != 0x00BA);
}

// A word as the engine takes it apart: opening marks, a name of at least one character, closing
// marks.
struct Token {
    std::string_view name;
    std::string_view closing;
};

Token TokenOf(std::string_view word) {
    word.remove_prefix(std::min(word.find_first_not_of(kOpeningPunctuation), word.size()));
    const std::size_t last = word.find_last_not_of(kClosingPunctuation);
    const std::size_t length = last == std::string_view::npos ? 1 : last + 1;
    return {word.substr(0, length), word.substr(std::min(length, word.size()))};
}

bool IsDashes(std::string_view name) {
    return name.size() > 1 && name.find_first_not_of('-') == std::string_view::npos;
}

bool IsAbbreviation(std::string_view name) {
    if (name.find('.') != std::string_view::npos || name == "etc")
        return true;
    return !name.empty() && name.size() <= 3 && g_ascii_isupper(name[0]) &&
           std::all_of(name.begin(), name.end(),
                       [](char letter) { return g_ascii_isalpha(letter); });
}

// The engine's own rule for where an utterance ends, empty lines and its limit of words apart:
// whether it ends one between the two words.
bool EndsUnit(std::string_view word, std::string_view gap, std::string_view next) {
    const Token token = TokenOf(word);
    if (IsDashes(token.name) || token.closing.find_first_of("?:!;") != std::string_view::npos)
        return true;
    if (token.closing.find('.') == std::string_view::npos)
        return false;
    if (token.closing.size() > 1)
        return token.closing.front() != '.' || token.closing.back() != ',';
    const std::string_view nextName = TokenOf(next).name;
    const bool startsNew = !nextName.empty() && g_ascii_isupper(nextName[0]);
    return IsAbbreviation(token.name) ? gap != " " && startsNew : gap != " " || startsNew;
}

// The same while it is not known what follows: false when it never does.
bool MayEndUnit(std::string_view word) {
    const Token token = TokenOf(word);
    return IsDashes(token.name) || token.closing.find_first_of(".?:!;") != std::string_view::npos;
}

}  // namespace

SayableUnits::SayableUnits(VoiceCharset charset, bool engineSaysEmoji)
    : charset_(charset), engineSaysEmoji_(engineSaysEmoji) {
    for (std::size_t byte = 0; byte < sayable_.size(); ++byte)
        sayable_[byte] = IsSayable(CharacterOfByte(static_cast<unsigned char>(byte), charset));
}

void SayableUnits::Add(const PlainWord& word) {
    std::string_view gap = word.gap;
    for (std::size_t end = gap.find('\n'); end != std::string_view::npos; end = gap.find('\n')) {
        if (lineHasWords_)
            gap_ += gap.substr(0, end);
        EndLine();
        gap.remove_prefix(end + 1);
    }
    // A run that is too long is spoken piece by piece, each a unit of its own.
    // So is a sentence that the engine would not part from the one before.
    sentenceBegins_ = sentenceBegins_ || word.beginsSentence;
    const bool hasWords = HasWords(word.text);
    const bool isNewSentence = hasWords && sentenceBegins_ && unitHasWords_ &&
                               !EndsUnit(lastWord_, gap_ + std::string(gap), word.text);
    if (word.isCutFromRun || isNewSentence)
        AddBlankLine();
    if (hasWords) {
        AddLineStart();
        gap_ += gap;
        AddSayable(word);
    } else if (lineHasWords_) {
        gap_ += gap;
        if (!word.text.empty())
            AddWordless(word);
    } else if (!word.text.empty()) {
        HoldAtLineStart(word, gap);
    }
}

void SayableUnits::Finish() {
    DropPending();
    unit_.text += gap_;
    if (unitHasWords_)
        CloseUnit();
}

bool SayableUnits::Take(TextUnit& unit) {
    if (ready_.empty())
        return false;
    unit = std::move(ready_.front());
    ready_.pop_front();
    return true;
}

bool SayableUnits::HasWords(std::string_view text) const {
    if (!IsUtf8(charset_))
        return std::any_of(text.begin(), text.end(), [this](char character) {
            return sayable_[static_cast<unsigned char>(character)];
        });
    const char* const end = text.data() + text.size();
    for (const char* at = text.data(); at < end; at = g_utf8_next_char(at))
        if (IsSaid(g_utf8_get_char(at)))
            return true;
    return false;
}

bool SayableUnits::IsSaid(char32_t character) const {
    constexpr char32_t kFirstPicture = 0x2600;
    return IsSayable(character) ||
           (engineSaysEmoji_ && character >= kFirstPicture &&
            u_hasBinaryProperty(static_cast<UChar32>(character), UCHAR_EMOJI) != 0);
}

int SayableUnits::CountCharacters(std::string_view text) const {
    if (!IsUtf8(charset_))
        return static_cast<int>(text.size());
    return static_cast<int>(g_utf8_strlen(text.data(), static_cast<gssize>(text.size())));
}

void SayableUnits::EndLine() {
    lineStart_.clear();
    lineHasWords_ = false;
    AddLineEnd();
}

void SayableUnits::AddLineEnd() {
    if (gap_.size() < kMaxGap)
        gap_ += '\n';
    gapLineStart_ = gap_.size();
    if (++gapLines_ == 2)
        EndUnit();
}

void SayableUnits::AddBlankLine() {
    do
        AddLineEnd();
    while (gapLines_ < 2);
}

void SayableUnits::HoldAtLineStart(const PlainWord& word, std::string_view gap) {
    if (lineStart_.size() >= kMaxWordlessRow) {
        LeaveOut();
        return;
    }
    lineStart_.push_back(word);
    lineStart_.back().gap = gap;
}

// The line turned out to hold something to say.
void SayableUnits::AddLineStart() {
    for (const PlainWord& word : lineStart_) {
        gap_ += word.gap;
        AddWordless(word);
    }
    lineStart_.clear();
    lineHasWords_ = true;
}

void SayableUnits::AddSayable(const PlainWord& word) {
    if (IsOverlong(word.text))
        AddBlankLine();
    EndUnitBefore(word.text);
    Append(word);
    unitHasWords_ = true;
    pendingFrom_ = std::string::npos;
    wordlessRow_ = 0;
}

// Punctuation: stays in a unit that has words, or waits for one; goes when it might make a unit of
// its own.
void SayableUnits::AddWordless(const PlainWord& word) {
    const bool inUnit = unitHasWords_ && !EndsBefore(word.text);
    if ((!inUnit && MayEndUnit(word.text)) || wordlessRow_ >= kMaxWordlessRow ||
        word.text.size() > kMaxWordless) {
        LeaveOut();
        return;
    }
    EndUnitBefore(word.text);
    if (!inUnit && pendingFrom_ == std::string::npos) {
        pendingFrom_ = unit_.text.size();
        sourceEndBeforePending_ = unit_.sourceEnd;
    }
    Append(word);
    ++wordlessRow_;
}

void SayableUnits::LeaveOut() {
    gap_.resize(gapLineStart_);
    if (++leftOutRow_ % kLongLeftOutRow == 0)
        AddBlankLine();
}

bool SayableUnits::IsOverlong(std::string_view word) const {
    if (!unitHasWords_ || EndsBefore(word))
        return false;
    const bool behindComma =
        TokenOf(lastWord_).closing.find_first_of(",)") != std::string_view::npos;
    return (behindComma && unitCharacters_ > kLongUnit) ||
           unitCharacters_ + CountCharacters(word) > kMaxUnit || unitWords_ >= kMaxUnitWords;
}

bool SayableUnits::EndsBefore(std::string_view word) const {
    return unitWords_ > 0 && EndsUnit(lastWord_, gap_, word);
}

void SayableUnits::EndUnitBefore(std::string_view word) {
    if (!EndsBefore(word))
        return;
    unit_.text += gap_;
    gap_.clear();
    CloseUnit();
}

void SayableUnits::Append(const PlainWord& word) {
    unit_.text += gap_;
    gap_.clear();
    gapLineStart_ = 0;
    gapLines_ = 0;
    leftOutRow_ = 0;
    if (unitWords_ == 0)
        unit_.sourceBegin = word.sourceBegin;
    unit_.beginsSentence = unit_.beginsSentence || sentenceBegins_;
    sentenceBegins_ = false;
    const std::size_t begin = std::max(word.sourceBegin, unit_.sourceBegin) - unit_.sourceBegin;
    const std::size_t end = std::max(word.sourceEnd, unit_.sourceBegin) - unit_.sourceBegin;
    unit_.words.push_back({unit_.text.size(), word.text.size(), begin, std::max(begin, end)});
    unit_.text += word.text;
    unit_.sourceEnd = word.sourceEnd;
    lastWord_ = word.text;
    ++unitWords_;
    unitCharacters_ += CountCharacters(word.text) + 1;
}

// A unit ends for certain.
void SayableUnits::EndUnit() {
    DropPending();
    if (unitHasWords_) {
        unit_.text += gap_;
        gap_.clear();
        CloseUnit();
    } else {
        gap_.insert(0, unit_.text.substr(0, kMaxGap));
        unit_ = {};
        unitWords_ = 0;
        unitCharacters_ = 0;
    }
    gapLineStart_ = gap_.size();
}

// Punctuation that still waits for a word goes, its line ends stay.
void SayableUnits::DropPending() {
    if (pendingFrom_ == std::string::npos)
        return;
    const auto from = unit_.text.begin() + static_cast<std::ptrdiff_t>(pendingFrom_);
    unit_.text.erase(
        std::remove_if(from, unit_.text.end(), [](char character) { return character != '\n'; }),
        unit_.text.end());
    unit_.sourceEnd = sourceEndBeforePending_;
    while (!unit_.words.empty() && unit_.words.back().at >= pendingFrom_)
        unit_.words.pop_back();
    pendingFrom_ = std::string::npos;
    wordlessRow_ = 0;
}

void SayableUnits::CloseUnit() {
    ready_.push_back(std::move(unit_));
    unit_ = {};
    unitCharacters_ = 0;
    unitWords_ = 0;
    unitHasWords_ = false;
    wordlessRow_ = 0;
}
