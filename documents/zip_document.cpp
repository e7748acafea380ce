#include "documents/zip_document.h"

#include <string>
#include <utility>
#include <vector>

#include "documents/document_kind.h"
#include "documents/docx_text.h"
#include "documents/epub_text.h"
#include "documents/html_text.h"
#include "documents/odt_text.h"
#include "documents/office_drawings.h"
#include "documents/pptx_text.h"
#include "documents/problems.h"
#include "documents/small_texts.h"
#include "documents/text_charset.h"
#include "documents/xml_text.h"
#include "documents/zip_index.h"
#include "foundation/whole_characters.h"

namespace {

// "docProps/core.xml" and "meta.xml".
class FactsListener : public MarkupListener {
public:
    explicit FactsListener(Document& document) : document_(document) {}

    bool EvElement(std::string_view name, const MarkupAttributes&) override {
        fact_ = name == "title"     ? &document_.title
                : name == "creator" ? &document_.author
                                    : nullptr;
        return true;
    }
    void EvElementEnd(std::string_view) override { fact_ = nullptr; }
    void EvText(std::string_view text) override {
        if (fact_ != nullptr)
            *fact_ += WholeCharacters(text, kLongestFact);
    }

private:
    Document& document_;
    std::string* fact_ = nullptr;
};

Document Finished(std::string problem, TextFlow& flow, std::string_view facts) {
    if (!problem.empty())
        return DocumentProblem(std::move(problem));
    Document document = flow.TakeDocument();
    FactsListener listener(document);
    ParseXml(facts, listener);
    return document;
}

// Pages and plain text. Another document in it might hold yet another one.
Document OtherFile(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules) {
    const DocumentKind kind = KindOf(bytes);
    if (kind == DocumentKind::kHtml) {
        DocumentRules whole = rules;
        whole.wholePage = true;
        return ReadPage(bytes, watch, whole);
    }
    TextFlow flow(rules.referenceMarks);
    if (kind == DocumentKind::kPlainText)
        flow.AddLines(DecodeText(bytes));
    return flow.TakeDocument();
}

Document ReadDocx(std::string_view bytes, const ZipIndex& index, const std::string& mainPart,
                  const ReadingWatch& watch, const DocumentRules& rules) {
    int leftOut = 0;
    const auto filesOf = [&](OfficeDrawings& part) {
        return [&](std::string_view identifier) {
            Document file = OtherFile(part.TakeFile(identifier), watch, rules);
            leftOut += file.text.empty() ? 1 : 0;
            return file;
        };
    };
    DocxStyles styles(index.Content("word/styles.xml"), index.Content("word/numbering.xml"));
    const auto notesIn = [&](std::string_view name) {
        OfficeDrawings files(index, name);
        return rules.notes ? ReadDocxNotes(index.Content(name), styles, rules, filesOf(files))
                           : DocxNotes();
    };
    const DocxNotes footnotes = notesIn("word/footnotes.xml");
    const DocxNotes endnotes = notesIn("word/endnotes.xml");
    TextFlow flow(rules.referenceMarks);
    DocxListener listener(flow, styles, rules);
    listener.SetNotes(&footnotes, &endnotes);
    OfficeDrawings drawings(index, mainPart);
    listener.SetDrawings(&drawings);
    listener.SetOtherFile(filesOf(drawings));
    Document document = Finished(ReadXmlEntry(bytes, mainPart, listener, flow, watch), flow,
                                 index.Content("docProps/core.xml"));
    if (document.problem.empty() && leftOut > 0)
        document.remark =
            "Other files that were put into the document are left out: " + std::to_string(leftOut) +
            ".";
    return document;
}

Document ReadPptx(std::string_view bytes, const ZipIndex& index, const ReadingWatch& watch,
                  const DocumentRules& rules) {
    TextFlow flow(rules.referenceMarks);
    std::string damaged;  // numbers of slides
    std::string problem;
    const std::vector<std::string> slides = PptxSlides(index);
    for (std::size_t at = 0; at < slides.size(); ++at) {
        flow.BeginPage();
        OfficeDrawings drawings(index, slides[at]);
        SlideListener listener(flow, drawings, rules);
        problem = slides[at].empty() ? std::string(kDamagedDocument)
                                     : ReadXmlEntry(bytes, slides[at], listener, flow, watch);
        if (problem.empty())
            continue;
        if (problem != kDamagedDocument)
            return DocumentProblem(std::move(problem));
        flow.EndParagraph();
        damaged += (damaged.empty() ? "" : ", ") + std::to_string(at + 1);
    }
    if (flow.Size() == 0 && !damaged.empty())
        return DocumentProblem(kDamagedDocument);
    Document document = Finished({}, flow, index.Content("docProps/core.xml"));
    if (!damaged.empty())
        document.remark = "Slides that are missing or damaged: " + damaged + ".";
    return document;
}

Document ReadOdt(std::string_view bytes, const ZipIndex& index, const ReadingWatch& watch,
                 const DocumentRules& rules) {
    TextFlow flow(rules.referenceMarks);
    OdtListener listener(flow, rules, [&index](std::string_view address) {
        return index.Content(index.Find("", std::string(address) + "/content.xml"));
    });
    ParseXml(index.Content("styles.xml"), listener);
    Document document = Finished(ReadXmlEntry(bytes, "content.xml", listener, flow, watch), flow,
                                 index.Content("meta.xml"));
    document.remark = listener.Remark();
    return document;
}

std::string DocxMainPart(const ZipIndex& index) {
    for (auto name = index.names.lower_bound("word/document");
         name != index.names.end() && name->starts_with("word/document"); ++name)
        if (name->ends_with(".xml"))
            return *name;
    return {};
}

bool IsBook(const ZipIndex& index) {
    return index.Has("META-INF/container.xml") || index.Has("metadata.opf") ||  // HTMLZ
           index.Content("mimetype").starts_with("application/epub+zip");
}

std::string CutFiles(const std::vector<std::string>& names) {
    std::string remark =
        "Parts of the document are too large and not wholly read: " + std::to_string(names.size()) +
        ", \"";
    remark += WholeCharacters(names.front(), kLongestFact);
    return remark + (names.size() == 1 ? "\"." : "\" first.");
}

Document ReadIndexed(std::string_view bytes, const ZipIndex& index, const ReadingWatch& watch,
                     const DocumentRules& rules) {
    if (index.isEncrypted ||
        index.Content("META-INF/manifest.xml").find("encryption-data") != std::string_view::npos)
        return DocumentProblem(kProtectedDocument);
    if (IsBook(index))
        return ReadEpub(bytes, index, watch, rules);
    if (const std::string name = DocxMainPart(index); !name.empty())
        return ReadDocx(bytes, index, name, watch, rules);
    if (index.Has("ppt/presentation.xml"))
        return ReadPptx(bytes, index, watch, rules);
    if (index.Has("content.xml"))
        return ReadOdt(bytes, index, watch, rules);
    return DocumentProblem(index.isBroken ? kDamagedDocument
                                          : "The archive holds no document that can be read.");
}

}  // namespace

Document ReadFlatOdt(std::string_view bytes, const ReadingWatch& watch,
                     const DocumentRules& rules) {
    TextFlow flow(rules.referenceMarks);
    OdtListener listener(flow, rules);
    if (std::string problem = ReadXml(bytes, listener, flow, watch); !problem.empty())
        return DocumentProblem(std::move(problem));
    Document document = flow.TakeDocument();
    document.title = listener.Title();
    document.author = listener.Author();
    document.remark = listener.Remark();
    return document;
}

Document ReadZipDocument(std::string_view bytes, const ReadingWatch& watch,
                         const DocumentRules& rules) {
    const ZipIndex index = ReadZipIndex(bytes, watch);
    if (watch.IsToEnd())
        return DocumentProblem(watch.Problem());
    Document document = ReadIndexed(bytes, index, watch, rules);
    if (document.problem.empty() && !index.cutFiles.empty())
        document.remark += (document.remark.empty() ? "" : " ") + CutFiles(index.cutFiles);
    return document;
}
