#include <glib.h>

#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include "documents/pdf_text.h"

namespace {

constexpr std::string_view kHyphens[] = {"-", "\xe2\x80\x90", "\xc2\xad"};
constexpr std::size_t kMaxPageNumber = 8;
constexpr int kRunningTitlePages = 3;

char32_t CharacterBefore(std::string_view text, std::size_t at) {
    std::size_t begin = at;
    while (begin > 0 && (static_cast<unsigned char>(text[begin - 1]) & 0xC0U) == 0x80U)
        --begin;
    return begin == 0 ? 0 : g_utf8_get_char(text.data() + begin - 1);
}

// Letters at the end or the beginning of a text, as one word.
std::string_view LastLetters(std::string_view text) {
    std::size_t begin = text.size();
    while (begin > 0 && g_unichar_isalpha(CharacterBefore(text, begin)))
        begin = static_cast<std::size_t>(g_utf8_find_prev_char(text.data(), text.data() + begin) -
                                         text.data());
    return text.substr(begin);
}

std::string_view FirstLetters(std::string_view text) {
    const char* at = text.data();
    const char* const end = text.data() + text.size();
    while (at < end && g_unichar_isalpha(g_utf8_get_char(at)))
        at = g_utf8_next_char(at);
    return text.substr(0, static_cast<std::size_t>(at - text.data()));
}

// "12", "- 12 -", "xiv".
bool IsPageNumber(std::string_view line) {
    const std::size_t first = line.find_first_not_of(" -\xe2\x80\x93\x94");
    if (first == std::string_view::npos)
        return false;
    const std::size_t last = line.find_last_not_of(" -\xe2\x80\x93\x94");
    const std::string_view number = line.substr(first, last + 1 - first);
    return number.size() <= kMaxPageNumber &&
           (number.find_first_not_of("0123456789") == std::string_view::npos ||
            number.find_first_not_of("ivxlc") == std::string_view::npos);
}

// What a page's first or last line has in common with those of other pages.
std::string WithoutDigits(std::string_view line) {
    std::string rest(line);
    std::erase_if(rest, [](char character) { return g_ascii_isdigit(character); });
    return rest;
}

bool IsBullet(std::string_view line) {
    return line == "\xe2\x80\xa2" || line == "\xe2\x97\xa6" || line == "\xe2\x96\xaa";
}

bool EndsSentence(std::string_view text) {
    const std::size_t last = text.find_last_not_of("\"')]\n \xe2\x80\x99\x9d");
    return last != std::string_view::npos &&
           std::string_view(".!?:;").find(text[last]) != std::string_view::npos;
}

std::vector<std::string_view> Split(std::string_view text, char end) {
    std::vector<std::string_view> parts;
    while (!text.empty()) {
        const std::size_t length = std::min(text.find(end), text.size());
        parts.push_back(text.substr(0, length));
        text.remove_prefix(std::min(length + 1, text.size()));
    }
    return parts;
}

class Joiner {
public:
    explicit Joiner(std::string_view text) {
        for (const std::string_view page : Split(text, '\f')) {
            pages_.push_back(Split(page, '\n'));
            TrimPage(pages_.back());
            if (!pages_.back().empty())
                ++firstLines_[WithoutDigits(pages_.back().front())];
        }
        for (std::size_t at = text.find('-'); at != std::string_view::npos;
             at = text.find('-', at + 1))
            if (const std::string word = HyphenatedWord(text, at); !word.empty())
                hyphenated_.insert(word);
    }

    std::string Run() {
        for (std::vector<std::string_view>& lines : pages_) {
            DropRunningTitle(lines);
            if (!lines.empty() && !text_.empty())
                EndPage(lines.front());
            for (const std::string_view line : lines)
                AddLine(line);
        }
        return std::move(text_);
    }

private:
    static std::string HyphenatedWord(std::string_view text, std::size_t hyphen) {
        const std::string_view first = LastLetters(
            text.substr(hyphen > 64 ? hyphen - 64 : 0, std::min<std::size_t>(hyphen, 64)));
        const std::string_view second = FirstLetters(text.substr(hyphen + 1, 64));
        return first.empty() || second.empty() ? std::string()
                                               : std::string(first) + "-" + std::string(second);
    }

    static void TrimBlankLines(std::vector<std::string_view>& lines) {
        while (!lines.empty() && lines.back().empty())
            lines.pop_back();
        lines.erase(lines.begin(), std::find_if(lines.begin(), lines.end(),
                                                [](auto line) { return !line.empty(); }));
    }

    // Of its blank lines and its number.
    static void TrimPage(std::vector<std::string_view>& lines) {
        TrimBlankLines(lines);
        if (!lines.empty() && IsPageNumber(lines.back()))
            lines.pop_back();
        else if (lines.size() > 1 && IsPageNumber(lines.front()))
            lines.erase(lines.begin());
        TrimBlankLines(lines);
    }

    // The title that stands above every page is read once.
    void DropRunningTitle(std::vector<std::string_view>& lines) {
        if (lines.size() < 2)
            return;
        const std::string title = WithoutDigits(lines.front());
        if (firstLines_[title] < kRunningTitlePages || titles_.insert(title).second)
            return;
        lines.erase(lines.begin());
        TrimBlankLines(lines);
    }

    // A sentence that goes on upon the next page goes on here.
    void EndPage(std::string_view next) {
        const bool goesOn = !EndsSentence(text_) && !next.empty() &&
                            !g_unichar_isupper(g_utf8_get_char(next.data()));
        while (text_.ends_with('\n'))
            text_.pop_back();
        text_ += goesOn ? "\n" : "\n\n";
    }

    void AddLine(std::string_view line) {
        const bool isBehindBullet = text_.ends_with(' ');
        if (isBehindBullet && line.empty())
            return;
        if (!JoinDividedWord(line))
            text_ += line;
        text_ += IsBullet(line) ? ' ' : '\n';
    }

    // True when the line began with the rest of a word and has been added.
    bool JoinDividedWord(std::string_view line) {
        if (line.empty() || !text_.ends_with('\n') ||
            !g_unichar_islower(g_utf8_get_char(line.data())))
            return false;
        const std::string_view before = std::string_view(text_).substr(0, text_.size() - 1);
        for (const std::string_view hyphen : kHyphens) {
            if (!before.ends_with(hyphen))
                continue;
            const std::string_view first =
                LastLetters(before.substr(0, before.size() - hyphen.size()));
            const bool keeps =
                hyphenated_.contains(std::string(first) + "-" + std::string(FirstLetters(line)));
            if (first.empty())
                return false;
            text_.resize(before.size() - (keeps ? 0 : hyphen.size()));
            text_ += line;
            return true;
        }
        return false;
    }

    std::vector<std::vector<std::string_view>> pages_;  // their lines
    std::map<std::string, int> firstLines_;             // how many pages begin with it
    std::set<std::string> titles_;                      // those that were read
    std::set<std::string, std::less<>> hyphenated_;     // words with their hyphen within a line
    std::string text_;
};

}  // namespace

std::string JoinPages(std::string_view pages) {
    return Joiner(pages).Run();
}
