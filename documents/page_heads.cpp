#include <glib.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <set>

#include "documents/pdf_pages.h"
#include "documents/small_texts.h"

namespace {

constexpr std::size_t kOuterLines = 2;  // of a page, above and below
constexpr std::size_t kLeastPages = 3;
constexpr std::size_t kLongestHead = 200;
constexpr int kMostPages = 100000;
constexpr std::size_t kLeastPagesOfAll = 10;  // fewer may be one slide that grows
constexpr std::size_t kMostHeadWords = 16;
constexpr double kBesideNumber = 0.4;    // of the letters' height
constexpr double kLargeLetters = 1.15;   // of the usual ones' height
constexpr std::size_t kMostNumbers = 3;  // of a line that may be the page's

// In small letters. What stands beside a page's number; what stands beside a date's.
constexpr SortedNames<20> kPageWords = {"/",    "blatt",  "de",  "di",  "of",     "p",   "p.",
                                        "page", "pagina", "pg",  "pg.", "página", "s.",  "seite",
                                        "str.", "sur",    "von", "|",   "из",     "стр."};
static_assert(std::is_sorted(kPageWords.begin(), kPageWords.end()));
constexpr std::string_view kMonths[] = {
    "january",  "february",  "march",      "april",    "may",       "june",      "july",
    "august",   "september", "october",    "november", "december",  "jan",       "feb",
    "mar",      "apr",       "jun",        "jul",      "aug",       "sep",       "sept",
    "oct",      "nov",       "dec",        "januar",   "februar",   "märz",      "mai",
    "juni",     "juli",      "oktober",    "dezember", "janvier",   "février",   "mars",
    "avril",    "juin",      "juillet",    "août",     "septembre", "octobre",   "novembre",
    "décembre", "enero",     "febrero",    "marzo",    "abril",     "mayo",      "junio",
    "julio",    "agosto",    "septiembre", "octubre",  "noviembre", "diciembre", "monday",
    "tuesday",  "wednesday", "thursday",   "friday",   "saturday",  "sunday",    "day",
    "tag"};

std::optional<int> RomanValue(std::string_view text) {
    constexpr std::pair<char, int> kDigits[] = {
        {'i', 1}, {'v', 5}, {'x', 10}, {'l', 50}, {'c', 100}};
    int value = 0;
    int last = 1000;
    for (const char sign : text) {
        const auto* const digit =
            std::find_if(std::begin(kDigits), std::end(kDigits),
                         [sign](const auto& known) { return known.first == sign; });
        if (digit == std::end(kDigits))
            return std::nullopt;
        value += digit->second > last ? digit->second - 2 * last : digit->second;
        last = digit->second;
    }
    return text.empty() || text.size() > 10 ? std::nullopt : std::optional(value);
}

std::vector<std::string> WordsOf(std::string_view line) {
    const std::string terminated(line);
    gchar* const lower = g_utf8_strdown(terminated.c_str(), -1);
    std::string text(lower);
    g_free(lower);
    std::vector<std::string> words;
    for (std::size_t at = text.find_first_not_of(kWhiteSpace); at != std::string::npos;
         at = text.find_first_not_of(kWhiteSpace, at)) {
        const std::size_t end = std::min(text.find_first_of(kWhiteSpace, at), text.size());
        words.push_back(text.substr(at, end - at));
        at = end;
    }
    return words;
}

// "1/3": of how many.
void DropTotal(std::string& word) {
    const std::size_t slash = word.find('/');
    if (slash != std::string::npos && slash > 0 && slash + 1 < word.size() &&
        word.find_first_not_of("0123456789") == slash &&
        word.find_first_not_of("0123456789", slash + 1) == std::string::npos)
        word.resize(slash);
}

// The number in a word: "12", "-12-", "12/", "12/20", "xiv" alone.
std::optional<int> NumberOf(std::string word, bool isAlone) {
    constexpr std::string_view kDecoration = "-()[]/|.,:";
    for (const std::string_view dash : {"\u2013", "\u2014", "\u2022", "\u00b7"})
        for (std::size_t at = word.find(dash); at != std::string::npos; at = word.find(dash))
            word.erase(at, dash.size());
    word.erase(0, std::min(word.find_first_not_of(kDecoration), word.size()));
    word.resize(word.find_last_not_of(kDecoration) + 1);
    DropTotal(word);
    if (word.empty() || word.size() > 10)
        return std::nullopt;
    if (word.find_first_not_of("0123456789") == std::string::npos)
        return word.size() > 6 ? std::nullopt : std::optional(NumberIn(word));
    return isAlone ? RomanValue(word) : std::nullopt;
}

bool HasLetterOrDigit(const std::string& word) {
    return std::any_of(word.begin(), word.end(), [](char sign) {
        return g_ascii_isalnum(sign) || static_cast<unsigned char>(sign) >= 0x80;
    });
}

// One line as it may be repeated on other pages.
struct Head {
    std::size_t page;
    std::string text;                // equal to others, in letters of the same height
    std::vector<std::string> keys;   // equal to others but for a number that rises with the pages
    std::string edge;                // equal where such a number is the line's first or last word
    std::vector<std::string> words;  // but numbers
    bool isHigh = false;             // in larger letters than the text, as titles are
};

// "Chapter 2", "Question 2 of 9", "12 March": what a number belongs to that is not the page's.
bool NamesItsNumber(const std::vector<std::string>& words, bool isAlone) {
    std::size_t own = 0;
    for (const std::string& word : words) {
        if (std::find(std::begin(kMonths), std::end(kMonths), word) != std::end(kMonths))
            return true;
        const bool isNumber = NumberOf(word, isAlone).has_value();
        own += HasLetterOrDigit(word) && !isNumber && !IsOneOf(word, kPageWords) ? 1U : 0U;
    }
    return own == 1;
}

std::vector<std::string> WithoutNumbers(std::vector<std::string> words) {
    std::erase_if(words, [](const std::string& word) {
        return !HasLetterOrDigit(word) || NumberOf(word, false).has_value();
    });
    return words;
}

Head HeadOf(const PdfLine& line, std::size_t page, bool isBelow) {
    const std::string side = isBelow ? "v" : "^";
    const std::vector<std::string> words = WordsOf(line.text);
    Head head{page,
              side + std::to_string(std::lround(line.height * 2)) + line.text,
              {},
              {},
              WithoutNumbers(words)};
    std::size_t shown = 0;
    for (const std::string& word : words)
        shown += HasLetterOrDigit(word) ? 1U : 0U;
    if (NamesItsNumber(words, shown == 1))
        return head;
    for (const std::size_t at : {std::size_t{0}, words.size() - 1})
        if (at < words.size())
            if (const std::optional<int> number = NumberOf(words[at], true); number)
                head.edge = side + "edge " + std::to_string(*number - static_cast<int>(page));
    for (std::size_t at = 0; at < words.size() && head.keys.size() < kMostNumbers; ++at) {
        const std::optional<int> number = NumberOf(words[at], shown == 1);
        if (!number)
            continue;
        std::string key = side;
        for (std::size_t other = 0; other < words.size(); ++other)
            key += " " + (other == at ? "#" : words[other]);
        // The same for all pages on which it rises with them.
        head.keys.push_back(key + " " + std::to_string(*number - static_cast<int>(page)));
    }
    return head;
}

// Above and below, by where the lines stand.
std::vector<std::pair<std::size_t, bool>> OuterLines(const PdfPage& page) {
    std::vector<std::size_t> order(page.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::stable_sort(order.begin(), order.end(), [&page](std::size_t one, std::size_t other) {
        return page[one].top < page[other].top;
    });
    std::vector<std::pair<std::size_t, bool>> outer;
    for (std::size_t i = 0; i < std::min(kOuterLines, order.size()); ++i)
        outer.emplace_back(order[i], false);
    for (std::size_t i = 0; i < std::min(kOuterLines, order.size()); ++i)
        outer.emplace_back(order[order.size() - 1 - i], true);
    return outer;
}

// What stands in a table's row with others is no line by itself.
bool StandsInRow(const PdfPage& page, std::size_t line) {
    return page[line].isInRow || (line + 1 < page.size() && page[line + 1].isInRow);
}

// On three pages or more, and on nearly every other one of those between.
bool IsRunning(const std::set<std::size_t>& pages) {
    const std::size_t span = pages.empty() ? 0 : *pages.rbegin() - *pages.begin() + 1;
    return pages.size() >= kLeastPages && pages.size() * 5 >= span * 2;
}

class PageHeads {
public:
    explicit PageHeads(const std::vector<PdfPage>& pages) : pages_(pages) {}

    // Of each page, the lines to be left out.
    std::vector<std::set<std::size_t>> Find() {
        ForEachHead([this](std::size_t, const Head& head) {
            seen_[head.text].insert(head.page);
            if (!head.edge.empty())
                seen_[head.edge].insert(head.page);
            for (const std::string& key : head.keys)
                seen_[key].insert(head.page);
        });
        std::vector<std::set<std::size_t>> running(pages_.size());
        std::vector<std::set<std::size_t>> besideNumbers(pages_.size());
        ForEachHead([&](std::size_t line, const Head& head) {
            if (Rises(head) || IsRunning(seen_[head.text]))
                running[head.page].insert(line);
            else if (IsBesideNumber(head, line, running[head.page]))
                besideNumbers[head.page].insert(line);
        });
        LearnWhatStands(running, besideNumbers);
        std::vector<std::set<std::size_t>> dropped(pages_.size());
        ForEachHead([&](std::size_t line, const Head& head) {
            if (Rises(head) || (IsRunning(seen_[head.text]) && !IsToBeKept(head)) ||
                (besideNumbers[head.page].contains(line) && StandsElsewhere(head.words)))
                dropped[head.page].insert(line);
        });
        return dropped;
    }

private:
    template <typename Take>
    void ForEachHead(const Take& take) const {
        for (std::size_t page = 0; page < pages_.size(); ++page)
            for (const auto& [line, isBelow] : OuterLines(pages_[page]))
                if (pages_[page][line].text.size() <= kLongestHead &&
                    !StandsInRow(pages_[page], line)) {
                    Head head = HeadOf(pages_[page][line], page, isBelow);
                    head.isHigh = usualHeight_ > 0 &&
                                  pages_[page][line].height > usualHeight_ * kLargeLetters;
                    take(line, head);
                }
    }

    // Of most letters.
    double UsualHeight() const {
        std::map<long, std::size_t> letters;  // by half points
        for (const PdfPage& page : pages_)
            for (const PdfLine& line : page)
                letters[std::lround(line.height * 2)] += line.text.size();
        const auto most = std::max_element(
            letters.begin(), letters.end(),
            [](const auto& one, const auto& other) { return one.second < other.second; });
        return most == letters.end() ? 0 : static_cast<double>(most->first) / 2;
    }

    bool Rises(const Head& head) {
        // "Results (1/3)": the parts of what has the title.
        if (head.isHigh && !head.words.empty() && head.text.find('/') != std::string::npos)
            return false;
        return std::any_of(head.keys.begin(), head.keys.end(),
                           [this](const auto& key) { return IsRunning(seen_[key]); });
    }

    // A chapter's title at the side of the page's number; it is no larger than the text there.
    bool IsBesideNumber(const Head& head, std::size_t line, const std::set<std::size_t>& running) {
        if (head.isHigh)
            return false;
        if (!head.edge.empty() && IsRunning(seen_[head.edge]))
            return true;
        const PdfPage& page = pages_[head.page];
        return std::any_of(running.begin(), running.end(), [&page, line](std::size_t number) {
            return page[line].height > 0 && WithoutNumbers(WordsOf(page[number].text)).empty() &&
                   std::abs(page[line].Middle() - page[number].Middle()) <
                       page[line].height * kBesideNumber;
        });
    }

    void LearnWhatStands(const std::vector<std::set<std::size_t>>& running,
                         const std::vector<std::set<std::size_t>>& besideNumbers) {
        for (std::size_t page = 0; page < pages_.size(); ++page)
            for (std::size_t line = 0; line < pages_[page].size(); ++line)
                if (pages_[page][line].text.size() <= kLongestHead &&
                    !running[page].contains(line) && !besideNumbers[page].contains(line))
                    standing_.insert(Joined(WithoutNumbers(WordsOf(pages_[page][line].text))));
        standing_.erase("");
    }

    static std::string Joined(const std::vector<std::string>& words) {
        std::string joined;
        for (const std::string& word : words)
            joined += (joined.empty() ? "" : " ") + word;
        return joined;
    }

    // A line that is read is the most of it: the chapter's title, where the head says its number.
    bool StandsElsewhere(const std::vector<std::string>& words) const {
        const std::size_t count = std::min(words.size(), kMostHeadWords);
        for (std::size_t begin = 0; begin < count; ++begin)
            for (std::size_t end = begin + (count + 1) / 2; end <= count; ++end)
                if (standing_.contains(Joined({words.begin() + static_cast<std::ptrdiff_t>(begin),
                                               words.begin() + static_cast<std::ptrdiff_t>(end)})))
                    return true;
        return words.empty();
    }

    // A title above all pages is read once, and so is that of some pages in a row, if it is not
    // read anyway. What is no larger than the text and begins on the second page is a letter's
    // head.
    bool IsToBeKept(const Head& head) {
        const std::set<std::size_t>& run = seen_[head.text];
        if (head.page != *run.begin())
            return false;
        if (head.page == 0)
            return head.text.starts_with('^');
        // On a page of few lines what stands above is among the last ones, too.
        const bool isAbove = seen_["^" + head.text.substr(1)].contains(head.page);
        if (!isAbove)
            return false;
        const std::size_t pages = pages_.size() - (head.page == 1 ? 1 : 0);
        const bool isOfAll = run.size() * 5 >= pages * (pages < kLeastPagesOfAll ? 4 : 2);
        return (!isOfAll || head.isHigh) && !StandsElsewhere(head.words);
    }

    const std::vector<PdfPage>& pages_;
    const double usualHeight_ = UsualHeight();
    std::map<std::string, std::set<std::size_t>> seen_;  // pages, by what is equal on them
    std::set<std::string> standing_;                     // lines that are read
};

}  // namespace

void DropPageHeads(std::vector<PdfPage>& pages) {
    if (pages.size() < kLeastPages || pages.size() > kMostPages)
        return;
    const std::vector<std::set<std::size_t>> dropped = PageHeads(pages).Find();
    for (std::size_t page = 0; page < pages.size(); ++page) {
        // What a dropped line began, the next one begins.
        for (const std::size_t line : dropped[page])
            if (pages[page][line].beginsBlock && line + 1 < pages[page].size())
                pages[page][line + 1].beginsBlock = true;
        for (auto line = dropped[page].rbegin(); line != dropped[page].rend(); ++line)
            pages[page].erase(pages[page].begin() + static_cast<std::ptrdiff_t>(*line));
    }
}
