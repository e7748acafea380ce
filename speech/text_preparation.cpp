#include "speech/text_preparation.h"

#include <glib.h>

#include <array>
#include <cstdint>

#include "speech/character_tables.h"
#include "speech/sayable_units.h"

namespace {

bool IsAsciiLetterOrDigit(char32_t character) {
    return character < 0x80 && g_ascii_isalnum(static_cast<gchar>(character));
}

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

// Walks UTF-8, skipping bytes that are none.
class Utf8Reader {
public:
    explicit Utf8Reader(std::string_view text) : text_(text) {}

    bool AtEnd() const { return at_ >= text_.size(); }
    std::string_view Rest() const { return text_.substr(at_); }
    void Skip(std::size_t bytes) { at_ += bytes; }

    // The next character; 0 for a byte that does not belong to one.
    char32_t Next() {
        const auto first = static_cast<unsigned char>(text_[at_]);
        if (first < 0x80) {
            ++at_;
            return first;
        }
        const auto left = static_cast<gssize>(text_.size() - at_);
        const gunichar character = g_utf8_get_char_validated(text_.data() + at_, left);
        if (character == static_cast<gunichar>(-1) || character == static_cast<gunichar>(-2)) {
            ++at_;
            return 0;
        }
        at_ += static_cast<std::size_t>(g_unichar_to_utf8(character, nullptr));
        return character;
    }
    char32_t Peek() const {
        Utf8Reader ahead = *this;
        return ahead.AtEnd() ? 0 : ahead.Next();
    }

private:
    std::string_view text_;
    std::size_t at_ = 0;
};

// Turns characters into the bytes of one charset.
class CharsetWriter {
public:
    CharsetWriter(std::string_view text, VoiceCharset charset) : reader_(text), charset_(charset) {
        out_.reserve(text.size() + 16);
    }

    std::string Run() {
        while (!reader_.AtEnd()) {
            const char32_t character = reader_.Next();
            if (character == 0)
                continue;
            if (character < 0x80)
                AddAscii(static_cast<char>(character));
            else
                AddOther(character);
            previous_ = character;
        }
        return std::move(out_);
    }

private:
    void AddAscii(char character) {
        if (character == '\r') {
            if (reader_.Peek() != '\n')
                Put('\n');
        } else if (character == '\f' || character == '\v') {
            Put('\n');
        } else if ((character >= ' ' && character != 0x7F) || character == '\t' ||
                   character == '\n') {
            Put(character);
        }
    }

    void AddOther(char32_t character) {
        if (const char* plain = PlainForm(character)) {
            AddPlainForm(character, plain);
        } else if (charset_ == VoiceCharset::Utf8) {
            AddUtf8(character);
        } else if (g_unichar_ismark(character)) {
            AddMark(character);
        } else if (const int byte = ByteInCharset(character, charset_); byte >= 0) {
            Put(static_cast<char>(byte));
        } else if (charset_ != VoiceCharset::Ascii || !AddSign(character)) {
            AddFolded(character);
        }
    }

