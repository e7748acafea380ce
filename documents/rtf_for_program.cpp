#include "documents/rtf_for_program.h"

#include <glib.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "documents/small_texts.h"

namespace {

constexpr std::size_t kMostGroups = 100000;
constexpr int kMostStandIns = 8;
constexpr std::size_t kAskedAfter = 65536;  // bytes

// The beginnings of groups, and what they become; "\*" before a word that the program does not know
// makes it pass over the group.
constexpr std::pair<std::string_view, std::string_view> kGroups[] = {
    {"{\\deleted", "{\\*\\deleted"},
    {"{\\*\\fldinst", "{\\*\\linkplace"},
    // A link's words, marked as if whoever does not know links could do without.
    {"{\\*\\fldrslt", "{\\fldrslt"},
    {"{\\v ", "{\\*\\vhidden "},
    {"{\\v\\", "{\\*\\vhidden\\"},
    {"{\\footnote", ""},
    {"{\\*\\footnote", ""}};

class RtfForProgramWriter {
public:
    RtfForProgramWriter(std::string_view rtf, bool keepsNotes)
        : rest_(rtf), note_(keepsNotes ? "{ (Note:) \\footnote" : "{\\*\\footnote") {
        text_.reserve(rtf.size() + rtf.size() / 8);
    }

    void Write(const ReadingWatch& watch) {
        std::size_t left = rest_.size();
        while (!rest_.empty()) {
            if (left - rest_.size() > kAskedAfter) {
                left = rest_.size();
                if (watch.IsToEnd())
                    return;
            }
            if (rest_[0] == '{')
                BeginGroup();
            else if (rest_[0] == '\\')
                WriteWord();
            else {
                if (rest_[0] == '}' && standIns_.size() > 1)
                    standIns_.pop_back();
                Copy(1);
            }
        }
    }
    std::string Take() { return std::move(text_); }

private:
    void Copy(std::size_t count) {
        text_ += rest_.substr(0, count);
        rest_.remove_prefix(std::min(count, rest_.size()));
    }

    void BeginGroup() {
        if (standIns_.size() < kMostGroups)
            standIns_.push_back(standIns_.back());
        for (const auto& [begin, instead] : kGroups)
            if (rest_.starts_with(begin)) {
                text_ += instead.empty() ? note_ : instead;
                rest_.remove_prefix(begin.size());
                return;
            }
        Copy(1);
    }

    // A word with its number and the blank that ends it, or a sign and the one that it keeps.
    std::size_t WordEnd(std::size_t& number) const {
        std::size_t end = 1;
        while (end < rest_.size() && g_ascii_isalpha(rest_[end]))
            ++end;
        number = end;
        if (end == 1)
            return rest_.substr(1, 1) == "'" ? 4 : 2;
        if (end < rest_.size() && rest_[end] == '-')
            ++end;
        while (end < rest_.size() && g_ascii_isdigit(rest_[end]))
            ++end;
        return end + (end < rest_.size() && rest_[end] == ' ' ? 1 : 0);
    }

    void WriteWord() {
        std::size_t number = 0;
        const std::size_t end = WordEnd(number);
        const std::string_view word = rest_.substr(1, number - 1);
        const std::string_view value = rest_.substr(number, end - number);
        if (word == "uc" && !value.empty()) {
            standIns_.back() = std::clamp(NumberIn(value), 0, kMostStandIns);
            rest_.remove_prefix(end);
            text_ += "\\uc1 ";
        } else if (word == "u" && !value.empty() && value != " ") {
            const int code = NumberIn(value);
            rest_.remove_prefix(end);
            PassStandIns();
            WriteLetter(code < 0 ? code + 0x10000 : code);
        } else {
            Copy(end);
        }
    }

    // The halves of a letter beyond the first 65,536 come one after the other.
    void WriteLetter(int code) {
        if (code >= 0xD800 && code < 0xDC00) {
            firstHalf_ = code;
            return;
        }
        if (const int half = std::exchange(firstHalf_, 0); code >= 0xDC00 && code < 0xE000)
            code = half == 0 ? 0xFFFD : 0x10000 + ((half - 0xD800) << 10) + (code - 0xDC00);
        text_ += "\\u" + std::to_string(code) + "\\'3f";
    }

    void PassStandIns() {
        for (int i = 0; i < standIns_.back(); ++i) {
            // Line ends of the file are none of the text.
            rest_.remove_prefix(std::min(rest_.find_first_not_of("\r\n"), rest_.size()));
            if (rest_.empty() || rest_[0] == '{' || rest_[0] == '}')
                return;
            std::size_t number = 0;
            const bool isWord = rest_[0] == '\\';
            rest_.remove_prefix(std::min(isWord ? WordEnd(number) : 1, rest_.size()));
        }
    }

    std::string_view rest_;
    std::string_view note_;
    std::string text_;
    int firstHalf_ = 0;
    std::vector<int> standIns_ = {1};  // letters behind one by its number, of each open group
};

}  // namespace

std::string RtfForProgram(std::string_view rtf, const ReadingWatch& watch,
                          const DocumentRules& rules) {
    RtfForProgramWriter writer(rtf, rules.notes);
    writer.Write(watch);
    return writer.Take();
}
