#include "documents/epub_contents.h"

#include <glib.h>

#include <algorithm>
#include <functional>
#include <set>
#include <utility>

#include "documents/html_reader.h"
#include "documents/small_texts.h"
#include "documents/text_charset.h"

namespace {

constexpr std::string_view kSheetEnd = "<mbp:pagebreak";
constexpr std::size_t kLongestEmptySheet = 200;  // behind the last one
constexpr std::size_t kLongestTitle = 40;        // of contents, where it is no heading
constexpr std::size_t kLeastLinks = 3;
constexpr std::size_t kMostLinks = 20000;
constexpr std::size_t kOneInMissing = 4;  // places that are no headings, such as "Title Page"

// Collects links into the book; what else the page says ends it.
class LinksListener : public MarkupListener {
public:
    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override {
        const std::string_view address = attributes.Value("href");
        if (name == "a" && !address.empty() && address.find(':') == std::string_view::npos) {
            saysMore = saysMore || titles.size() >= kMostLinks;
            titles.emplace_back();
            isInLink_ = true;
        }
        isMarked = isMarked || attributes.HasWord("epub:type", "toc");
        headings_ += IsHeadingName(name) ? 1 : 0;
        saysMore = saysMore || name == "img" || name == "svg" || name == "image";
        return name != "head" && name != "script" && name != "style";
    }
    void EvElementEnd(std::string_view name) override {
        isInLink_ = isInLink_ && name != "a";
        headings_ -= IsHeadingName(name) && headings_ > 0 ? 1 : 0;
    }
    void EvText(std::string_view text) override {
        if (isInLink_) {
            titles.back() += text;
            saysMore = saysMore || titles.back().size() > kLongestFact;
            return;
        }
        // Numbers and dots stand before and behind titles.
        if (headings_ > 0 ||
            text.find_first_not_of(" \t\r\n.0123456789\xc2\xa0") == std::string_view::npos)
            return;
        saysMore = saysMore || !titles.empty() || text.size() > titleLeft_;
        titleLeft_ -= std::min(titleLeft_, text.size());
    }

    std::vector<std::string> titles;
    bool saysMore = false;
    bool isMarked = false;

private:
    std::size_t titleLeft_ = kLongestTitle;
    bool isInLink_ = false;
    int headings_ = 0;
};

// Headings and contents differ in their signs and line ends.
std::string LettersOf(std::string_view text) {
    std::string letters;
    for (const char character : text)
        if (g_ascii_isalnum(character) || static_cast<unsigned char>(character) >= 128)
            letters += g_ascii_tolower(character);
    return letters;
}

}  // namespace

EpubContents ContentsIn(std::string_view page) {
    const std::string text = DecodeMarkup(page);
    LinksListener listener;
    HtmlReader reader(text, listener);
    while (!listener.saysMore && reader.ReadSome()) {
    }
    if (listener.saysMore || listener.titles.size() < kLeastLinks)
        return {};
    return {0, listener.isMarked, std::move(listener.titles)};
}

EpubContents ContentsOnLastSheet(std::string_view page) {
    for (std::size_t last = page.rfind(kSheetEnd); last != std::string_view::npos && last > 0;
         last = page.rfind(kSheetEnd, last - 1)) {
        const std::string_view sheet = page.substr(last);
        EpubContents contents = ContentsIn(sheet);
        contents.begin = last;
        if (contents.AreThere() || sheet.size() > kLongestEmptySheet)
            return contents;
    }
    return {};
}

bool AreTitlesIn(const std::vector<std::string_view>& texts, const EpubContents& contents) {
    std::set<std::string, std::less<>> missing;
    for (const std::string& title : contents.titles)
        missing.insert(LettersOf(title));
    const std::size_t most = missing.size() / kOneInMissing;
    for (std::string_view text : texts) {
        std::string before;
        while (!text.empty() && missing.size() > most) {
            const std::size_t end = std::min(text.find("\n\n"), text.size());
            // What is longer is no heading; "Chapter 1" and its name may be two.
            std::string letters =
                end > kLongestFact ? std::string() : LettersOf(text.substr(0, end));
            missing.erase(letters);
            missing.erase(before + letters);
            before = std::move(letters);
            text.remove_prefix(std::min(end + 2, text.size()));
        }
    }
    return missing.size() <= most;
}
