// Documents that other programs help to read, with the real programs, and mail.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <vector>

#include "documents/document.h"
#include "documents/growing_document.h"
#include "documents/recognised_text.h"
#include "foundation/files/unique_fd.h"
#include "tests/documents/document_files.h"
#include "tests/support/scratch_folder.h"

namespace {

// "/I Do" on a page draws a picture.
std::string PdfWithPictures(const std::vector<std::vector<std::string>>& pages) {
    std::string pdf = PdfOf(pages);
    const std::string fonts = "/Font<</F1 3 0 R>>";
    for (std::size_t at = pdf.find(fonts); at != std::string::npos; at = pdf.find(fonts, at + 40))
        pdf.insert(at, "/XObject<</I 5 0 R>>");
    const std::string pixels(400 * 50, '\0');
    pdf.insert(pdf.find("trailer"),
               "5 0 obj <</Subtype/Image/Width 400/Height 400/ColorSpace/"
               "DeviceGray/BitsPerComponent 1/Length 20000>> stream\n" +
                   pixels + "\nendstream endobj\n");
    return pdf;
}

using testing::HasSubstr;

TEST(Programs, RtfIsReadWithWhatItShowsAlone) {
    const std::string rtf =
        "{\\rtf1\\ansi\\ansicpg1252{\\fonttbl{\\f0 Times;}}{\\info{\\title The Title}}\\f0 "
        "Caf\\'e9 and \\u8212- \\ldblquote so\\rdblquote .\\par It{\\deleted gone} has{\\v hid} a "
        "word{\\footnote A note.}.\\par "
        "{\\field{\\*\\fldinst{HYPERLINK \"#a\"}}{\\fldrslt{A}}} "
        "{\\field{\\*\\fldinst{HYPERLINK \"#b\"}}{\\*\\fldrslt{link}}}\\par}";
    const Document whole = ReadDocument(rtf);
    // Letters by their numbers, with what stands for them in old readers.
    EXPECT_EQ(ReadDocument(
                  "{\\rtf1\\ansi\\ansicpg1252\\pard So: \\u8220\r\n\"Gr\\u246?\\u223\n?e\\u8221\" "
                  "\\uc0\\u1087 \\u1088\\u1080  {\\uc2\\u233\\'c3\\'a9t\\u233 ??} "
                  "\\u-10179\\u-8704  end.{\\*\\footnote A {\\b note}.}\\par}")
                  .text,
              "So: “Größe” при été 😀 end. (Note:) A note.");
    EXPECT_EQ(whole.title, "The Title");
    EXPECT_THAT(whole.text, testing::StartsWith("Café and — “so”.\nIt has a word"));
    EXPECT_THAT(whole.text, HasSubstr("(Note:) A note"));
    EXPECT_THAT(whole.text, testing::EndsWith("A link"));
    EXPECT_EQ(whole.remark, "");
    DocumentRules without;
    without.notes = false;
    EXPECT_THAT(ReadDocument(rtf, {}, without).text, HasSubstr("has a word.\nA link"));
    const Document cut = ReadDocument(rtf.substr(0, rtf.find("word")));
    EXPECT_THAT(cut.text, HasSubstr("has"));
    EXPECT_THAT(cut.remark, HasSubstr("not complete"));
}

TEST(Programs, MarkdownIsReadByItsStructure) {
    const std::string markdown =
        "---\ntitle: \"A Title\"\n---\n\n# Head\n\nSome *text*[^1] with `code`.\n\n1. one\n2. "
        "two\n\n"
        "| a | b |\n|---|---|\n| 1 | 2 |\n\n<div align=\"center\"><b>bold</b></div>\n\n[^1]: The "
        "note.\n";
    const Document document = ReadDocument(markdown, {}, {}, "README.md");
    EXPECT_EQ(document.title, "A Title");
    ASSERT_EQ(document.headings.size(), 1U);
    EXPECT_THAT(document.text, testing::StartsWith(
                                   "Head\n\nSome text with code.\n\n1. one\n\n2. two\n\na, b\n\n1, "
                                   "2\n\nbold"));
    EXPECT_THAT(document.text, HasSubstr("1. The note."));
    EXPECT_EQ(ReadDocument(markdown, {}, {}, "README.txt").text, markdown);
}

TEST(Programs, DjvuIsReadPageByPage) {
    const ScratchFolder folder;
    folder.Write("blank.pbm", "P1 8 8\n" + std::string(64, '0'));
    folder.Write("text.txt", "(page 0 0 8 8 (line 0 0 8 8 \"Words of a page.\"))\n");
    const std::string in = "cd " + folder.Path() + " && ";
    ASSERT_EQ(std::system((in + "cjb2 blank.pbm a.djvu && cp a.djvu empty.djvu && "
                                "djvused a.djvu -e 'select 1; set-txt text.txt' -s")
                              .c_str()),
              0);
    EXPECT_THAT(LoadDocument((folder / "a.djvu").c_str()).text, HasSubstr("Words of a page."));
    EXPECT_THAT(LoadDocument((folder / "empty.djvu").c_str()).problem, HasSubstr("no text"));
    EXPECT_THAT(ReadDocument("AT&TFORM").problem, HasSubstr("damaged"));
    folder.WriteProgram("djvutxt", "echo Words.; exit 3");
    const ScopedVariable path("PATH", folder.Path().c_str());
    ::signal(SIGCHLD, SIG_IGN);  // as once an engine has been asked for its voices
    EXPECT_THAT(ReadDocument("AT&TFORM").remark, HasSubstr("Only a part"));
    ::signal(SIGCHLD, SIG_DFL);
}

TEST(Programs, OneEndsWithTheProgramThatAskedIt) {
    const ScratchFolder folder;
    const std::string fifo = folder / "fifo";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    folder.WriteProgram("djvutxt", "exec 9>" + fifo + "; exec sleep 600");
    const ScopedVariable path("PATH", (folder.Path() + ":/usr/bin:/bin").c_str());
    const pid_t asks = ::fork();
    if (asks == 0)
        ::_exit(ReadDocument("AT&TFORM").problem.empty() ? 0 : 1);
    const UniqueFd alive(::open(fifo.c_str(), O_RDONLY));
    ::kill(asks, SIGKILL);
    ::waitpid(asks, nullptr, 0);
    constexpr int kPatience = 20000;  // milliseconds
    pollfd end{alive.Get(), POLLIN, 0};
    EXPECT_EQ(::poll(&end, 1, kPatience), 1);
}

// A Palm book of one record, not compressed.
std::string PalmOf(const std::string& text, const char* kind, char encryption) {
    std::string book = "Name" + std::string(56, '\0') + kind + std::string(9, '\0') + "\2";
    for (const std::size_t begin : {std::size_t{94}, std::size_t{110}})
        book += std::string(3, '\0') + static_cast<char>(begin) + std::string(4, '\0');
    const std::string size = {'\0', '\0', '\0', static_cast<char>(text.size())};
    return book + std::string("\0\1\0\0", 4) + size + std::string("\0\1\x10\0\0", 5) + encryption +
           std::string("\0\0", 2) + text;
}

TEST(Programs, MobiAndPalmBooksAreReadUnlessTheyAreProtected) {
    const std::string text = "Words of a book.\n\nMore of it.";
    const Document palm = ReadDocument(PalmOf(text, "TEXtREAd", 0));
    EXPECT_EQ(palm.text, text) << palm.problem;
    EXPECT_EQ(ReadDocument(PalmOf("<p>One<p>two", "BOOKMOBI", 0)).text, "One\n\ntwo");
    for (const char* kind : {"TEXtREAd", "BOOKMOBI"}) {
        EXPECT_THAT(ReadDocument(PalmOf(text, kind, 2)).problem, HasSubstr("(DRM)")) << kind;
        EXPECT_THAT(ReadDocument(PalmOf(text, kind, 0).substr(0, 100)).problem,
                    HasSubstr("damaged"));
    }
}

// A page of grey dots, as scanners make them.
std::string ScannedPdf(const std::string& pgm) {
    std::size_t at = 2;
    const auto number = [&pgm, &at] {
        char* end = nullptr;
        const long value = std::strtol(pgm.c_str() + at, &end, 10);
        at = static_cast<std::size_t>(end - pgm.c_str());
        return std::to_string(value);
    };
    const std::string width = number();
    const std::string height = number();
    number();
    const std::string dots = pgm.substr(at + 1);
    const std::string show = "q 612 0 0 792 0 0 cm /I Do Q";
    return "%PDF-1.4\n1 0 obj <</Type/Catalog/Pages 2 0 R>> endobj\n2 0 obj <</Type/Pages/Kids[4 0 "
           "R 4 0 R]/Count 2>> endobj\n4 0 obj <</Type/Page/Parent 2 0 R/MediaBox[0 0 612 "
           "792]/Contents 5 0 R/Resources<</XObject<</I 6 0 R>>>>>> endobj\n5 0 obj <</Length " +
           std::to_string(show.size()) + ">> stream\n" + show +
           "\nendstream endobj\n6 0 obj <</Type/XObject/Subtype/Image/Width " + width + "/Height " +
           height + "/ColorSpace/DeviceGray/BitsPerComponent 8/Length " +
           std::to_string(dots.size()) + ">> stream\n" + dots +
           "\nendstream endobj\ntrailer <</Root 1 0 R>>\n%%EOF\n";
}

TEST(Programs, ScansAndPicturesAreRead) {
    const ScratchFolder folder;
    folder.Write("a.pdf", PdfOf({{"The quick brown fox", "jumps over the dog."}}));
    const std::string in = "cd " + folder.Path() + " && ";
    ASSERT_EQ(std::system((in + "pdftoppm -r 150 -gray a.pdf a && pdftoppm -r 150 -png a.pdf b && "
                                "mv a*.pgm a.pgm && mv b*.png b.png")
                              .c_str()),
              0);
    const Document picture = LoadDocument((folder / "b.png").c_str());
    EXPECT_THAT(picture.text, HasSubstr("The quick brown fox\njumps over the dog."));
    EXPECT_THAT(picture.remark, HasSubstr("recognised"));
    folder.Write("scan.pdf", ScannedPdf(folder.Read("a.pgm")));
    const Document scan = LoadDocument((folder / "scan.pdf").c_str());
    EXPECT_EQ(scan.pages.size(), 2U) << scan.problem;
    EXPECT_THAT(scan.text.substr(scan.pages.empty() ? 0 : scan.pages.back()),
                HasSubstr("quick brown fox"));
    // The first page does not wait for the second, and stays as it was told.
    std::vector<Document> told;
    const Document grown = LoadGrowingDocument((folder / "scan.pdf").c_str(), {}, {},
                                               [&](const Document& far) { told.push_back(far); });
    EXPECT_EQ(grown.text, scan.text);
    EXPECT_EQ(grown.pages, scan.pages);
    ASSERT_EQ(told.size(), 2U);
    EXPECT_EQ(told.front().pages.size(), 1U);
    for (const Document& beginning : told) {
        EXPECT_THAT(beginning.text, testing::EndsWith("dog."));
        EXPECT_THAT(grown.text, testing::StartsWith(beginning.text));
    }
    EXPECT_THAT(LoadDocument((folder / "scan.pdf").c_str(), [] { return true; }).problem,
                HasSubstr("stopped"));
}

// "pdftoppm" that has five pages, "tesseract" that reads what it gives.
TEST(Programs, PagesOfAScanThatHangOrFailAreToldAndCostNoOthers) {
    const ScratchFolder folder;
    folder.WriteProgram("pdftoppm",
                        "while [ $1 != -f ]; do shift; done\n"
                        "case $2 in 2) sleep 1000 ;; 3) exit 1 ;; 6) exit 99 ;; esac\n"
                        "echo Page $2.\n");
    folder.WriteProgram("tesseract",
                        "[ $1 = --list-langs ] && printf 'List:\\neng\\n' && exit\n"
                        "text=$(cat)\n[ \"$text\" = 'Page 4.' ] && sleep 1000\necho \"$text\"\n");
    const ScopedVariable path("PATH", (folder.Path() + ":" + std::getenv("PATH")).c_str());
    const StopTest isToStop;
    const ReadingWatch watch(isToStop);
    const Document scan = ReadScannedPdf("%PDF-", 5, watch, {}, std::chrono::seconds(3));
    EXPECT_EQ(scan.text, "Page 1.\n\nPage 5.\n") << scan.problem;
    EXPECT_THAT(scan.remark, HasSubstr("missing: 2-4."));
    ASSERT_EQ(scan.pages.size(), 5U) << "each page keeps its number";
    EXPECT_EQ(scan.text.substr(scan.pages[4]), "Page 5.\n");
}

TEST(Programs, ScannedPagesBetweenOthersAreReadInTheirPlaceOrTold) {
    const std::string picture = ") Tj /I Do (";
    const std::string pdf =
        PdfWithPictures({{"Words."}, {picture}, {}, {picture}, {"More."}, {picture}});
    const ScratchFolder folder;
    folder.WriteProgram("pdftoppm",
                        "while [ $1 != -f ]; do shift; done\n[ $2 = 6 ] && exit 1\necho $2\n");
    folder.WriteProgram("tesseract",
                        "[ $1 = --list-langs ] && printf 'List:\\neng\\n' && exit\n"
                        "case $(cat) in 2) echo यह दूसरे पन्ने पर लिखा है। ;; *) echo '~ oe 1 ,' ;; "
                        "esac\n");
    folder.Write("scan.pdf", pdf);
    const std::string programs = std::getenv("PATH");
    const ScopedVariable path("PATH", (folder.Path() + ":" + programs).c_str());
    std::vector<std::string> told;
    const Document document =
        LoadGrowingDocument((folder / "scan.pdf").c_str(), {}, {},
                            [&told](const Document& part) { told.push_back(part.text); });
    EXPECT_EQ(document.text, "Words.\n\nयह दूसरे पन्ने पर लिखा है।\n\nMore.\n");
    ASSERT_EQ(document.pages.size(), 5U);
    EXPECT_EQ(document.text.substr(document.pages[4]), "More.\n");
    EXPECT_TRUE(document.isRecognised);
    EXPECT_EQ(document.remark,
              "The text of pages in pictures was recognised, some of its words may be wrong: 2. "
              "Pages that hold only pictures, no text, are left out: 4. "
              "Pages in pictures that took too long or are damaged are missing: 6.");
    EXPECT_THAT(told, testing::ElementsAre("Words.", "Words.\n\nयह दूसरे पन्ने पर लिखा है।",
                                           "Words.\n\nयह दूसरे पन्ने पर लिखा है।\n\nMore."));
    folder.WriteProgram("tesseract", "exit 1\n");
    const Document lacking = ReadDocument(pdf);
    EXPECT_EQ(lacking.text, "Words.\n\nMore.\n");
    EXPECT_FALSE(lacking.isRecognised);
    EXPECT_EQ(lacking.remark,
              "Pages that hold only pictures, no text, are left out: 2, 4, 6. The program "
              "tesseract knows no language: install the package tesseract-ocr-eng.");
    EXPECT_THAT(ReadDocument(pdf, [] { return true; }).problem, HasSubstr("stopped"));
}

// A picture of many pages whose recognition is ended; the user's languages come first.
TEST(Programs, WhatWasRecognisedOfAPictureIsKept) {
    const ScratchFolder folder;
    folder.WriteProgram("tesseract",
                        "[ $1 = --list-langs ] && printf '%s\\n' List afr amh ara asm aze bel deu "
                        "eng && exit\necho \"$4\"\nkill -KILL $$\n");
    const ScopedVariable path("PATH", (folder.Path() + ":" + std::getenv("PATH")).c_str());
    const ScopedVariable language("LANGUAGE", "de_AT");
    const Document picture = ReadDocument("\x89PNG\r\n\x1a\n");
    EXPECT_THAT(picture.text, HasSubstr("deu+eng+afr+amh+ara+asm")) << picture.problem;
    EXPECT_THAT(picture.remark, HasSubstr("recognised by then is read"));
}

// What is missing is named with its package; Markdown is readable as it stands.
TEST(Programs, WhatIsNotInstalledIsNamed) {
    const std::string path = std::getenv("PATH");
    ::setenv("PATH", "/nowhere", 1);
    const std::string rtf = ReadDocument("{\\rtf1 text}").problem;
    const std::string picture = ReadDocument("\x89PNG\r\n\x1a\n").problem;
    const std::string book = ReadDocument(PalmOf("a", "BOOKMOBI", 0)).problem;
    const Document markdown = ReadDocument("# Head", {}, {}, "a.md");
    ::setenv("PATH", path.c_str(), 1);
    EXPECT_THAT(rtf, HasSubstr("package unrtf"));
    EXPECT_THAT(picture, HasSubstr("package tesseract-ocr"));
    EXPECT_THAT(book, HasSubstr("package libmobi-tools"));
    EXPECT_EQ(markdown.text, "# Head");
    EXPECT_THAT(markdown.remark, HasSubstr("package cmark-gfm"));
}

TEST(Mail, IsReadWithItsHeadAndWithoutItsDoubles) {
    const std::string head =
        "Received: from a\r\n by b\r\nFrom: =?utf-8?q?J=C3=B6rg?= <j@example.org>\r\n"
        "To: Ann <ann@example.org>, b@example.org\r\nSubject: =?utf-8?b?R3LDvMOfZQ==?=\r\n"
        "Date: Mon, 02 Mar 2026 10:20:00 +0100\r\nMIME-Version: 1.0\r\n";
    const std::string shown =
        "Grüße\n\nFrom: Jörg\nTo: Ann, b@example.org\nDate: 2 March 2026, 10:20\n\n";
    const struct {
        const char* what;
        std::string body;
        const char* text;
    } cases[] = {
        {"quoted printable in an old charset",
         "Content-Type: text/plain; charset=iso-8859-1\r\nContent-Transfer-Encoding: "
         "quoted-printable\r\n\r\nCaf=E9 a=\r\nnd tea.\r\n\r\n> said\r\n",
         "Café and tea.\n\n> said"},
        {"the same twice",
         "Content-Type: multipart/alternative; boundary=x\r\n\r\n--x\r\nContent-Type: "
         "text/plain\r\n\r\nPlain.\r\n--x\r\nContent-Type: text/html\r\n\r\n<p>No\r\n--x--\r\n",
         "Plain."},
        {"an invitation",
         "Content-Type: multipart/alternative; boundary=x\r\n\r\n--x\r\nContent-Type: "
         "text/html\r\n\r\n<p>Come.\r\n--x\r\nContent-Type: text/calendar\r\n\r\nBEGIN:"
         "VCALENDAR\r\n--x--\r\n",
         "Come."},
        {"a page and what is attached",
         "Content-Type: multipart/mixed; boundary=x\r\n\r\n--x\r\nContent-Type: text/html\r\n"
         "Content-Transfer-Encoding: base64\r\n\r\nPGgyPkhlYWQ8L2gyPmJvZHk=\r\n--x\r\nContent-"
         "Type: text/plain\r\nContent-Disposition: attachment; filename=\"a b.txt\"\r\n\r\nno\r\n"
         "--x--\r\n",
         "Head\n\nbody\n\nAttached: a b.txt"},
        {"cut off within a part",
         "Content-Type: multipart/mixed; boundary=x\r\n\r\n--x\r\n\r\nBeginning", "Beginning"},
    };
    for (const auto& item : cases) {
        const Document mail = ReadDocument(head + item.body);
        EXPECT_EQ(mail.text, shown + item.text) << item.what << mail.problem;
        EXPECT_EQ(mail.title, "Grüße");
        EXPECT_EQ(mail.author, "Jörg");
    }
    std::string nested;
    for (int i = 0; i < 100000; ++i)
        nested += "Content-Type: multipart/mixed; boundary=a\n\n--a\n";
    EXPECT_THAT(ReadDocument("From: a\nDate: b\n" + nested).problem, HasSubstr("more text"));
    EXPECT_EQ(ReadDocument("From: a\nwe see: b\n\nc").text, "From: a\nwe see: b\n\nc");
}

}  // namespace
