// Pages written as sites of many kinds write them: how much of the article is lost, how much else
// is read. In tests/documents/pages "@12@" stands for twelve words of the article, "~12~" for
// twelve that are not.
#include <gmock/gmock.h>

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <utility>

#include "documents/document.h"

namespace {

constexpr const char* kArticle = "kept";
constexpr const char* kForeign = "gone";

// Each word has a number of its own; texts end with a stop, labels do not.
std::string Written(const std::string& page) {
    std::string written;
    int number = 0;
    for (std::size_t at = 0; at < page.size(); ++at) {
        const std::size_t end = page.find_first_not_of("0123456789", at + 1);
        if ((page[at] != '@' && page[at] != '~') || end == at + 1 || page[end] != page[at]) {
            written += page[at];
            continue;
        }
        const int count = std::atoi(page.c_str() + at + 1);
        for (int i = 1; i <= count; ++i)
            written += (page[at] == '@' ? kArticle : kForeign) + std::to_string(++number) +
                       (count >= 8 && (i == count || i % 12 == 0) ? "." : "") +
                       (i < count ? " " : "");
        at = end;
    }
    return written;
}

std::set<std::string> Words(const std::string& text, const std::string& beginning) {
    std::set<std::string> words;
    for (std::size_t at = text.find(beginning); at != std::string::npos;
         at = text.find(beginning, at + 1)) {
        const std::size_t number = at + beginning.size();
        words.insert(text.substr(at, text.find_first_not_of("0123456789", number) - at));
    }
    return words;
}

std::string ReadPage(const std::filesystem::path& path) {
    std::ifstream stream(path);
    return Written({std::istreambuf_iterator<char>(stream), {}});
}

TEST(Pages, ArticlesArriveWholeAndHardlyAnythingElse) {
    std::size_t foreign = 0;
    std::size_t read = 0;
    for (const auto& file : std::filesystem::directory_iterator(PAGES_FOLDER)) {
        const std::string page = ReadPage(file.path());
        const Document document = ReadDocument(page);
        EXPECT_EQ(Words(document.text, kArticle), Words(page, kArticle)) << file.path();
        const std::size_t more = Words(document.text, kForeign).size();
        const std::size_t all = Words(page, kForeign).size();
        EXPECT_LT(more * 7, all) << file.path();
        // Told is what is not read, as nearly as words can be counted.
        EXPECT_NEAR(static_cast<double>(document.surroundingWords), static_cast<double>(all - more),
                    static_cast<double>(all) / 5 + 4)
            << file.path();
        foreign += more;
        read += Words(page, kArticle).size() + more;
    }
    ASSERT_GT(read, 3000U);
    EXPECT_LE(foreign * 100, read) << foreign << " of " << read;
}

// Not again above each reply.
// They are called as the posts of a thread are, and dated.
TEST(Pages, LettersKeepTheirSignaturesAndManualsTheirParts) {
    std::string page = "<title>Letters</title><h1>Letters</h1>";
    for (const std::string name : {"Ann", "Ben", "Cleo"}) {
        page += "<div class='message letter'><time>5 May</time><p>";
        for (int i = 0; i < 10; ++i)
            page += "The people of the valley built a mill beside the river. ";
        page += "</p><p class=controls>" + name +
                " turned the knob, and waited until the lamp was "
                "lit again.</p><p class=signature>" +
                name + ", Dover</p></div>";
    }
    const std::string text = ReadDocument(page).text;
    for (const std::string name : {"Ann", "Ben", "Cleo"})
        for (const char* const words : {" turned the knob", ", Dover"})
            EXPECT_THAT(text, testing::HasSubstr(name + words));
}

TEST(Pages, TitlesOfThreadsAreReadOnce) {
    const std::pair<const char*, std::string> kThreads[] = {
        {"forum_bbpress.html", "Fixing a dripping tap"},
        {"forum_smf.html", "Moths in the wardrobe"},
        {"forum_vanilla.html", "Fixing a dripping tap"},
        {"forum_vbulletin.html", "Old clock stops at night"}};
    for (const auto& [file, title] : kThreads) {
        const std::string text =
            ReadDocument(ReadPage(std::filesystem::path(PAGES_FOLDER) / file)).text;
        const std::size_t at = text.find(title);
        EXPECT_NE(at, std::string::npos) << file;
        EXPECT_EQ(text.rfind(title), at) << file;
    }
}

}  // namespace
