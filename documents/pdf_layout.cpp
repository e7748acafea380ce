#include <glib.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "documents/html_tokens.h"
#include "documents/pdf_pages.h"
#include "documents/reference_mark.h"
#include "documents/small_texts.h"

namespace {

constexpr std::size_t kLongestLine = 65536;
constexpr std::size_t kLongestReference = 16;  // "&amp;", and what ends a word
constexpr double kLargestLength = 1e6;
// Of the letters' height: what parts words, what may part columns, what a mark may stand apart, and
// what lifts a small number above its line.
constexpr double kLeastGap = 0.1;
constexpr double kWideGap = 0.3;
constexpr double kLargestMarkGap = 0.18;
constexpr double kSmall = 0.85;
constexpr double kLifted = 0.12;

double LengthIn(std::string_view line, std::string_view name) {
    const std::string key = std::string(name) + "=\"";
    const std::size_t at = line.find(key);
    if (at == std::string_view::npos)
        return 0;
    const double length =
        g_ascii_strtod(std::string(line.substr(at + key.size(), 24)).c_str(), nullptr);
    // Also false for what is no number.
    return std::abs(length) < kLargestLength ? length : 0;
}

std::string TextIn(std::string_view line) {
    const std::size_t begin = line.find('>');
    const std::size_t end = line.rfind("</");
    return begin == std::string_view::npos || end == std::string_view::npos || end <= begin
               ? std::string()
               : ResolveReferences(line.substr(begin + 1, end - begin - 1), false);
}

std::string RaisedDigits(std::string_view digits) {
    constexpr const char* kRaised[] = {"⁰", "¹", "²", "³", "⁴", "⁵", "⁶", "⁷", "⁸", "⁹"};
    std::string raised;
    for (const char digit : digits)
        raised += kRaised[digit - '0'];
    return raised;
}

}  // namespace

void PdfLayout::Feed(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\n');
        rest_ += bytes.substr(0, end);
        if (end == std::string_view::npos)
            return CutLongLine();
        ReadLine(std::exchange(rest_, {}));
        bytes.remove_prefix(end + 1);
    }
}

// A word goes on as another one at its place, which no blank parts from it; of what is none nobody
// needs so much.
void PdfLayout::CutLongLine() {
    if (rest_.size() < kLongestLine)
        return;
    const std::size_t begin = rest_.find('>') + 1;
    const bool isWord = rest_.find("<word ") == rest_.find_first_not_of(' ');
    std::size_t cut = rest_.size() - kLongestReference;
    if (!isWord || begin == 0 || begin + kLongestReference > cut)
        return rest_.resize(kLongestLine);
    if (const std::size_t reference = rest_.rfind('&', cut); reference + kLongestReference > cut)
        cut = reference;
    while (cut > begin && (static_cast<unsigned char>(rest_[cut]) & 0xC0U) == 0x80U)
        --cut;
    textSize_ += cut - begin;
    ReadLine(rest_.substr(0, cut) + "</word>");
    rest_.erase(begin, cut - begin);
}

void PdfLayout::ReadLine(std::string_view line) {
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    if (line.starts_with("<word ")) {
        Word word{TextIn(line), LengthIn(line, "xMin"), LengthIn(line, "xMax"),
                  LengthIn(line, "yMin"), LengthIn(line, "yMax")};
        if (!word.text.empty())
            words_.push_back(std::move(word));
    } else if (line.starts_with("</line>")) {
        EndLine();
    } else if (line.starts_with("<block ")) {
        blockLeft_ = LengthIn(line, "xMin");
        blockRight_ = LengthIn(line, "xMax");
        beginsBlock_ = true;
    } else if (line.starts_with("<page ")) {
        pages_.emplace_back();
    } else if (line.starts_with("</page>") && !pages_.empty()) {
        PutInReadingOrder(pages_.back());
        JoinInitials(pages_.back());
        OrderColumns(pages_.back());
        FindItems(pages_.back());
        JoinGrids(pages_.back());
        JoinRows(pages_.back());
        JoinTables(pages_.back());
    }
}

// One that stands as most letters of the line do: other fonts in it are higher or lower.
const PdfLayout::Word& PdfLayout::UsualWord() const {
    std::map<std::pair<long, long>, std::size_t> letters;
    const auto placeOf = [](const Word& word) {
        return std::pair(std::lround(word.top * 2), std::lround(word.bottom * 2));
    };
    const Word* usual = &words_.front();
    for (const Word& word : words_) {
        letters[placeOf(word)] += word.text.size();
        if (letters[placeOf(word)] > letters[placeOf(*usual)])
            usual = &word;
    }
    return *usual;
}

void PdfLayout::EndLine() {
    if (words_.empty() || pages_.empty())
        return;
    PdfLine line;
    const Word& usual = UsualWord();
    line.height = usual.bottom - usual.top;
    line.top = usual.top;
    line.left = words_.front().left;
    line.right = words_.back().right;
    line.firstWordWidth = words_.front().right - words_.front().left + line.height / 4;
    line.lastWordWidth = words_.back().right - words_.back().left + line.height / 4;
    line.blockLeft = blockLeft_;
    line.blockRight = blockRight_;
    line.beginsBlock = std::exchange(beginsBlock_, false);
    const Word* before = nullptr;
    for (const Word& word : words_) {
        const double height = word.bottom - word.top;
        const bool isRaised = before != nullptr && AreDigits(word.text) &&
                              height < line.height * kSmall &&
                              word.left - before->right < line.height * kLargestMarkGap &&
                              word.bottom < usual.bottom - line.height * kLifted;
        if (isRaised && IsReferenceMark(word.text, line.text, false)) {
            line.text += keepsMarks_ ? "[" + word.text + "]" : std::string();
            before = &word;
            continue;
        }
        // A note's own number is set small, or above the line, before its text.
        const bool followsMark = before == &words_.front() && AreDigits(before->text) &&
                                 (before->bottom - before->top < line.height * kSmall ||
                                  before->bottom < usual.bottom - line.height * kLifted);
        if (followsMark ||
            (before != nullptr && word.left - before->right > line.height * kLeastGap))
            line.text += ' ';
        if (before != nullptr && word.left - before->right > line.height * kWideGap)
            line.gaps.push_back({before->right, word.left, line.text.size()});
        line.text += isRaised ? RaisedDigits(word.text) : word.text;
        before = &word;
    }
    words_.clear();
    textSize_ += line.text.size() + sizeof line;
    pages_.back().push_back(std::move(line));
}

std::vector<PdfPage> PdfPagesOfText(std::string_view text) {
    std::vector<PdfPage> pages(1);
    bool beginsBlock = true;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of("\n\f"), text.size());
        if (end > 0) {
            pages.back().emplace_back();
            pages.back().back().text = text.substr(0, end);
            pages.back().back().beginsBlock = beginsBlock;
        }
        beginsBlock = end == 0 || (end < text.size() && text[end] == '\f');
        if (end < text.size() && text[end] == '\f')
            pages.emplace_back();
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return pages;
}
