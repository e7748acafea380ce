#include <glib.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <iterator>
#include <map>
#include <memory>
#include <utility>

#include "documents/divided_words.h"
#include "documents/pdf_pages.h"
#include "documents/small_texts.h"

namespace {

// Letters are higher than those of the text by this: a heading; or lower: a footnote.
constexpr double kHeading = 1.12;
constexpr double kHigherHeading = 1.3;
constexpr double kHighestHeading = 1.6;
constexpr double kNote = 0.93;
constexpr std::size_t kLongestHeading = 200;
constexpr double kIndent = 0.8;            // of the letters' height
constexpr std::size_t kLongestLast = 200;  // bytes of a text's end
bool IsBullet(std::string_view line) {
    return line == "\xe2\x80\xa2" || line == "\xe2\x97\xa6" || line == "\xe2\x96\xaa";
}

bool EndsSentence(std::string_view text) {
    text.remove_prefix(text.size() - std::min(text.size(), kLongestLast));
    const std::size_t last = text.find_last_not_of("\"')]\n \xe2\x80\x99\x9d");
    constexpr std::string_view kStops[] = {".", "!", "?",  ":",  ";", "।",
                                           "۔", "؟", "。", "！", "？"};
    return last != std::string_view::npos &&
           std::any_of(std::begin(kStops), std::end(kStops),
                       [whole = text.substr(0, last + 1)](std::string_view stop) {
                           return whole.ends_with(stop);
                       });
}

bool HoldsLetters(std::string_view text) {
    for (const char* at = text.data(); at < text.data() + text.size(); at = g_utf8_next_char(at))
        if (g_unichar_isalpha(g_utf8_get_char(at)))
            return true;
    return false;
}

}  // namespace

class PageJoiner {
public:
    explicit PageJoiner(const DocumentRules& rules) : rules_(rules) {}

    // How words are written, and how high letters are.
    void Learn(const std::vector<PdfPage>& pages) {
        for (const PdfPage& page : pages)
            for (const PdfLine& line : page) {
                words_.Learn(line.text);
                if (line.height > 0)
                    heights_[static_cast<int>(std::lround(line.height * 2))] += line.text.size();
            }
    }

    // These pages are next.
    void Add(std::vector<PdfPage> pages) {
        Learn(pages);
        const auto most = std::max_element(
            heights_.begin(), heights_.end(),
            [](const auto& one, const auto& other) { return one.second < other.second; });
        bodyHeight_ = most == heights_.end() ? 0 : most->first / 2.0;
        for (PdfPage& page : pages)
            AddPage(pages_.emplace_back(std::move(page)));
    }

    const Document& SoFar() const { return document_; }

    Document Take() {
        EndHeading();
        AddNotes();
        if (!document_.text.empty())
            document_.text += '\n';
        return std::move(document_);
    }

private:
    void AddPage(const PdfPage& page) {
        emptyPages_ += std::exchange(isPageBegun_, true) ? 1U : 0U;
        const std::size_t notes = NotesFrom(page);
        for (std::size_t i = 0; i < notes; ++i)
            AddLine(page[i], i == 0 || page[i].beginsColumn);
        if (rules_.notes)
            notes_.insert(notes_.end(), page.begin() + static_cast<std::ptrdiff_t>(notes),
                          page.end());
        // A page whose last sentence is whole needs no waiting.
        if (EndsSentence(document_.text) || notes_.size() > kMostBehind)
            AddNotes();
    }

    // The first of the lines in small letters at a page's end; all of them when none is.
    std::size_t NotesFrom(const PdfPage& page) const {
        std::size_t from = page.size();
        while (from > 0 && page[from - 1].height > 0 && page[from - 1].height < bodyHeight_ * kNote)
            --from;
        while (from < page.size() && !(page[from].beginsBlock && BeginsNote(page[from].text)))
            ++from;
        return from == 0 ? page.size() : from;
    }
    static bool BeginsNote(const std::string& text) {
        constexpr std::u32string_view kMarks = U"*†‡§¶∗";
        const gunichar first = g_utf8_get_char(text.c_str());
        return g_unichar_isdigit(first) || g_unichar_type(first) == G_UNICODE_OTHER_NUMBER ||
               kMarks.find(static_cast<char32_t>(first)) != std::u32string_view::npos;
    }

    void AddNotes() {
        std::string& text = document_.text;
        EndHeading();
        last_ = nullptr;
        for (const PdfLine& note : std::exchange(notes_, {})) {
            if (note.beginsBlock || text.empty())
                text += text.empty() ? "" : "\n\n";
            else if (!words_.Join(document_.text, note.text))
                text += ' ';
            else
                continue;
            text += note.text;
        }
        isBehindNotes_ = true;
    }

    void AddLine(const PdfLine& line, bool beginsPage) {
        if (line.text.empty())
            return;
        const bool wasDivided =
            last_ != nullptr && HeadingLevel(line) == headingLevel_ && !line.beginsCell &&
            !line.beginsItem && (line.isInRow || !line.isRow || !last_->isRow) &&
            (!line.beginsBlock || BeginsLower(line.text)) && words_.Join(document_.text, line.text);
        if (!wasDivided) {
            const char* const parting = Parting(line, beginsPage);
            const bool isParagraph = std::string_view(parting) == "\n\n";
            if (isParagraph)
                EndHeading();
            if (isParagraph && !notes_.empty())
                AddNotes();
            if (!document_.text.empty())
                document_.text += parting;
            BeginLine(line);
            document_.text += line.text;
        } else {
            NotePage(document_.text.size() - line.text.size());
        }
        isBehindNotes_ = false;
        last_ = &line;
    }

