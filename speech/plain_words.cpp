#include "speech/plain_words.h"

#include <glib.h>

#include <algorithm>
#include <array>

#include "foundation/whole_characters.h"
#include "speech/character_tables.h"

namespace {

constexpr std::string_view kBlanks = " \t\n";
// 256 letters in one run take the engine 0.1 s, 1,000 take 0.4 s and 5,000 take 5 s.
constexpr std::size_t kMaxRun = 256;
constexpr std::size_t kReadAhead = 1024;
constexpr std::size_t kLookBack = 64;       // bytes that the rules may look back into
constexpr std::size_t kLongStretch = 4096;  // of the text, with nothing kept
constexpr int kMaxBlanks = 64;
constexpr char32_t kMinusSign = 0x2212;

bool IsAsciiLetterOrDigit(char32_t character) {
    return character < 0x80 && g_ascii_isalnum(static_cast<gchar>(character));
}

bool IsBlank(char character) {
    return kBlanks.find(character) != std::string_view::npos;
}

}  // namespace

bool PlainWords::Next(PlainWord& word) {
    Fill();
    return TakeWord(word);
}

// Until a word and what follows it are there, however the following characters change it.
void PlainWords::Fill() {
    if (taken_ > 4 * kReadAhead) {
        const std::size_t gone = taken_ - kLookBack;
        out_.erase(0, gone);
        sources_.erase(sources_.begin(), sources_.begin() + static_cast<std::ptrdiff_t>(gone));
        taken_ -= gone;
    }
    if (skipsLongStretch_ && taken_ < out_.size())
        return;
    while (!reader_.AtEnd() && out_.size() - taken_ < kReadAhead) {
        Read();
        if (skipsLongStretch_ || reader_.At() - keptEnd_ <= kLongStretch)
            continue;
        // Nobody waits for the end of it to hear what stands before.
        Append('\n');
        Append('\n');
        skipsLongStretch_ = true;
        return;
    }
}

// A character, or a stretch that is said differently.
void PlainWords::Read() {
    const std::size_t before = out_.size();
    characterBegin_ = reader_.At();
    // What the user wants goes before what the language has.
    if (const auto stretch = said_.At(characterBegin_))
        AddInstead(*stretch);
    else if (const auto form = forms_.At(characterBegin_))
        AddInstead(*form);
    else
        AddCharacter(reader_.Next());
    for (std::size_t at = before; at < out_.size(); ++at)
        sources_[at].end = reader_.At();
}

void PlainWords::AddCharacter(char32_t character) {
    if (character == 0)
        return;
    if (areDigitsSilent_ && character >= '0' && character <= '9')
        unsayable_.Add(character, characterBegin_, reader_.At());
    if (character < 0x80)
        AddAscii(static_cast<char>(character));
    else
        AddOther(character);
    previous_ = character;
}

// Every byte of it stands for the whole stretch of the text.
void PlainWords::AddInstead(const SaidDifferently::Stretch& stretch) {
    reader_.Skip(stretch.end - reader_.At());
    for (Utf8Reader said(stretch.said); !said.AtEnd();)
        AddCharacter(said.Next());
    if (stretch.said.empty())
        Skip();
}

bool PlainWords::TakeWord(PlainWord& word) {
    if (taken_ == out_.size())
        return false;
    const std::size_t first = std::min(out_.find_first_not_of(kBlanks, taken_), out_.size());
    const std::size_t end = std::min(out_.find_first_of(kBlanks, first), out_.size());
    const std::size_t length = LengthOfPiece(first, end);
    word.gap.assign(out_, taken_, first - taken_);
    word.text.assign(out_, first, length);
    word.isCutFromRun = nextIsCutFromRun_;
    nextIsCutFromRun_ = length < end - first;
    if (length > 0) {
        word.sourceBegin = sources_[first].begin;
        word.sourceEnd = sources_[first + length - 1].end;
    }
    taken_ = first + length;
    return true;
}

// Never in the middle of a character.
std::size_t PlainWords::LengthOfPiece(std::size_t from, std::size_t end) const {
    if (end - from <= kMaxRun)
        return end - from;
    const auto rest = std::string_view(out_).substr(from, end - from);
    return IsUtf8(charset_) ? WholeCharacters(rest, kMaxRun).size() : kMaxRun;
}

void PlainWords::AddAscii(char character) {
    if (character == '\r') {
        if (reader_.Peek() != '\n')
            Put('\n');
    } else if (character == '\f' || character == '\v') {
        Put('\n');
    } else if ((character >= ' ' && character != 0x7F) || character == '\t' || character == '\n') {
        Put(character);
    }
}

void PlainWords::AddOther(char32_t character) {
    if (charset_ == VoiceCharset::kAscii && character == kMinusSign) {
        AddMinus();
    } else if (const char* plain = PlainForm(character)) {
        AddPlainForm(character, plain);
    } else if (IsUtf8(charset_)) {
        AddUtf8(character);
    } else if (g_unichar_ismark(character)) {
        AddMark(character);
    } else if (const int byte = ByteInCharset(character, charset_); byte >= 0) {
        Put(static_cast<char>(byte));
    } else if (charset_ == VoiceCharset::kAscii ? !AddSign(character)
                                                : !AddForeignSign(character)) {
        AddFolded(character);
    }
}

