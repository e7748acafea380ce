#include "documents/document.h"

#include <gmock/gmock.h>

#include <ctime>
#include <string>

#include "documents/text_charset.h"
#include "tests/documents/document_files.h"

namespace {

using std::string_literals::operator""s;
using testing::HasSubstr;

const std::string kContainer =
    "<container><rootfiles><rootfile full-path='OEBPS/book.opf'/></rootfiles></container>";

std::string EpubOf(const ZipFiles& more) {
    ZipFiles files = {
        {"mimetype", "application/epub+zip"},
        {"OEBPS/text/two.xhtml",
         "<?xml version='1.0'?><html><body><p>Two&nbsp;…</p></body></html>"},
        {"META-INF/container.xml", kContainer},
        {"OEBPS/book.opf",
         "<package><manifest><item id='a' href='text/one%20x.xhtml' "
         "media-type='application/xhtml+xml'/><item id='b' href='./text/two.xhtml' "
         "media-type='application/xhtml+xml'/><item id='n' href='nav.xhtml' properties='nav' "
         "media-type='application/xhtml+xml'/></manifest><spine><itemref idref='n'/>"
         "<itemref idref='a'/><itemref idref='b'/><itemref idref='b' linear='no'/></spine>"
         "</package>"},
        {"OEBPS/nav.xhtml", "<html><body>Contents</body></html>"},
        {"OEBPS/text/one x.xhtml",
         "<html><head><title>T</title></head><body><h1>One</h1>text</body></html>"},
    };
    files.insert(files.end(), more.begin(), more.end());
    return ZipOf(files);
}

TEST(Documents, TextIsReadAndMarkupIsNot) {
    const struct {
        const char* what;
        std::string bytes;
        std::string text;
    } cases[] = {
        {"plain text stays as it is", "a <b>  c\n\n\nd exam-\nple", "a <b>  c\n\n\nd exam-\nple"},
        {"page",
         " <!DOCTYPE html><html><head><title>x</title><style>p{}</style></head><body class='p'>"
         "<script>var a='<p>no';</script><h1>Head</h1>some<i> text</i>\n &amp; <b>m</b>ore<br>line"
         "<p>one<p>two <img src='x' alt='a cat'><!-- no --><p hidden>no</p><ul><li>i<li>j</ul>"
         "<pre>a\n b</pre><table><tr><th>n<th>m:<tr><td>1<td>2</table><select><option>no</select>"
         "exam\u00AD\n ple x<sup>2</sup> 10<sup>\u22126th</sup><a role=doc-noteref>1</a>",
         "Head\n\nsome text & more\nline\n\none\n\ntwo Picture: a cat\n\ni\n\nj\n\na\nb\n\nn, "
         "m:\n\n1, 2\n\n"
         "example x² 10⁻⁶th"},
        {"page in UTF-16", "\xff\xfe<\0p\0>\0\xe9\0"s, "é"},
        {"page in none", "<html><body>caf\xe9 &eacute; &#x1F600;", "café é 😀"},
        {"XHTML", "<?xml version='1.0'?><!DOCTYPE html><html><body>a</body></html>", "a"},
        {"DOCX",
         DocxOf("<w:p><w:pPr><w:tabs><w:tab/></w:tabs></w:pPr><w:r><w:t>Head</w:t></w:r></w:p>"
                "<w:p><w:r><w:t>one </w:t></w:r><w:r><w:t>two</w:t><w:br/><w:t>x</w:t></w:r>"
                "<w:del><w:r><w:delText>no</w:delText></w:r></w:del><w:r><w:rPr><w:vanish/></w:rPr>"
                "<w:t>no</w:t></w:r><w:r><w:rPr><w:vertAlign "
                "w:val='superscript'/></w:rPr><w:t>-2</w:t></w:r><w:r><w:instrText>no</"
                "w:instrText></w:r>"
                "<mc:Fallback><w:t>no</w:t></mc:Fallback></w:p><w:tbl><w:tr><w:tc><w:p><w:r><w:t>a"
                "</w:t></w:r></w:p></w:tc><w:tc><w:p><w:r><w:t>b</w:t></w:r></w:p></w:tc></w:tr>"
                "</w:tbl>"),
         "Head\n\none two\nx⁻²\n\na, b"},
        {"ODT",
         ZipOf({{"mimetype", "application/vnd.oasis.opendocument.text"},
                {"content.xml",
                 OdtXmlOf("<text:h>Head</text:h><text:p>a<text:s/>b<text:line-break/>c<text:note>"
                          "<text:p>no</text:p></text:note></text:p>no<text:tracked-changes><text:p>"
                          "no</text:p></text:tracked-changes><table:table><table:table-row>"
                          "<table:table-cell><text:p>1</text:p></table:table-cell>"
                          "<table:table-cell><text:p>2</text:p></table:table-cell>"
                          "</table:table-row></table:table>")}}),
         "Head\n\na b\nc\n\nNote: no\n\n1, 2"},
        {"flat ODT", OdtXmlOf("<text:p>&lt;one&gt;</text:p><text:p>two</text:p>"), "<one>\n\ntwo"},
        {"EPUB", EpubOf({}), "One\n\ntext\n\nTwo\u00A0…"},
        {"PDF", PdfOf({{"It was a divi-", "ded word and goes", "12"}, {"on here. End."}}),
         "It was a divided word and goes\n12\n\non here. End.\n"},
    };
    for (const auto& item : cases) {
        const Document document = ReadDocument(item.bytes);
        EXPECT_EQ(document.text, item.text) << item.what;
        EXPECT_EQ(document.problem, "") << item.what;
    }
}

TEST(Documents, WhateverATextFileHoldsCanBeShown) {
    const struct {
        const char* what;
        std::string bytes;
        std::string shown;
    } cases[] = {
        {"empty", "", ""},
        {"ASCII with both line ends", "one\r\ntwo\n", "one\r\ntwo\n"},
        {"UTF-8 with and without mark", "\xef\xbb\xbf“café” 😀", "“café” 😀"},
        {"UTF-16 little-endian", "\xff\xfeh\0\xe9\0\x3d\xd8\x00\xde\x3d\xd8"s, "hé😀\uFFFD"},
        {"UTF-16 big-endian, half a unit", "\xfe\xff\0h\0i\0"s, "hi\uFFFD"},
        {"UTF-16 without mark", "h\0e\0l\0l\0o\0\xe9\0"s, "helloé"},
        {"UTF-16 without mark, big-endian", "\0h\0e\0l\0l\0o\x20\x14"s, "hello—"},
        {"byte order mark alone", "\xff\xfe"s, ""},
        {"Windows-1252", "caf\xe9 \x93x\x94 \x80\xe9\x94", "café “x” €é”"},
        {"Windows-1252 with a pair that is UTF-8", "\xe9\xe8\xe0\xfc\xf6\xdf\xe9\xe9\xe9\xe9\xe9 é",
         "éèàüößééééé Ã©"},
        {"bytes that Windows-1252 lacks",
         "a\x81"
         "b\xff",
         "a\uFFFD"
         "bÿ"},
        {"NUL bytes", "a\0b, \0“it”"s, "a b,  “it”"},
        {"Cyrillic in Windows-1251",
         "\xd1\xfa\xe5\xf8\xfc \xe5\xf9\xb8 \xfd\xf2\xe8\xf5 \xec\xff\xe3\xea\xe8\xf5 "
         "\xf4\xf0\xe0\xed\xf6\xf3\xe7\xf1\xea\xe8\xf5 \xe1\xf3\xeb\xee\xea",
         "Съешь ещё этих мягких французских булок"},
        {"Shift-JIS",
         "\x90\xcc\x81\x58\x82\xa0\x82\xe9\x82\xc6\x82\xb1\x82\xeb\x82\xc9\x82\xa8\x82\xb6\x82\xa2"
         "\x82\xb3\x82\xf1\x82\xc6\x82\xa8\x82\xce\x82\xa0\x82\xb3\x82\xf1\x82\xaa\x8f\x5a\x82\xf1"
         "\x82\xc5\x82\xa2\x82\xdc\x82\xb5\x82\xbd\x81\x42",
         "昔々あるところにおじいさんとおばあさんが住んでいました。"},
        {"Latin-2",
         "\xb9\xe8\xf8 P\xf8\xedli\xb9 \xbelu\xbb\xf2u\xe8k\xfd k\xf9\xf2 \xfap\xecl "
         "\xef\xe1"
         "belsk\xe9 \xf3"
         "dy. Dnes je v Praze hezky a v\xb9"
         "ichni jdou ven.",
         "ščř Příliš žluťňučký kůň úpěl ďábelské ódy. Dnes je v Praze hezky a všichni jdou ven."},
        {"UTF-8 whose end is cut off", "“It’s a naïve caf\xc3", "“It’s a naïve caf\uFFFD"},
        {"UTF-8 with foreign bytes", "“It’s” \xe9t\xe9 \x93too\x94 \xe2\x80 x",
         "“It’s” été “too” \uFFFD x"},
    };
    for (const auto& item : cases)
        EXPECT_EQ(item.shown, DecodeText(item.bytes)) << item.what;
}

TEST(Documents, WhatCannotBeReadSaysSo) {
    const std::string docx = DocxOf("<w:p><w:r><w:t>text</w:t></w:r></w:p>");
    const std::string laughs =
        "<!DOCTYPE x [<!ENTITY a 'ha'><!ENTITY b '&a;&a;&a;'><!ENTITY f SYSTEM '/etc/passwd'>]>";
    const struct {
        const char* what;
        std::string bytes;
        const char* problem;
    } cases[] = {
        {"cut archive", docx.substr(0, docx.size() / 2), "damaged"},
        {"archive of something else", ZipOf({{"a.txt", "text"}}), "holds no document"},
        {"broken XML", DocxOf("<w:p>"), "damaged"},
        {"its own entities", DocxOf("<w:p><w:r><w:t>&b;&f;</w:t></w:r></w:p>", laughs), "damaged"},
        {"book without chapters", ZipOf({{"META-INF/container.xml", kContainer}}), "damaged"},
        {"protected book",
         EpubOf({{"META-INF/encryption.xml",
                  "<e><EncryptedData><CipherData><CipherReference URI='OEBPS/text/two.xhtml'/>"
                  "</CipherData></EncryptedData></e>"}}),
         "protected"},
        {"protected ODT",
         ZipOf({{"META-INF/manifest.xml", "<m:encryption-data/>"}, {"content.xml", "\x01\x02"}}),
         "protected"},
        {"more text than a book",
         DocxOf("<w:p><w:r><w:t>" + std::string(70 << 20, 'a') + "</w:t></w:r></w:p>"),
         "more text"},
        {"PDF without text", PdfOf({{}}), "no text"},
        {"cut PDF", PdfOf({{"text"}}).substr(0, 60), "damaged"},
        {"blank text", " \n\r\n", "no text"},
        {"page without words", "<html><body><img src=x>", "no text"},
        {"picture", "\x89PNG\r\n\x1a\n", "picture"},
        {"bitmap", "BM\x36\x30\0\0\0\0\0\0\x36"s, "picture"},
        {"newer picture", "RIFF\1\0\0\0WEBPVP8 "s, "picture"},
        {"M4A",
         "\0\0\0\x20"
         "ftypM4A "s,
         "sound"},
        {"tar", std::string(257, 'a') + "ustar", "packed"},
        {"MOBI", std::string(60, '\1') + "BOOKMOBI", "damaged"},
        {"data of a program", "\1\2\3\0\0\0abc\4\5\6\0\0xyz\xff\xfe"s, "data of a program"},
        {"old Office", "\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1", "Office"},
        {"sound", "RIFF\1\0\0\0WAVEfmt "s, "sound"},
    };
    for (const auto& item : cases) {
        const Document document = ReadDocument(item.bytes);
        EXPECT_THAT(document.problem, HasSubstr(item.problem)) << item.what;
        EXPECT_EQ(document.text, "") << item.what;
    }
    EXPECT_THAT(LoadDocument("/tmp/no such file").problem, HasSubstr("No such file"));
    EXPECT_THAT(LoadDocument("/tmp").problem, HasSubstr("folder"));
    EXPECT_THAT(LoadDocument("/dev/null").problem, HasSubstr("not a regular"));
}

TEST(Documents, HostileMarkupEndsInTime) {
    std::string nested = "<html>";
    std::string unclosed = nested;
    std::string attributes = "<html><p ";
    for (int i = 0; i < 200000; ++i) {
        nested += i < 100000 ? "<div>" : "</i>";
        unclosed += "</i><p ";
        attributes += "a" + std::to_string(i) + "=b ";
    }
    // Of the processor: others may be busy, too.
    const std::clock_t start = std::clock();
    EXPECT_EQ(ReadDocument(nested + "a").text, "a");
    EXPECT_EQ(ReadDocument(attributes + ">a").text, "a");
    std::string noEnds = "<html>a";
    for (int i = 0; i < 500000; ++i)
        noEnds += "<title><textarea>\"";
    EXPECT_EQ(ReadDocument(noEnds).problem, "");
    EXPECT_THAT(ReadDocument(DocxOf(attributes + ">")).problem, HasSubstr("damaged"));
    EXPECT_EQ(ReadDocument(unclosed).problem, "");
    EXPECT_EQ(ReadDocument("<html>a<!--" + std::string(20 << 20, '-')).text, "a");
    EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 30);
    for (const std::string& bytes : {nested, DocxOf("<w:p/>"), EpubOf({}), OdtXmlOf("")})
        EXPECT_THAT(ReadDocument(bytes, [] { return true; }).problem, HasSubstr("stopped"));
}

}  // namespace