    // Pages on which nothing stood count with the next one.
    void NotePage(std::size_t begin) {
        if (std::exchange(isPageBegun_, false))
            document_.pages.insert(document_.pages.end(), std::exchange(emptyPages_, 0) + 1, begin);
    }

    void BeginLine(const PdfLine& line) {
        const std::size_t begin = document_.text.size();
        NotePage(begin);
        const int level = HeadingLevel(line);
        if (level != headingLevel_)
            EndHeading();
        if (level > 0 && headingLevel_ == 0)
            headingBegin_ = begin;
        headingLevel_ = level;
    }

    int HeadingLevel(const PdfLine& line) const {
        if (bodyHeight_ <= 0 || line.text.size() > kLongestHeading)
            return 0;
        const double times = line.height / bodyHeight_;
        return times >= kHighestHeading  ? 1
               : times >= kHigherHeading ? 2
               : times >= kHeading       ? 3
                                         : 0;
    }

    void EndHeading() {
        const std::size_t end = document_.text.size();
        const int level = std::exchange(headingLevel_, 0);
        if (level == 0 || end - headingBegin_ > kLongestHeading)
            return;
        if (HoldsLetters(
                std::string_view(document_.text).substr(headingBegin_, end - headingBegin_)))
            document_.headings.push_back({headingBegin_, end, level});
    }

    // What stands between the last line and this one.
    const char* Parting(const PdfLine& line, bool beginsPage) const {
        if (line.isInRow && last_ != nullptr && !isBehindNotes_)
            return " ";
        if (last_ == nullptr || isBehindNotes_ || HeadingLevel(line) != headingLevel_)
            return "\n\n";
        if (IsBullet(last_->text))
            return " ";
        const bool goesOn = !(last_->isRow && line.beginsBlock) && !EndsSentence(document_.text) &&
                            !line.beginsItem && !IsBullet(line.text) && HoldsLetters(last_->text) &&
                            (beginsPage ? !g_unichar_isupper(g_utf8_get_char(line.text.c_str()))
                                        : BeginsLower(line.text) && IsFull(*last_, line));
        if (line.beginsBlock || beginsPage)
            return !goesOn ? "\n\n" : line.height > 0 ? " " : "\n";
        if (line.isRow || line.beginsItem || line.height <= 0 || !IsFull(*last_, line) ||
            !HoldsLetters(line.text) || !HoldsLetters(last_->text))
            return "\n";
        const bool isIndented = line.left > line.blockLeft + line.height * kIndent;
        return isIndented && EndsSentence(last_->text) ? "\n\n" : " ";
    }
    // The next line's first word had no room: the line ends where the column does.
    static bool IsFull(const PdfLine& line, const PdfLine& next) {
        return line.blockRight - line.right < next.firstWordWidth;
    }

    const DocumentRules& rules_;
    std::deque<PdfPage> pages_;  // last_ is one of their lines
    Document document_;
    DividedWords words_;
    std::map<int, std::size_t> heights_;  // in half points, weighed by their letters
    double bodyHeight_ = 0;
    std::vector<PdfLine> notes_;  // that wait for their paragraph's end
    const PdfLine* last_ = nullptr;
    bool isBehindNotes_ = false;
    bool isPageBegun_ = false;
    std::size_t emptyPages_ = 0;  // before the one that has begun
    int headingLevel_ = 0;        // of the heading that is open
    std::size_t headingBegin_ = 0;
};

Document JoinPages(std::vector<PdfPage> pages, const DocumentRules& rules) {
    PageJoiner joiner(rules);
    joiner.Add(std::move(pages));
    return joiner.Take();
}

GrowingPages::GrowingPages(const DocumentRules& rules, std::vector<PdfPage> known)
    : rules_(rules), known_(std::move(known)), joiner_(std::make_unique<PageJoiner>(rules)) {
    joiner_->Learn(known_);
}

GrowingPages::~GrowingPages() = default;

void GrowingPages::Add(std::vector<PdfPage> pages) {
    const std::size_t before = pages_.size();
    std::ranges::move(pages, std::back_inserter(pages_));
    std::vector<PdfPage> all = pages_;
    if (known_.size() > all.size())
        all.insert(all.end(), known_.begin() + static_cast<std::ptrdiff_t>(all.size()),
                   known_.end());
    if (!rules_.pageHeads)
        DropPageHeads(all);
    all.resize(pages_.size());
    all.erase(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(before));
    joiner_->Add(std::move(all));
}

Document GrowingPages::Beginning() const {
    const Document& all = joiner_->SoFar();
    std::size_t end = all.text.size();
    if (!EndsSentence(all.text)) {
        const std::string_view text = all.text;
        do
            end = text.substr(0, end).find_last_of(" \n");
        while (end != std::string_view::npos && !EndsSentence(text.substr(0, end)));
        end = end == std::string_view::npos ? 0 : end;
    }
    Document beginning;
    beginning.text = all.text.substr(0, end);
    for (const std::size_t page : all.pages)
        if (page < end)
            beginning.pages.push_back(page);
    return beginning;
}

Document GrowingPages::Take() {
    return joiner_->Take();
}
