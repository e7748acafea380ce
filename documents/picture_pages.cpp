#include "documents/picture_pages.h"

#include <glib.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <utility>

#include "documents/problems.h"
#include "documents/recognised_text.h"
#include "documents/small_texts.h"
#include "documents/text_charset.h"

namespace {

constexpr std::size_t kLargestPictureList = 4U << 20;
constexpr std::size_t kLeastPixels = 400;  // of a page's picture, each way
constexpr std::size_t kMostPictures = 2000;
// Of a page of text; in a photograph some letters are seen, too.
constexpr std::size_t kLeastLetters = 12;
constexpr std::size_t kShortestSeenWord = 3;

// Most of what was recognised stands in words.
bool IsText(const std::string& recognised) {
    std::size_t signs = 0;
    std::size_t inWords = 0;
    std::size_t word = 0;
    const char* const end = recognised.c_str() + recognised.size();
    for (const char* at = recognised.c_str(); at < end; at = g_utf8_next_char(at)) {
        const gunichar sign = g_utf8_get_char(at);
        const bool isOfWord = g_unichar_isalnum(sign) || g_unichar_ismark(sign);
        // A letter that is a syllable or a word of its own, blanks between them or not.
        const bool isWord = isOfWord && g_unichar_iswide(sign);
        word = isOfWord && !isWord ? word + 1 : 0;
        // Scripts without capitals write many words with two signs.
        const std::size_t shortest =
            g_unichar_ismark(sign) || g_unichar_type(sign) == G_UNICODE_OTHER_LETTER
                ? kShortestSeenWord - 1
                : kShortestSeenWord;
        if (isWord)
            ++inWords;
        else if (word == shortest)
            inWords += word;
        else if (word > shortest)
            ++inWords;
        signs += g_unichar_isspace(sign) ? 0 : 1;
    }
    return inWords >= kLeastLetters && inWords * 2 > signs;
}

// What became of the pages of pictures.
struct Told {
    std::vector<std::size_t> read;
    std::vector<std::size_t> wordless;
    std::vector<std::size_t> missing;

    std::string Remark(const std::string& lack) const {
        std::string remark;
        if (!read.empty())
            remark =
                "The text of pages in pictures was recognised, some of its words may be "
                "wrong: " +
                RangesOf(read) + ".";
        const auto add = [&remark](const char* what, const std::vector<std::size_t>& pages) {
            if (!pages.empty())
                remark += (remark.empty() ? "" : " ") + std::string(what) + RangesOf(pages) + ".";
        };
        add("Pages that hold only pictures, no text, are left out: ", wordless);
        add("Pages in pictures that took too long or are damaged are missing: ", missing);
        return lack.empty() ? remark : remark + " " + lack;
    }
};

// The pages of `from` from `next` up to `end`.
std::vector<PdfPage> Taken(std::vector<PdfPage>& from, std::size_t next, std::size_t end) {
    const auto place = [&from](std::size_t at) {
        return std::make_move_iterator(from.begin() + static_cast<std::ptrdiff_t>(at));
    };
    return {place(next), place(end)};
}

}  // namespace

bool PageHoldsWords(const PdfPage& page) {
    return std::ranges::any_of(page, [](const PdfLine& line) {
        return line.text.find_first_not_of(kWhiteSpace) != std::string::npos;
    });
}

std::vector<std::size_t> FindPicturePages(std::string_view bytes, const std::vector<PdfPage>& pages,
                                          const ReadingWatch& watch) {
    if (std::ranges::all_of(pages, PageHoldsWords))
        return {};
    std::string list;
    RunProgram("pdfimages -list /dev/stdin", bytes, watch, [&list](std::string_view part) {
        list += part;
        return list.size() < kLargestPictureList;
    });
    std::set<std::size_t> found;
    std::istringstream lines(list);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::size_t page = 0;
        std::size_t number = 0;
        std::size_t width = 0;
        std::size_t height = 0;
        std::string type;
        if (words >> page >> number >> type >> width >> height;
            words && page >= 1 && page <= pages.size() && width >= kLeastPixels &&
            height >= kLeastPixels && !PageHoldsWords(pages[page - 1]))
            found.insert(page);
    }
    return {found.begin(), found.end()};
}

Document JoinWithPictures(std::string_view bytes, std::vector<PdfPage> pages,
                          const std::vector<std::size_t>& pictures, const ReadingWatch& watch,
                          const DocumentRules& rules, std::chrono::seconds patience) {
    const PageRecogniser recogniser(watch.Anew());
    Told told;
    GrowingPages growing(rules, pages);
    std::size_t next = 0;  // of the pages, from 0 on
    for (const std::size_t page : pictures) {
        if (!recogniser.Lack().empty() || told.read.size() + told.missing.size() >= kMostPictures) {
            told.wordless.push_back(page);
            continue;
        }
        growing.Add(Taken(pages, next, page - 1));
        next = page;
        if (watch.WantsBeginning())
            if (Document beginning = growing.Beginning(); !beginning.text.empty()) {
                beginning.isRecognised = true;
                watch.TellBeginning(beginning);
            }
        const ReadingWatch pageWatch = watch.Anew(patience);
        std::string picture;
        std::string text;
        ProgramOutcome outcome = DrawPdfPage(bytes, page, pageWatch, picture);
        if (outcome == ProgramOutcome::kDone)
            outcome = recogniser.Read(picture, pageWatch, text);
        text = DecodeText(text);
        if (pageWatch.WasStopped())
            return DocumentProblem(pageWatch.Problem());
        std::vector<PdfPage> recognised(1);
        if (outcome != ProgramOutcome::kDone) {
            told.missing.push_back(page);
        } else if (!IsText(text)) {
            told.wordless.push_back(page);
        } else {
            told.read.push_back(page);
            recognised = PdfPagesOfText(text);
            recognised.resize(1);  // nothing stands behind the form feed
        }
        growing.Add(std::move(recognised));
    }
    growing.Add(Taken(pages, next, pages.size()));
    Document document = growing.Take();
    document.isRecognised = !told.read.empty();
    document.remark = told.Remark(recogniser.Lack());
    return document;
}
