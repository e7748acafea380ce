// Web pages: nothing of them lost, nothing garbled.
#include <gmock/gmock.h>

#include <string>

#include "documents/document.h"

namespace {

using testing::HasSubstr;

std::string Read(const std::string& page, const DocumentRules& rules = {}) {
    const Document document = ReadDocument(page, {}, rules);
    return document.problem.empty() ? document.text : "PROBLEM: " + document.problem;
}

TEST(Html, NoMarkupSwallowsTheTextBehindIt) {
    const struct {
        const char* page;
        const char* text;
    } cases[] = {
        {"<html><head><title>t</title><p>no end of head<p>two", "no end of head\n\ntwo"},
        {"<html><head>text at once", "text at once"},
        {"<html><body>a <embed src=x> b <wbr aria-hidden=true>c <input hidden>d", "a b c d"},
        {"<html><body>a<script>if (a<b) '</p>'</script>b<style>p<q{}</style>c", "abc"},
        {"<html><body><pre>a < b && c<5\n x</pre>d <3 e", "a < b && c<5\nx\n\nd <3 e"},
        {"<html><body><img src=\"data:image/png;base64,A=\n B=\n > C=\">a", "a"},
        {"<html><body>a<p title='it>\"'>b<p title=\"open>c", "a\n\nb\n\nc"},
        {"<html><head><title>no end<body>a", "a"},
        {"<html><body>a<!-- > -->b<!-->c<!x>d</ x>e", "abcde"},
        {"<html><body><select><option>no</select>a<table><tr><td>b<td>c<tr><td>d</table>e",
         "a\n\nb, c\n\nd\n\ne"},
        {"<html><body><ul hidden><li>no<li>no</ul>a<b><p>b</b>c<i>d</p>e", "a\n\nbcd\n\ne"},
        {"<?xml version='1.0'?><html><body><script src='x'/><a id='1'/>a<title/>b</body></html>",
         "ab"},
        {"<html><body>a<svg><path/><title>no</title><style/></svg>b", "ab"},
        {"<html><body>a &ampb &eacute;&eacute &#233; &#x2014; &hellip; &lpar;&nosuch; &#150;",
         "a &b éé é — … (&nosuch; –"},
        {"<html><body>a <a href='?a=1&copy=2&amp;b'>b</a> <img alt='x &amp; y'>",
         "a b Picture: x & y"},
        {"<html><body>figure.<img alt='Figure one'>b <img alt='😀'><img alt='a.png'>",
         "figure. Picture: Figure one b 😀"},
        {"<html><body><img alt='A  cat'><p>A cat</p><p>A cat</p><img alt='Dogs'><p>Dogs run</p>"
         "<img alt='b'><h2>b</h2><img alt='fig: c.png'><figure><img alt='d'>d</figure>",
         "Picture: A cat\n\nA cat\n\nPicture: Dogs\n\nDogs run\n\nPicture: b\n\nb\n\n"
         "Picture: d"},
        {"<html><body><p><a class=sdfootnotesym href='#a'>1</a>The note", "1 The note"},
        {"<html><body>a<div style='display: none'>no</div>b<a href='x=", "a\n\nb"},
    };
    for (const auto& item : cases)
        EXPECT_EQ(Read(item.page), item.text) << item.page;
}

// A parser that takes pages in blocks must not know where they end.
TEST(Html, TextIsTheSameWhereverABlockEnds) {
    const std::string parts = "<p>one<script>var a = '<b>';</script><style>a{}</style>two</p>";
    for (std::size_t shift = 0; shift < parts.size(); ++shift)
        EXPECT_EQ(Read("<html><body><!--" + std::string(16384 - 40 + shift, '-') + "-->" + parts),
                  "onetwo");
}

TEST(Html, MarksThatPointToNotesAreNotRead) {
    const struct {
        const char* body;
        const char* text;
        const char* withMarks;
    } cases[] = {
        {"The war<sup>2</sup> began.<sup>3</sup> So", "The war began. So",
         "The war[2] began.[3] So"},
        {"a<sup>[<a href='#n'>12</a>]</sup> b<sup id=c><a href='#c'>[note 3]</a></sup>.", "a b.",
         "a[12] b[note 3]."},
        {"all[1][2], of[citation needed] it [3] (so[4]).", "all, of it [3] (so).",
         "all[1][2], of[citation needed] it [3] (so[4])."},
        {"5 m<sup>2</sup>, 10<sup>-6</sup>, sin<sup>2</sup> x, 4<sup>th</sup>",
         "5 m², 10⁻⁶, sin² x, 4th", "5 m², 10⁻⁶, sin² x, 4th"},
        {"12 Meter<sup>2</sup>, a meter<sup>2</sup>, 3 feet<sup>7</sup>.",
         "12 Meter², a meter, 3 feet.", "12 Meter², a meter[2], 3 feet[7]."},
        {"x<a epub:type='noteref' href='n.html#1'>1</a>y<a role='doc-noteref'><sup>1</sup></a>",
         "xy", "x1y[1]"},
        {"a<sup>Note<h2>b</h2><p>c<sup>4</sup><p>d", "aNote\n\nb\n\nc⁴\n\nd",
         "aNote\n\nb\n\nc⁴\n\nd"},
        {"<pre>array[1] b[a]</pre>", "array[1] b[a]", "array[1] b[a]"},
        {"<tt>argv[0]</tt>. <code>tty</code>[1] -x[1234]", "argv[0]. tty -x[1234]",
         "argv[0]. tty[1] -x[1234]"},
    };
    DocumentRules rules;
    rules.referenceMarks = true;
    for (const auto& item : cases) {
        const std::string page = std::string("<html><body>") + item.body;
        EXPECT_EQ(Read(page), item.text);
        EXPECT_EQ(Read(page, rules), item.withMarks);
    }
    std::string accents;
    for (int i = 0; i < 2500; ++i)
        accents += "é";
    EXPECT_EQ(Read("<html><body>" + ("b<sup>" + accents) + "</sup> c"), "b" + accents + " c");
}

TEST(Html, ListsKeepTheirNumbersAndFormulasAreReadOnce) {
    std::string many;
    for (int i = 0; i < 40; ++i)
        many += "é";
    const struct {
        std::string body;
        std::string text;
    } cases[] = {
        {"<ol><li><p>a</p><ol type=a start=2><li>b<li>c</ol><li value=7>d</ol><ul><li>e</ul>",
         "1. a\n\nb. b\n\nc. c\n\n7. d\n\ne"},
        {"<ol reversed start=2><li>a<li>b</ol><ol style='list-style: none'><li>c</ol>",
         "2. a\n\n1. b\n\nc"},
        {"It is <span class='mathml' style='display:none'><math alttext='no'><semantics><mrow><mi>E"
         "</mi><mo>=</mo><mi>m</mi><msup><mi>c</mi><mn>2</mn></msup></mrow><annotation>no"
         "</annotation></semantics></math></span><img alt='no' aria-hidden='true'>.",
         "It is E = m c²."},
        {"<math><mfrac><mrow><mi>a</mi><mo>+</mo><mn>1</mn></mrow><msqrt><mi>x</mi></msqrt></mfrac>"
         "<mo>⁡</mo><msup><mi>e</mi><mrow><mo>−</mo><mi>i</mi></mrow></msup></math>",
         "(a + 1)/√x e^−i"},
        {"<math><mtable><mtr><mtd><mn>1</mn></mtd></mtr></mtable></math>", "formula"},
        // No word is lost and no character cut, however long a token is.
        {"<math><mtext>a" + many + "</mtext></math>", "a" + many},
        {"<math><mtext>" + std::string(2000, 'a') + "</mtext></math>", "formula"},
    };
    for (const auto& item : cases)
        EXPECT_EQ(Read(std::string("<html><body>") + item.body), item.text);
}

TEST(Html, HeadingsLanguagesAndTitleAreKept) {
    const Document page = ReadDocument(
        "<html lang=en><head><title> A\n page</title><meta name=author content='Ann O.'></head>"
        "<body>in<h1><i>First</i></h1><p>a <q lang=de>ja</q> b<h3>Second</h3>c<h2></h2>");
    EXPECT_EQ(page.text, "in\n\nFirst\n\na “ja” b\n\nSecond\n\nc");
    EXPECT_EQ(page.title, "A page");
    EXPECT_EQ(page.author, "Ann O.");
    std::string headings;
    for (const DocumentHeading& heading : page.headings)
        headings += std::to_string(heading.level) +
                    page.text.substr(heading.begin, heading.end - heading.begin) + ";";
    EXPECT_EQ(headings, "1First;3Second;");
    std::string languages;
    for (const DocumentLanguage& language : page.languages)
        languages += language.tag + page.text.substr(language.begin, 2) + ";";
    EXPECT_EQ(languages, "enin;deja;enb\n;");
}

TEST(Html, WhatStylesPutIntoLinesIsNotGluedTogether) {
    const std::string head =
        "<style>/* em{display:block} */ @import 'a'; @media print{b{display:block}} .v, span.w "
        "{color:red; display : block !important} i.n{display:inline-flex} .v .u{display:block}"
        "</style>";
    const struct {
        const char* page;
        const char* text;
    } cases[] = {
        {"<p>a<span class='x v'>b</span><span class=w>c</span><a class=w>d</a>e", "a\nb\nc\nde"},
        {"<p>a<em>b</em><b>c</b><u class=u>d</u>", "abcd"},
        {"<h1><span class=d-block>One</span><span style='Top:1;display:block'>Two</span></h1>a",
         "One\nTwo\n\na"},
        {"<div class='flex m-2'><a>b</a><a>c</a></div><i class=n>d<b>e</b><b>f</b></i>g",
         "b c\n\nd e f g"},
        {"<table><tr><td class=flex>a<td class=flex>b</table>", "a, b"},
        {"<p>a<span class=v style='display:inline'>b</span>c", "abc"},
    };
    for (const auto& item : cases)
        EXPECT_EQ(ReadDocument(head + item.page).text, item.text) << item.page;
}

TEST(Html, WhatAPageSaysOfItsCharsetCountsLessThanWhatItHolds) {
    const std::string latin2 = "Dvo\xf8\xe1k";
    const struct {
        std::string page;
        const char* text;
    } cases[] = {
        {"<html><meta charset=iso-8859-2><body>" + latin2, "Dvořák"},
        {"<html><body>charset=koi8-r <meta http-equiv=x content='text/html; charset=latin2'>" +
             latin2,
         "charset=koi8-r Dvořák"},
        {"<?xml version='1.0' encoding='iso-8859-2'?><html><meta charset=utf-8><body>" + latin2,
         "Dvořák"},
        {"<html><meta charset=iso-8859-1><body>Dvořák", "Dvořák"},
        {"\xef\xbb\xbf<html><meta charset=koi8-r><body>é", "é"},
        {"<html><meta charset=iso-8859-1><body>\x93x\x94 \xe9", "“x” é"},
        // A sign that only later writers of the charset have, and half a character.
        {"<html><meta charset=shift_jis><body>\x87\x40 \x93\xfa\x96\x7b\x8c\xea\x82",
         "① 日本語\uFFFD"},
        {"<html><meta charset=euc-kr><body>\x8c\x63 \xc7\xd1\xb1\xdb", "똠 한글"},
    };
    for (const auto& item : cases)
        EXPECT_EQ(Read(item.page), item.text) << item.page;
}

TEST(Html, WhatSurroundsAnArticleIsLeftOutAndCanBeHad) {
    const std::string prose =
        "<p>" + std::string(400, 'x') + " the <a href='x'>article</a> itself.</p>";
    const struct {
        const char* what;
        std::string body;
        const char* without;  // of what is left out: its words
    } cases[] = {
        {"news",
         "<header><a href=/>no home</a></header><nav><ul><li><a "
         "href=a>no</a></ul></nav><main><article>"
         "<header><h1>yes title</h1></header>" +
             prose +
             "<div class='share-buttons'><a href=b>no share</a></div><aside>yes: a word on "
             "it</aside>"
             "</article><section><h2>no more</h2></section></main><footer>no rights</footer>",
         "no"},
        {"blog of old",
         "<div id=header><h1>yes blog</h1></div><div class='nav-menu'><a href=a>no a</a></div>"
         "<div class=content>" +
             prose +
             "</div><div id=sidebar><a href=b>no b</a></div><div class=cookie-notice>no</div>",
         "no"},
        {"forum",
         "<div class=breadcrumbs><a href=a>no</a></div><div class=post>yes one" + prose +
             "</div><div class=post>yes two" + prose + "</div><div role=contentinfo>no</div>",
         "no"},
        {"everything in one form of a wrong name",
         "<form id=aspnetForm><div class='page-with-sidebar'>yes" + prose + "</div></form>", "no"},
        {"a page of links is no article", "<nav><a href=a>yes a</a></nav><p>yes b</p>", "no"},
    };
    DocumentRules whole;
    whole.wholePage = true;
    for (const auto& item : cases) {
        const std::string page = "<html><head><title>T</title></head><body>" + item.body;
        const Document article = ReadDocument(page);
        EXPECT_THAT(article.text, testing::Not(testing::ContainsRegex("(^|[^a-z])no([^a-z]|$)")))
            << item.what;
        EXPECT_EQ(article.title, "T");
        const Document all = ReadDocument(page, {}, whole);
        for (const std::string& text : {article.text, all.text})
            for (std::size_t at = item.body.find("yes"); at != std::string::npos;
                 at = item.body.find("yes", at + 1))
                EXPECT_THAT(text, HasSubstr(item.body.substr(at, item.body.find('<', at) - at)))
                    << item.what;
        EXPECT_EQ(article.hasSurroundings, all.text != article.text) << item.what;
        EXPECT_FALSE(all.hasSurroundings);
    }
}

TEST(Html, IsKnownByWhatItBeginsWith) {
    for (const char* page : {"<p class=a>x</p>", "<article>x</article>", "<ul>\n<p>x</ul>",
                             "<!-- by hand -->\n<!-- two --><h2>x</h2>", "\n<B>x</B>"})
        EXPECT_EQ(Read(page), "x") << page;
    EXPECT_EQ(Read("<no> tag"), "<no> tag");
    const Document named = ReadDocument("a<br>b", {}, {}, "/x/page.HTM");
    EXPECT_EQ(named.text, "a\nb");
    EXPECT_EQ(ReadDocument("<b>x", {}, {}, "a.txt").text, "<b>x");
}

}  // namespace
