// DOCX, PPTX, ODT and ODP: every word of them, in its place.
#include <gmock/gmock.h>

#include <string>

#include "documents/document.h"
#include "tests/documents/document_files.h"

namespace {

std::string RunOf(const std::string& text, const std::string& properties = "") {
    return "<w:r><w:rPr>" + properties + "</w:rPr><w:t xml:space='preserve'>" + text +
           "</w:t></w:r>";
}

std::string Paragraph(const std::string& content, const std::string& properties = "") {
    return "<w:p><w:pPr>" + properties + "</w:pPr>" + content + "</w:p>";
}

std::string NumberedItem(const std::string& text, int level, const std::string& list = "3") {
    return Paragraph(RunOf(text), "<w:numPr><w:ilvl w:val='" + std::to_string(level) +
                                      "'/><w:numId w:val='" + list + "'/></w:numPr>");
}

std::string DocxWith(const std::string& body, const ZipFiles& more) {
    ZipFiles files = {{"word/document.xml", "<w:document xmlns:w='w' xmlns:m='m'><w:body>" + body +
                                                "</w:body></w:document>"}};
    files.insert(files.end(), more.begin(), more.end());
    return ZipOf(files);
}

TEST(Office, NoWordOfADocxIsLost) {
    const ZipFiles notes = {
        {"word/footnotes.xml", "<w:footnotes xmlns:w='w'><w:footnote w:type='separator' w:id='0'>" +
                                   Paragraph(RunOf("no")) + "</w:footnote><w:footnote w:id='2'>" +
                                   Paragraph(RunOf("the note")) + "</w:footnote></w:footnotes>"},
        {"word/styles.xml",
         "<w:styles xmlns:w='w'><w:rPrDefault><w:lang w:val='en-GB'/></w:rPrDefault><w:style "
         "w:styleId='a3'><w:name w:val='heading 2'/></w:style><w:style w:styleId='b'><w:basedOn "
         "w:val='a3'/></w:style></w:styles>"},
        {"word/numbering.xml",
         "<w:numbering xmlns:w='w'><w:abstractNum w:abstractNumId='0'><w:lvl w:ilvl='0'><w:start "
         "w:val='1'/><w:numFmt w:val='decimal'/><w:lvlText w:val='%1.'/></w:lvl><w:lvl w:ilvl='1'>"
         "<w:start w:val='1'/><w:numFmt w:val='lowerLetter'/><w:lvlText w:val='%1.%2)'/></w:lvl>"
         "</w:abstractNum><w:abstractNum w:abstractNumId='3'><w:lvl w:ilvl='0'><w:numFmt "
         "w:val='bullet'/></w:lvl></w:abstractNum><w:num w:numId='3'><w:abstractNumId "
         "w:val='0'/></w:num><w:num w:numId='4'><w:abstractNumId w:val='3'/></w:num><w:num "
         "w:numId='5'><w:abstractNumId w:val='0'/></w:num><w:num w:numId='6'><w:abstractNumId "
         "w:val='0'/><w:lvlOverride w:ilvl='0'><w:startOverride "
         "w:val='1'/></w:lvlOverride></w:num></w:numbering>"},
        {"docProps/core.xml", "<c><dc:title>T</dc:title><dc:creator>Ann</dc:creator></c>"},
    };
    const struct {
        const char* what;
        std::string body;
        const char* text;
    } cases[] = {
        {"formatting that was hidden before a change",
         Paragraph(RunOf("seen", "<w:rPrChange><w:rPr><w:vanish/></w:rPr></w:rPrChange>")), "seen"},
        {"text box in a sentence",
         Paragraph(RunOf("a fig") + "<w:r><w:txbxContent>" + Paragraph(RunOf("Figure 1")) +
                   Paragraph(RunOf("more")) + "</w:txbxContent></w:r>" + RunOf("ure. End")),
         "a figure. End\n\nFigure 1\n\nmore"},
        {"drop capital",
         Paragraph(RunOf("T"), "<w:framePr w:dropCap='drop'/>") + Paragraph(RunOf("here it is")),
         "There it is"},
        {"footnote and picture",
         Paragraph(RunOf("text") + "<w:r><w:footnoteReference w:id='2'/></w:r>" + RunOf(" on") +
                   "<w:drawing><docPr name='x' descr='a cat'/></w:drawing>") +
             Paragraph(RunOf("next")),
         "text on Picture: a cat\n\nNote: the note\n\nnext"},
        {"numbers",
         NumberedItem("a", 0) + NumberedItem("b", 1) + NumberedItem("c", 1) + NumberedItem("d", 0) +
             NumberedItem("e", 1),
         "1. a\n\n1.a) b\n\n1.b) c\n\n2. d\n\n2.a) e"},
        // Bullets count nothing; a list of the same description goes on, unless it says otherwise.
        {"several lists",
         NumberedItem("a", 0) + NumberedItem("b", 0, "4") + NumberedItem("c", 0, "5") +
             NumberedItem("d", 0, "6") + NumberedItem("e", 0, "6"),
         "1. a\n\nb\n\n2. c\n\n1. d\n\n2. e"},
        {"text box in a table",
         "<w:tbl><w:tr><w:tc>" +
             Paragraph(RunOf("x") + "<w:r><w:txbxContent>" + Paragraph(RunOf("box")) +
                       "</w:txbxContent></w:r>") +
             "</w:tc></w:tr><w:tr><w:tc>" + Paragraph(RunOf("y")) + "</w:tc></w:tr></w:tbl>",
         "x\n\nbox\n\ny"},
        {"formula",
         Paragraph(
             RunOf("So ") +
             "<m:oMath><m:r><m:t>E=m</m:t></m:r><m:sSup><m:e><m:r><m:t>c</m:t></m:r></m:e><m:sup>"
             "<m:r><m:t>2</m:t></m:r></m:sup></m:sSup></m:oMath>" +
             RunOf(".")),
         "So E=m c²."},
        {"reference and power",
         Paragraph(RunOf("word") + RunOf("2", "<w:vertAlign w:val='superscript'/>") + RunOf(" m") +
                   RunOf("2", "<w:vertAlign w:val='superscript'/>")),
         "word m²"},
    };
    for (const auto& item : cases)
        EXPECT_EQ(ReadDocument(DocxWith(item.body, notes)).text, item.text) << item.what;

    const Document document =
        ReadDocument(DocxWith(Paragraph(RunOf("Head"), "<w:pStyle w:val='b'/>") +
                                  Paragraph(RunOf("ja", "<w:lang w:val='de-DE'/>") + RunOf(" no")),
                              notes));
    EXPECT_EQ(ReadDocument(DocxWith("<w:altChunk/>" + Paragraph(RunOf("a")), notes)).remark,
              "Other files that were put into the document are left out: 1.");
    const Document withFiles = ReadDocument(DocxWith(
        Paragraph(RunOf("a")) +
            "<w:altChunk r:id='r1'/><w:altChunk r:id='r2'/><w:altChunk "
            "r:id='r3'/><w:altChunk r:id='r1'/>" +
            Paragraph(RunOf("b") + "<w:r><w:footnoteReference w:id='2'/></w:r>"),
        {{"word/_rels/document.xml.rels",
          "<R><Relationship Id='r1' Target='/word/one.htm'/><Relationship Id='r2' "
          "Target='two.txt'/><Relationship Id='r3' Target='three.rtf'/></R>"},
         {"word/one.htm", "<html><body><nav>x</nav><h3>One &amp; all</h3><p>Two</p></body></html>"},
         {"word/two.txt", "Plain text."},
         {"word/three.rtf", "{\\rtf1 Three}"},
         {"word/_rels/footnotes.xml.rels",
          "<R><Relationship Id='r1' Target='two.txt'/><Relationship Id='r3' "
          "Target='three.rtf'/></R>"},
         {"word/footnotes.xml", "<w:footnotes><w:footnote w:id='2'>" + Paragraph(RunOf("See")) +
                                    "<w:altChunk r:id='r1'/><w:altChunk r:id='r3'/></w:footnote>"
                                    "</w:footnotes>"}}));
    EXPECT_EQ(withFiles.text,
              "a\n\nx\n\nOne & all\n\nTwo\n\nPlain text.\n\nb\n\nNote: See\n\nPlain text.");
    EXPECT_EQ(withFiles.remark, "Other files that were put into the document are left out: 3.");
    ASSERT_EQ(withFiles.headings.size(), 1U);
    EXPECT_EQ(withFiles.headings[0].level, 3);
    EXPECT_EQ(withFiles.text.substr(withFiles.headings[0].begin, 9), "One & all");
    const Document large = ReadDocument(DocxWith(
        Paragraph(RunOf("b")), {{"word/charts/chart1.xml", std::string((16U << 20) + 1, ' ')}}));
    EXPECT_EQ(large.text, "b");
    EXPECT_THAT(large.remark, testing::HasSubstr("read: 1, \"word/charts/chart1.xml\"."));
    EXPECT_EQ(document.title + document.author, "TAnn");
    ASSERT_EQ(document.headings.size(), 1U);
    EXPECT_EQ(document.headings[0].level, 2);
    EXPECT_EQ(document.headings[0].end, 4U);
    ASSERT_EQ(document.languages.size(), 3U);
    EXPECT_EQ(document.languages[1].tag, "de-DE");
}

std::string OdtList(const std::string& item, const std::string& attributes = "") {
    return "<text:list text:style-name='L' " + attributes + "><text:list-item>" + item +
           "</text:list-item></text:list>";
}

TEST(Office, NoWordOfAnOdtIsLost) {
    const auto belowItem = [](const std::string& item, const std::string& below,
                              const std::string& attributes = "") {
        return OdtList(item + "<text:list><text:list-item><text:p>" + below +
                           "</text:p></text:list-item></text:list>",
                       attributes);
    };
    const struct {
        const char* what;
        std::string body;
        const char* text;
    } cases[] = {
        {"note and text box",
         "<text:p>text<text:note><text:note-citation>1</text:note-citation><text:note-body><text:p>"
         "the note</text:p></text:note-body></text:note> goes<draw:frame><svg:title>a "
         "cat</svg:title>"
         "<draw:text-box><text:p>Figure 1</text:p></draw:text-box></draw:frame> "
         "on<draw:custom-shape>"
         "<text:p>shape</text:p></draw:custom-shape></text:p>"
         "<text:p>next</text:p>",
         "text goes Picture: a cat on\n\nNote: the note\n\nFigure 1\n\nshape\n\nnext"},
        {"numbers",
         "<text:list-style style:name='L'><text:list-level-style-number text:level='1' "
         "style:num-format='1' style:num-suffix='.'/><text:list-level-style-number text:level='2' "
         "style:num-format='a' style:num-suffix=')' text:start-value='2'/></text:list-style>"
         "<text:list text:style-name='L'><text:list-item><text:p>a</text:p><text:p>on</text:p>"
         "<text:list><text:list-item><text:p>b</text:p></text:list-item></text:list>"
         "</text:list-item><text:list-item><text:p>c</text:p></text:list-item></text:list>",
         "1. a\n\non\n\nb) b\n\n2. c"},
        {"a list that goes on behind another one",
         "<text:list-style style:name='L'><text:list-level-style-number text:level='1' "
         "style:num-format='1'/><text:list-level-style-number text:level='2' "
         "style:num-format='a'/></text:list-style><text:list xml:id='i' text:style-name='L'><text:"
         "list-item><text:p>x</text:p><text:list><text:list-item><text:p>y</text:p></"
         "text:list-item>"
         "</text:list></text:list-item></text:list><text:list text:style-name='L'><text:list-item>"
         "<text:p>own</text:p></text:list-item></text:list><text:list text:style-name='L' text:"
         "continue-list='i'><text:list-item><text:list><text:list-item><text:p>z</text:p></text:"
         "list-item></text:list></text:list-item><text:list-item><text:p>"
         "w</text:p></text:list-item></text:list>",
         "1 x\n\na y\n\n1 own\n\nb z\n\n2 w"},
        {"a list that goes on with an item of its own before those below it",
         "<text:list-style style:name='L'><text:list-level-style-number text:level='1' "
         "style:num-format='1'/><text:list-level-style-number text:level='2' "
         "style:num-format='a'/></text:list-style>" +
             belowItem("<text:p>x</text:p>", "y") +
             belowItem("<text:p>v</text:p>", "w", "text:continue-numbering='true'") +
             OdtList("<text:p>u</text:p>", "text:continue-numbering='true'") +
             belowItem("", "z", "text:continue-numbering='true'"),
         "1 x\n\na y\n\n2 v\n\na w\n\n3 u\n\na z"},
        {"what a condition hides, and does not now",
         "<text:p>It <text:hidden-text "
         "text:is-hidden='true'>no</text:hidden-text><text:hidden-text "
         "text:is-hidden='false'>is</text:hidden-text></text:p>",
         "It is"},
        {"chart in a flat document",
         "<text:p>So<draw:object><office:document><office:styles><text:p>no</text:p>"
         "</office:styles><office:body><office:chart><chart:chart><chart:title><text:p>Ferries"
         "</text:p></chart:title><table:table-row><table:table-cell><text:p>May</text:p>"
         "</table:table-cell><table:table-cell><text:p>3</text:p></table:table-cell>"
         "</table:table-row></chart:chart></office:chart></office:body></office:document>"
         "</draw:object> it is.</text:p><text:p>Next</text:p>",
         "So it is.\n\nChart: Ferries\n\nMay, 3\n\nNext"},
        {"text in a flat document",
         "<text:p>So<draw:object><office:document><office:text><text:tracked-changes><text:p>no"
         "</text:p></text:tracked-changes><text:p>one<text:s/>two<text:line-break/>three<text:note>"
         "<text:note-citation>1</text:note-citation><text:p>why</text:p></text:note> four</text:p>"
         "</office:text></office:document></draw:object> it is.</text:p>",
         "So it is.\n\none two\nthree four\n\nNote: why"},
        {"formula", "<text:p>So <math><msup><mi>c</mi><mn>2</mn></msup></math></text:p>", "So c²"},
    };
    for (const auto& item : cases)
        EXPECT_EQ(ReadDocument(OdtXmlOf(item.body)).text, item.text) << item.what;

    const std::string head = "<office:document xmlns:text='t'><office:body>";
    const Document odt = ReadDocument(ZipOf(
        {{"content.xml",
          head + "<text:h text:outline-level='3'>Head</text:h><text:p>m"
                 "<text:span text:style-name='T'>2</text:span> "
                 "<draw:object xlink:href='./Object 1'/><draw:object xlink:href='./Object 2'/>"
                 "<draw:object-ole xlink:href='./Object 3'/><draw:object "
                 "xlink:href='./gone'/></text:p></office:body></office:document>"},
         {"Object 2/content.xml",
          "<d "
          "xmlns:math='m'><office:chart><chart:chart><chart:title><text:p>Ferries</text:p></"
          "chart:title><table:table>"
          "<table:table-row><table:table-cell><text:p/></table:table-cell><table:table-cell>"
          "<text:p>Late</text:p></table:table-cell></table:table-row><table:table-row>"
          "<table:table-cell><text:p>May</text:p></table:table-cell><table:table-cell><text:p>0.3"
          "</text:p><svg:desc>local-table.B2</svg:desc></table:table-cell></table:table-row>"
          "<table:table-row><table:table-cell><text:p>June</text:p></table:table-cell>"
          "<table:table-cell><text:p>NaN</text:p></table:table-cell></table:table-row>"
          "</table:table></chart:chart></office:chart></d>"},
         {"Object 1/content.xml", "<math><mi>a</mi><mo>=</mo><mi>b</mi></math>"},
         {"styles.xml",
          "<s><style:default-style style:family='paragraph'><style:text-properties "
          "fo:language='cs' fo:country='CZ'/></style:default-style><style:style style:name='T'>"
          "<style:text-properties style:text-position='super 58%'/></style:style></s>"},
         {"meta.xml", "<m><dc:title>T</dc:title></m>"}}));
    EXPECT_EQ(odt.text, "Head\n\nm² a = b\n\nChart: Ferries\n\nLate\n\nMay, 0.3\n\nJune");
    EXPECT_EQ(odt.remark, "Other objects that were put into the document are left out: 2.");
    EXPECT_EQ(odt.title, "T");
    EXPECT_EQ(odt.headings.at(0).level, 3);
    EXPECT_EQ(odt.languages.at(0).tag, "cs-CZ");

    // What a small file names so often is read up to a bound.
    std::string named = head + "<text:p>So";
    for (int i = 0; i < 20; ++i)
        named += "<draw:object xlink:href='./Object 1'/>";
    const std::string large = "<math a='" + std::string(2 << 20, 'a') + "'/>";
    EXPECT_EQ(
        ReadDocument(ZipOf({{"content.xml", named + "</text:p></office:body></office:document>"},
                            {"Object 1/content.xml", large}}))
            .remark,
        "Other objects that were put into the document are left out: 5.");
}

TEST(Office, DiagramsAndChartsAreReadWhereTheyStand) {
    const auto point = [](int index, const std::string& text) {
        return "<c:pt idx='" + std::to_string(index) + "'><c:v>" + text + "</c:v></c:pt>";
    };
    const auto series = [&](const std::string& name, const std::string& figures) {
        return "<c:ser><c:tx><c:strCache>" + point(0, name) + "</c:strCache></c:tx><c:cat>" +
               point(0, "May") + point(1, "June") + "</c:cat><c:val><c:f>Sheet1!$B$2</c:f>" +
               figures + "</c:val></c:ser>";
    };
    const std::string chart =
        "<c:chartSpace><c:chart><c:title><a:p><a:t>Ferries</a:t></a:p></c:title><c:plotArea>" +
        series("Late", point(0, "0.30000000000000004") + point(1, "4")) +
        series("On time", point(1, "1234567.5")) + "</c:plotArea></c:chart></c:chartSpace>";
    const std::string diagram =
        "<dgm:dataModel><dgm:pt><dgm:t><a:p><a:t>Cast</a:t><a:t> off</a:t></a:p></dgm:t></dgm:pt>"
        "<dgm:pt type='pres'/><dgm:pt><dgm:t><a:p><a:t>Row</a:t></a:p></dgm:t></dgm:pt></dgm:"
        "dataModel>";
    const auto relations = [](const std::string& folder) {
        return "<R><Relationship Id='r1' Target='" + folder +
               "charts/chart1.xml'/><Relationship Id='r2' Target='" + folder +
               "diagrams/data1.xml'/><Relationship Id='r3' Target='gone.xml'/></R>";
    };
    const std::string pointers =
        "<c:chart r:id='r1'/><x><dgm:relIds r:dm='r2' r:lo='r1'/></x><c:chart r:id='r1'/><c:chart "
        "r:id='r3'/>";
    const std::string said =
        "Chart: Ferries\n\nLate, On time\n\nMay, 0.3\n\nJune, 4, 1234567.5\n\nDiagram: Cast "
        "off\n\nRow";
    EXPECT_EQ(ReadDocument(DocxWith(Paragraph(RunOf("Before") + pointers + RunOf(".")) +
                                        Paragraph(RunOf("Behind")),
                                    {{"word/_rels/document.xml.rels", relations("")},
                                     {"word/charts/chart1.xml", chart},
                                     {"word/diagrams/data1.xml", diagram}}))
                  .text,
              "Before.\n\n" + said + "\n\nBehind");
    EXPECT_EQ(ReadDocument(ZipOf({{"ppt/presentation.xml", "<p:p><p:sldId id='1' r:id='r'/></p:p>"},
                                  {"ppt/_rels/presentation.xml.rels",
                                   "<R><Relationship Id='r' Target='slides/slide1.xml'/></R>"},
                                  {"ppt/slides/slide1.xml", "<p:sld><a:t>Before</a:t>" + pointers +
                                                                "<a:t>Behind</a:t></p:sld>"},
                                  {"ppt/slides/_rels/slide1.xml.rels", relations("../")},
                                  {"ppt/charts/chart1.xml", chart},
                                  {"ppt/diagrams/data1.xml", diagram}}))
                  .text,
              "Before\n\n" + said + "\n\nBehind");
}

TEST(Office, SlidesAreReadInOrderWithTheirTitlesAsHeadings) {
    const auto slide = [](const std::string& title, const std::string& text) {
        return "<p:sld xmlns:p='p' xmlns:a='a'><p:sp><p:nvPr><p:ph "
               "type='title'/></p:nvPr><a:p><a:r>"
               "<a:t>" +
               title + "</a:t></a:r></a:p></p:sp><p:sp><a:p><a:t>" + text +
               "</a:t></a:p><a:p><a:pPr><a:buAutoNum type='alphaLcParenR'/></a:pPr><a:r><a:t>more"
               "</a:t></a:r><a:r><a:rPr "
               "baseline='30000'/><a:t>7</a:t></a:r></a:p></p:sp><p:sp><p:ph "
               "type='sldNum'/><a:p><a:t>9"
               "</a:t></a:p></p:sp></p:sld>";
    };
    const Document pptx = ReadDocument(ZipOf(
        {{"ppt/slides/slide1.xml", slide("B", "two")},
         {"ppt/slides/slide2.xml", slide("A", "one")},
         {"ppt/presentation.xml",
          "<p:p xmlns:p='p' xmlns:r='r'><p:sldId id='256' r:id='r2'/><p:sldId id='257' "
          "r:id='r1'/><p:sldId id='258' r:id='r3'/></p:p>"},
         {"ppt/_rels/presentation.xml.rels",
          "<R><Relationship Id='r1' Target='slides/slide1.xml'/><Relationship Id='r2' "
          "Target='/ppt/slides/slide2.xml'/><Relationship Id='r3' Target='gone.xml'/></R>"}}));
    EXPECT_EQ(pptx.remark, "Slides that are missing or damaged: 3.");
    EXPECT_EQ(pptx.text, "A\n\none\n\na) more\n\nB\n\ntwo\n\na) more");
    EXPECT_EQ(pptx.headings.size(), 2U);
    EXPECT_EQ(pptx.pages.size(), 2U);

    const auto item = [](const std::string& numbering, const std::string& content) {
        return "<a:p><a:pPr><a:buAutoNum type='arabicPeriod' " + numbering + "/></a:pPr>" +
               content + "</a:p>";
    };
    const auto words = [](const std::string& text) { return "<a:r><a:t>" + text + "</a:t></a:r>"; };
    EXPECT_EQ(
        ReadDocument(
            ZipOf({{"ppt/presentation.xml", "<p:p><p:sldId id='1' r:id='r'/></p:p>"},
                   {"ppt/_rels/presentation.xml.rels",
                    "<R><Relationship Id='r' Target='slides/slide1.xml'/></R>"},
                   {"ppt/slides/slide1.xml",
                    "<p:sld><p:sp>" + item("startAt='4'", words("four")) + item("startAt='4'", "") +
                        item("startAt='4'", words("five")) + item("startAt='9'", words("nine")) +
                        item("startAt='9'",
                             "<m:oMath><m:f><m:num><m:r><m:t>a</m:t></m:r></m:num><m:den><m:r>"
                             "<m:t>b</m:t></m:r></m:den></m:f></m:oMath>") +
                        "</p:sp></p:sld>"}}))
            .text,
        "4. four\n\n5. five\n\n9. nine\n\n10. a/b");

    const Document odp = ReadDocument(
        ZipOf({{"content.xml",
                "<d><office:body><draw:page><draw:frame presentation:class='title'><draw:text-box>"
                "<text:p>A</text:p></draw:text-box></draw:frame><draw:frame><draw:text-box><text:p>"
                "one</text:p></draw:text-box></draw:frame><presentation:notes><text:p>no</text:p>"
                "</presentation:notes></draw:page></office:body></d>"}}));
    EXPECT_EQ(odp.text, "A\n\none");
    EXPECT_EQ(odp.headings.size(), 1U);
}

}  // namespace
