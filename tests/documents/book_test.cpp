// EPUB books and others, whole although their makers erred.
#include <gmock/gmock.h>

#include <clocale>
#include <string>

#include "documents/document.h"
#include "tests/documents/document_files.h"

namespace {

using testing::HasSubstr;

// A book of these pages, each addressed and named as said.
struct Page {
    std::string address;
    std::string name;
    std::string text;
};

std::string BookOf(const std::vector<Page>& pages, const ZipFiles& more = {}) {
    std::string manifest;
    std::string spine;
    ZipFiles files = {{"META-INF/container.xml",
                       "<container><rootfile full-path='OEBPS/book.opf'/></container>"}};
    for (std::size_t i = 0; i < pages.size(); ++i) {
        const std::string id = "c" + std::to_string(i);
        manifest += "<item id='" + id + "' href='" + pages[i].address +
                    "' media-type='application/xhtml+xml'/>";
        spine += "<itemref idref='" + id + "'/>";
        if (!pages[i].name.empty())
            files.emplace_back(pages[i].name, "<html><body>" + pages[i].text + "</body></html>");
    }
    files.emplace_back(
        "OEBPS/book.opf",
        "<package><metadata><dc:title>Book &amp; Co</dc:title><dc:creator>Ann</dc:creator>"
        "<dc:language>de-AT</dc:language><meta name='cover' content='pic'/></metadata><manifest>"
        "<item id='pic' href='cover.png' media-type='image/png'/>" +
            manifest +
            "<item id='n' href='nav.xhtml' properties='nav' media-type='application/xhtml+xml'/>"
            "</manifest><spine>" +
            spine + "</spine></package>");
    files.insert(files.end(), more.begin(), more.end());
    return ZipOf(files);
}

TEST(Book, ChaptersAreFoundWhateverTheirNames) {
    const std::string book = BookOf({{"caf%C3%A9.xhtml", "OEBPS/café.xhtml", "one"},
                                     {"Кот.xhtml", "OEBPS/Кот.xhtml", "two"},
                                     {"a&amp;b.xhtml", "OEBPS/a&b.xhtml", "three"},
                                     {"x/.././c.xhtml", "OEBPS/c.xhtml", "four"},
                                     {"../OEBPS/d.xhtml#top", "OEBPS/d.xhtml", "five"},
                                     {"Text/E.xhtml", "OEBPS/text/e.XHTML", "six"},
                                     {"100%.xhtml", "OEBPS/100%.xhtml", "seven"}});
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* locale : {"C", "C.UTF-8"}) {
        std::setlocale(LC_ALL, locale);
        const Document document = ReadDocument(book);
        EXPECT_EQ(document.text, "one\n\ntwo\n\nthree\n\nfour\n\nfive\n\nsix\n\nseven") << locale;
        EXPECT_EQ(document.remark, "") << locale;
    }
    std::setlocale(LC_ALL, before.c_str());
}

TEST(Book, WhatIsMissingOrDamagedIsToldAndTheRestIsRead) {
    const Document missing =
        ReadDocument(BookOf({{"a.xhtml", "OEBPS/a.xhtml", "one"}, {"gone.xhtml", "", ""}}));
    EXPECT_EQ(missing.text, "one");
    EXPECT_THAT(missing.remark, HasSubstr("\"gone.xhtml\""));

    // One wrong byte of a chapter's checksum, then of its packed text.
    std::string book = BookOf({{"a.xhtml", "OEBPS/a.xhtml", "one"},
                               {"b.xhtml", "OEBPS/b.xhtml", "two"},
                               {"c.xhtml", "OEBPS/c.xhtml", "three"}});
    const std::size_t packed = book.find("OEBPS/b.xhtml") + std::string("OEBPS/b.xhtml").size();
    const std::size_t checksum = book.find("PK\7\10", packed) + 4;
    ASSERT_LT(checksum, book.find("OEBPS/c.xhtml"));
    for (const std::size_t at : {checksum, book.rfind("PK\1\2", book.rfind("OEBPS/b.xhtml")) + 16})
        book[at] = static_cast<char>(book[at] ^ 1);
    Document document = ReadDocument(book);
    EXPECT_EQ(document.text, "one\n\ntwo\n\nthree");
    EXPECT_THAT(document.remark, HasSubstr("OEBPS/b.xhtml"));

    for (std::size_t at = packed + 12; at < packed + 24; ++at)
        book[at] = '\xff';
    document = ReadDocument(book);
    EXPECT_THAT(document.text, testing::AllOf(HasSubstr("one"), HasSubstr("three")));
    EXPECT_THAT(document.remark, HasSubstr("OEBPS/b.xhtml"));
}