    void AddPlainForm(char32_t character, std::string_view plain) {
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

    void AddUtf8(char32_t character) {
        switch (g_unichar_type(character)) {
            case G_UNICODE_CONTROL:
            case G_UNICODE_SURROGATE:
            case G_UNICODE_PRIVATE_USE:
            case G_UNICODE_UNASSIGNED:
            case G_UNICODE_OTHER_SYMBOL:
                Drop();
                return;
            default:
                break;
        }
        std::array<char, 6> bytes;
        const int length = g_unichar_to_utf8(character, bytes.data());
        AddText(std::string_view(bytes.data(), static_cast<std::size_t>(length)));
    }

    // A mark joins the letter before it when the charset holds the two as one.
    void AddMark(char32_t mark) {
        gunichar joined = 0;
        if (charset_ == VoiceCharset::Ascii || out_.empty() ||
            !g_unichar_compose(CharacterOfByte(static_cast<unsigned char>(out_.back()), charset_),
                               mark, &joined))
            return;
        if (const int byte = ByteInCharset(joined, charset_); byte >= 0)
            out_.back() = static_cast<char>(byte);
    }

    // Signs in words, for English voices; false when the character is none.
    bool AddSign(char32_t sign) {
        if (const Currency* currency = FindCurrency(sign)) {
            AddCurrency(*currency);
        } else if (const char digit = SuperscriptDigit(sign); digit != '\0') {
            AddSuperscript(digit);
        } else if (const char* words = SpokenSign(sign)) {
            if (g_unichar_type(sign) == G_UNICODE_OTHER_NUMBER && LastWordIsNumber())
                AddWords("and");
            AddWords(words);
            AddDegreeScale(sign);
        } else if (const char* name = GreekLetterName(sign)) {
            // Said by name as a symbol, dropped as part of a Greek word.
            if (IsGreek(previous_) || IsGreek(reader_.Peek()))
                Drop();
            else
                AddWords(name);
        } else {
            return false;
        }
        return true;
    }

    static bool IsGreek(char32_t character) { return character >= 0x0370 && character < 0x0400; }

    void AddDegreeScale(char32_t sign) {
        const std::string_view rest = reader_.Rest();
        if (sign != 0x00B0 || rest.empty() || (rest[0] != 'C' && rest[0] != 'F') ||
            (rest.size() > 1 && g_ascii_isalnum(rest[1])))
            return;
        AddWords(rest[0] == 'C' ? "Celsius" : "Fahrenheit");
        reader_.Skip(1);
    }

    // The unit is said behind the amount: "5 euros", "2.50 pounds", "3 million yen".
    void AddCurrency(const Currency& currency) {
        const std::string_view amount = AmountAhead();
        if (!amount.empty()) {
            AddWords(amount);
            reader_.Skip(amount.size());
            AddWords(amount == "1" ? currency.one : currency.many);
        } else if (LastWordIsNumber()) {
            AddWords(LastWord() == "1" ? currency.one : currency.many);
        } else {
            AddWords(currency.one);
        }
    }

    // Digits with inner points and commas, and a scale word behind them.
    std::string_view AmountAhead() const {
        const std::string_view rest = reader_.Rest();
        std::size_t end = 0;
        while (end < rest.size() &&
               (IsDigit(rest[end]) || (end > 0 && (rest[end] == '.' || rest[end] == ',') &&
                                       end + 1 < rest.size() && IsDigit(rest[end + 1]))))
            ++end;
        if (end == 0)
            return {};
        for (const std::string_view scale : {" thousand", " million", " billion", " trillion"})
            if (rest.substr(end, scale.size()) == scale &&
                (end + scale.size() == rest.size() || !g_ascii_isalnum(rest[end + scale.size()])))
                return rest.substr(0, end + scale.size());
        return rest.substr(0, end);
    }

    void AddSuperscript(char digit) {
        const bool continues = SuperscriptDigit(previous_) != '\0';
        if (out_.empty() ||
            (!IsAsciiLetterOrDigit(static_cast<unsigned char>(out_.back())) && out_.back() != ')'))
            return;
        const bool alone = SuperscriptDigit(reader_.Peek()) == '\0' && !continues;
        if (alone && (digit == '2' || digit == '3')) {
            AddWords(digit == '2' ? "squared" : "cubed");
        } else if (continues) {
            Put(digit);
        } else if (IsDigit(out_.back())) {
            AddWords("to the");
            AddWords(std::string_view(&digit, 1));
        }  // else the number of a footnote
    }

    void AddFolded(char32_t character) {
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
            Drop();
    }

    bool AddPart(char32_t part) {
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

    bool EndsInBlank() const { return !out_.empty() && g_ascii_isspace(out_.back()); }

    std::string_view LastWord() const {
        const std::size_t last = out_.find_last_not_of(' ');
        if (last == std::string::npos)
            return {};
        const std::size_t limit = last > 32 ? last - 32 : 0;
        std::size_t first = last + 1;
        while (first > limit && !g_ascii_isspace(out_[first - 1]))
            --first;
        return std::string_view(out_).substr(first, last + 1 - first);
    }
    bool LastWordIsNumber() const {
        const std::string_view word = LastWord();
        return !word.empty() && IsDigit(word.back());
    }

    // What is left out parts words, but leaves no gap before punctuation.
    void Drop() {
        if (!out_.empty() && IsAsciiLetterOrDigit(static_cast<unsigned char>(out_.back())))
            blankBeforeWord_ = true;
        dropped_ = true;
    }

    void AddWords(std::string_view words) {
        if (words.empty())
            return;
        if (!out_.empty() && !EndsInBlank() &&
            std::string_view("(\"'[/-").find(out_.back()) == std::string_view::npos)
            out_ += ' ';
        blankBeforeWord_ = false;
        out_ += words;
        blankBeforeWord_ = true;
    }

    void AddText(std::string_view text) {
        for (const char character : text)
            Put(character);
    }

    void Put(char character) {
        const bool blank = character == ' ' || character == '\n' || character == '\t';
        if (blankBeforeWord_ && !blank &&
            std::string_view(".,:;!?)]}\"'-/%").find(character) == std::string_view::npos)
            out_ += ' ';
        blankBeforeWord_ = false;
        if (dropped_ && std::string_view(".,:;!?").find(character) != std::string_view::npos)
            while (out_.size() > 1 && out_.back() == ' ')
                out_.pop_back();
        dropped_ = dropped_ && blank;
        out_ += character;
    }

    Utf8Reader reader_;
    VoiceCharset charset_;
    std::string out_;
    char32_t previous_ = 0;         // the last character read
    bool blankBeforeWord_ = false;  // something was said or dropped; what follows is another word
    bool dropped_ = false;
};

}  // namespace

PreparedText PrepareText(std::string_view text, VoiceCharset charset) {
    return KeepSayableUnits(CharsetWriter(text, charset).Run(), charset);
}