void PlainWords::AddPlainForm(char32_t character, std::string_view plain) {
    // A lone "-" is read without a pause, "--" with one.
    const bool spacedDash =
        character == 0x2013 && EndsInBlank() && g_unichar_isspace(reader_.Peek());
    if (plain == "--" || spacedDash) {
        AddWords("--");
        return;
    }
    AddText(plain);
    // "wait...what" would be read "wait dot dot dot what".
    if (plain == "...")
        blankBeforeWord_ = true;
}

void PlainWords::AddUtf8(char32_t character) {
    switch (g_unichar_type(character)) {
        case G_UNICODE_CONTROL:
        case G_UNICODE_SURROGATE:
        case G_UNICODE_PRIVATE_USE:
        case G_UNICODE_UNASSIGNED:
            Drop(character);
            return;
        case G_UNICODE_OTHER_SYMBOL:
            if (charset_ == VoiceCharset::kUnicode)
                break;
            Drop(character);
            return;
        default:
            break;
    }
    std::array<char, 6> bytes;
    const int length = g_unichar_to_utf8(character, bytes.data());
    AddText(std::string_view(bytes.data(), static_cast<std::size_t>(length)));
}

// A mark joins the letter before it when the charset holds the two as one.
void PlainWords::AddMark(char32_t mark) {
    unsayable_.AddMark(characterBegin_, reader_.At());
    gunichar joined = 0;
    if (charset_ == VoiceCharset::kAscii || out_.empty() ||
        !g_unichar_compose(CharacterOfByte(static_cast<unsigned char>(out_.back()), charset_), mark,
                           &joined))
        return;
    if (const int byte = ByteInCharset(joined, charset_); byte >= 0)
        out_.back() = static_cast<char>(byte);
}

void PlainWords::AddFolded(char32_t character) {
    if (const char* letters = PlainLetters(character)) {
        AddText(letters);
        return;
    }
    std::array<gunichar, G_UNICHAR_MAX_DECOMPOSITION_LENGTH> parts;
    const gsize count = g_unichar_fully_decompose(character, TRUE, parts.data(), parts.size());
    bool added = false;
    for (gsize i = 0; i < count && i < parts.size(); ++i)
        added = AddPart(parts[i]) || added;
    if (!added)
        Drop(character);
}

bool PlainWords::AddPart(char32_t part) {
    if (const char* plain = PlainForm(part)) {
        AddText(plain);
    } else if (const int byte = ByteInCharset(part, charset_); byte >= 0) {
        Put(static_cast<char>(byte));
    } else if (const char* letters = PlainLetters(part)) {
        AddText(letters);
    } else {
        return false;
    }
    return true;
}

bool PlainWords::EndsInBlank() const {
    return !out_.empty() && g_ascii_isspace(out_.back());
}

std::string_view PlainWords::LastWord() const {
    const std::size_t last = out_.find_last_not_of(' ');
    if (last == std::string::npos)
        return {};
    const std::size_t limit = last > 32 ? last - 32 : 0;
    std::size_t first = last + 1;
    while (first > limit && !g_ascii_isspace(out_[first - 1]))
        --first;
    return std::string_view(out_).substr(first, last + 1 - first);
}
bool PlainWords::LastWordIsNumber() const {
    const std::string_view word = LastWord();
    return !word.empty() && g_ascii_isdigit(word.back());
}

void PlainWords::Drop(char32_t character) {
    unsayable_.Add(character, characterBegin_, reader_.At());
    Skip();
}

// What is left out parts words, but leaves no gap before punctuation.
void PlainWords::Skip() {
    if (!out_.empty() && IsAsciiLetterOrDigit(static_cast<unsigned char>(out_.back())))
        blankBeforeWord_ = true;
    dropped_ = true;
}

void PlainWords::AddWords(std::string_view words) {
    if (words.empty())
        return;
    if (!out_.empty() && !EndsInBlank() &&
        std::string_view("(\"'[/-").find(out_.back()) == std::string_view::npos)
        Append(' ');
    blankBeforeWord_ = false;
    for (const char character : words)
        Append(character);
    blankBeforeWord_ = true;
}

void PlainWords::AddText(std::string_view text) {
    for (const char character : text)
        Put(character);
}

void PlainWords::Put(char character) {
    const bool blank = character == ' ' || character == '\n' || character == '\t';
    if (blankBeforeWord_ && !blank &&
        std::string_view(".,:;!?)]}\"'-/%").find(character) == std::string_view::npos)
        Append(' ');
    blankBeforeWord_ = false;
    if (dropped_ && std::string_view(".,:;!?").find(character) != std::string_view::npos)
        while (out_.size() > taken_ && out_.back() == ' ')
            RemoveLast();
    dropped_ = dropped_ && blank;
    Append(character);
}

void PlainWords::Append(char character) {
    if (IsBlank(character)) {
        // Of endless white space a little stands for all, an empty line in it counts.
        if (blanks_ >= kMaxBlanks && (character != '\n' || blanks_ >= kMaxBlanks + 2))
            return;
        ++blanks_;
    } else {
        blanks_ = 0;
        keptEnd_ = reader_.At();
        skipsLongStretch_ = false;
    }
    out_ += character;
    sources_.push_back({characterBegin_, reader_.At()});
}

void PlainWords::RemoveLast() {
    out_.pop_back();
    sources_.pop_back();
}