TEST(Book, FactsChaptersAndHeadingsAreKept) {
    const std::string nav =
        "<html><body><nav><ol><li><a href='a.xhtml'>The  First</a><li><a "
        "href='b.xhtml#x'>Second</a>"
        "</ol></nav></body></html>";
    const Document book = ReadDocument(
        BookOf({{"a.xhtml", "OEBPS/a.xhtml", "<h1>Head</h1>one"},
                {"more.xhtml", "OEBPS/more.xhtml", "goes on"},
                {"b.xhtml", "OEBPS/b.xhtml", "<p xml:lang='fr'>deux</p><h2>Last</h2>"}},
               {{"OEBPS/nav.xhtml", nav}, {"OEBPS/cover.png", "PNG"}}));
    EXPECT_EQ(book.text, "Head\n\none\n\ngoes on\n\ndeux\n\nLast");
    EXPECT_EQ(book.title + "|" + book.author + "|" + book.cover, "Book & Co|Ann|PNG");
    ASSERT_EQ(book.chapters.size(), 2U);
    EXPECT_EQ(book.chapters[0].title, "The First");
    EXPECT_EQ(book.text.substr(book.chapters[1].begin, 4), "deux");
    ASSERT_EQ(book.headings.size(), 2U);
    EXPECT_EQ(book.text.substr(book.headings[1].begin), "Last");
    std::string languages;
    for (const DocumentLanguage& language : book.languages)
        languages += language.tag + ":" + book.text.substr(language.begin, 4) + ";";
    EXPECT_EQ(languages, "de-AT:Head;fr:deux;de-AT:Last;");
}

TEST(Book, ContentsAreLeftOutWhereTheySaySoOrRepeatHeadingsBehindTheLastChapter) {
    const std::string links =
        "<h1>Contents</h1><ol><li>1. <a href='a.xhtml'>Tides</a> ... 3<li><a "
        "href='a.xhtml#b'>Oars</a><li><a href='a.xhtml#c'>Sails</a></ol>";
    const auto textOf = [](const std::string& first, const std::string& second) {
        return ReadDocument(BookOf({{"a.xhtml", "OEBPS/a.xhtml", first},
                                    {"b.xhtml", "OEBPS/b.xhtml", second}}))
            .text;
    };
    const std::string chapters = "<h1>Tides</h1><p>Oars</p><p>Sails!</p>";
    EXPECT_EQ(textOf(chapters, links), "Tides\n\nOars\n\nSails!");
    EXPECT_THAT(textOf("<h1>Tides</h1>Oars and sails.", links), HasSubstr("Tides ... 3\n\n2. Oars"))
        << "an index";
    EXPECT_EQ(textOf(chapters + "<h2>Oars</h2>",
                     "<a href='#'>Tides</a><a href='#'>Oars. Sails</a><a href='#'>Oars</a>"),
              "Tides\n\nOars\n\nSails!\n\nOars");
    EXPECT_EQ(textOf("<nav epub:type='toc'>" + links + "</nav>", "<h1>Tides</h1>"), "Tides");
    EXPECT_THAT(textOf(links, "<h1>Tides</h1>"), HasSubstr("Oars")) << "the author may want it";
    EXPECT_THAT(textOf(links, ""), HasSubstr("Oars"));
    EXPECT_THAT(textOf("<h1>Tides</h1>", links + "are told of"), HasSubstr("are told of"));
    EXPECT_THAT(textOf("One",
                       "<a href='http://a'>One</a> <a href='http://b'>Two</a> <a "
                       "href='http://c'>Three</a>"),
                HasSubstr("Three"));
    const std::string sheet =
        "<mbp:pagebreak/><p><b>Contents</b></p><p><a href='#1'>Tides</a></p><p><a "
        "href='#2'>Oars</a></p><a href='#3'>Sails</a><mbp:pagebreak/>";
    EXPECT_EQ(textOf(chapters + sheet, ""), "Tides\n\nOars\n\nSails!");
    EXPECT_THAT(textOf("Tides and oars." + sheet, ""), HasSubstr("Contents\n\nTides\n\nOars"));
    const Document page = ReadDocument(ZipOf(
        {{"index.html", "<html><body><h1>One</h1>words</body></html>"},
         {"metadata.opf", "<package><metadata><dc:title>Tale</dc:title></metadata></package>"}}));
    EXPECT_EQ(page.text + "|" + page.title, "One\n\nwords|Tale");
}

TEST(Book, CopyProtectionIsToldByName) {
    const Page page{"a.xhtml", "OEBPS/a.xhtml", "one"};
    const std::string encryption = "<e><CipherReference URI='OEBPS/a.xhtml'/></e>";
    EXPECT_THAT(ReadDocument(BookOf({page}, {{"META-INF/encryption.xml", encryption},
                                             {"META-INF/rights.xml", "<r/>"}}))
                    .problem,
                HasSubstr("Adobe ADEPT"));
}

TEST(Book, FictionBookIsReadWithItsNotes) {
    const std::string xml =
        "<?xml version='1.0' encoding='windows-1251'?><FictionBook><description><title-info>"
        "<author><first-name>Ann</first-name><last-name>O</last-name></author><book-title>T"
        "</book-title><lang>ru</lang></title-info></description><body><title><p>One</p><p>Two</p>"
        "</title><section><title><p>\xca\xee\xf2</p></title><p>a<a type='note' l:href='#n'>1</a> b"
        "</p><p>c</p></section></body><body name='notes'><section><p>note</p></section></body>"
        "<binary>no</binary></FictionBook>";
    const Document book = ReadDocument(xml);
    EXPECT_EQ(book.text, "One\nTwo\n\nКот\n\na b\n\nc\n\nnote");
    EXPECT_EQ(book.title + book.author, "TAnn O");
    EXPECT_EQ(book.headings.size(), 2U);
    EXPECT_EQ(book.languages.at(0).tag, "ru");
}

}  // namespace
