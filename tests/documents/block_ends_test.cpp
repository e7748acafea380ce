// What is read block by block is the same wherever a block ends: a thousand random documents, each
// moved so that another of its bytes is a block's last.
#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>
#include <utility>

#include "documents/document.h"
#include "documents/pdf_pages.h"
#include "tests/documents/document_files.h"
#include "tests/documents/placed_words.h"

namespace {

constexpr std::size_t kBlocks[] = {4096, 16384, 65536};
constexpr int kRandomDocuments = 1000;

class Maker {
public:
    std::size_t Number(std::size_t below) { return random_() % below; }

    template <std::size_t count>
    std::string Some(const std::array<const char*, count>& pieces, int number) {
        std::string text;
        for (int i = 0; i < number; ++i)
            text += pieces[Number(count)] + std::string(" ");
        return text;
    }

private:
    std::mt19937 random_{7};
};

constexpr std::array kPage = {"word",
                              "naïve",
                              "日本",
                              "&amp;",
                              "&eacute;",
                              "a < b",
                              "<p>",
                              "</p>",
                              "<p class='a>b'>",
                              "<script>if (a<b) '</p>'</script>",
                              "<style>p{}</style>",
                              "<!-- <p> -- -->",
                              "<pre>x\n y</pre>",
                              "<h2>head</h2>",
                              "<ul><li>one<li>two</ul>",
                              "<table><tr><td>c<td>d</table>",
                              "<img alt='a picture'>",
                              "<sup>2</sup>",
                              "[1]",
                              "<svg><path d='m'/></svg>",
                              "<title>no</title>"};
constexpr std::array kOdt = {
    "word",
    "naïve",
    "日本",
    "&amp;",
    "&#233;",
    "<text:p>p</text:p>",
    "<text:h text:outline-level='2'>head</text:h>",
    "<text:p>a<text:s text:c='2'/>b<text:note><text:p>n</text:p></text:note></text:p>",
    "<!-- c -->",
    "<![CDATA[d]]>",
    "<text:list><text:list-item><text:p>i</text:p></text:list-item></text:list>"};
constexpr std::array kLayout = {
    "<page width=\"600\">\n",
    "<block xMin=\"5\" xMax=\"90\">\n",
    "<line>\n",
    "</line>\n",
    "<word xMin=\"5\" yMin=\"1\" xMax=\"9\" yMax=\"11\">na&amp;ïve</word>\n",
    "<word xMin=\"9\" yMin=\"1\" xMax=\"19\" yMax=\"11\">divi-</word>\n",
    "<word xMin=\"20\" yMin=\"41\" xMax=\"29\" yMax=\"51\">日本</word>\n"};

// The content's byte number `byte` becomes a block's last one.
std::string Moved(const std::string& before, const std::string& content, std::size_t block,
                  std::size_t byte) {
    const std::string begin = before + "<!--";
    const std::string end = "-->";
    return begin + std::string(block - begin.size() - end.size() - byte - 1, '.') + end + content;
}

TEST(BlockEnds, AreNowhereInPagesAndMarkup) {
    Maker maker;
    for (int i = 0; i < kRandomDocuments; ++i) {
        const bool isPage = i % 2 == 0;
        const std::string begin =
            isPage ? "<html><body>" : OdtXmlOf("").substr(0, OdtXmlOf("").find("</office:text>"));
        const std::string end = isPage ? "" : "</office:text></office:body></office:document>";
        const std::string content = isPage ? maker.Some(kPage, 20) : maker.Some(kOdt, 20);
        const std::size_t block = isPage ? kBlocks[maker.Number(3)] : 65536;
        const std::string moved = Moved(begin, content, block, maker.Number(content.size())) + end;
        EXPECT_EQ(ReadDocument(moved).text, ReadDocument(begin + content + end).text) << content;
    }
}

TEST(BlockEnds, AreNowhereInTheLayoutOfPages) {
    Maker maker;
    const auto text = [](const std::string& layout, std::size_t end) {
        PdfLayout reader(false);
        reader.Feed(std::string_view(layout).substr(0, end));
        reader.Feed(std::string_view(layout).substr(end));
        return JoinPages(reader.TakePages(), {}).text;
    };
    for (int i = 0; i < kRandomDocuments; ++i) {
        const std::string layout = "<page width=\"9\">\n" + maker.Some(kLayout, 12);
        const std::string whole = text(layout, 0);
        for (std::size_t end = 1; end < layout.size(); end += 1 + maker.Number(20))
            ASSERT_EQ(text(layout, end), whole) << end << layout;
    }
}

TEST(BlockEnds, AreNowhereInAWordThatIsLongerThanAnyBlock) {
    std::string word;
    std::string shown;
    for (int i = 0; i < 30000; ++i) {
        word += "é&amp;x";
        shown += "é&x";
    }
    const std::string layout = "<page x>\n<block xMin=\"50\" xMax=\"500\">\n" +
                               WordAt(50, 100, 10, "Before") +
                               "<word xMin=\"90\" xMax=\"900\" yMin=\"100\" yMax=\"110\">" + word +
                               "</word>\n</line>\n</page>\n";
    for (const std::size_t block : {997U, 8192U, 65537U}) {
        PdfLayout reader(false);
        for (std::size_t at = 0; at < layout.size(); at += block)
            reader.Feed(std::string_view(layout).substr(at, block));
        EXPECT_TRUE(JoinPages(reader.TakePages(), {}).text == "Before " + shown + "\n") << block;
    }
}

}  // namespace
