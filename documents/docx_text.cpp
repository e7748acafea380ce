#include "documents/docx_text.h"

#include <utility>

#include "documents/reference_mark.h"
#include "documents/small_texts.h"
#include "documents/zip_index.h"

namespace {

constexpr std::size_t kMostTextBoxes = 20;

bool IsLeftOutOfDocx(std::string_view name) {
    // The alternative is what the first choice shows already; "...Change" holds former formatting.
    return name == "Fallback" || name == "moveFrom" || name == "del" || name == "instrText" ||
           name == "rt" || name.ends_with("PrChange") || name == "numberingChange" ||
           name == "cellDel" || name == "delInstrText";
}

bool IsOff(const MarkupAttributes& attributes) {
    const std::string_view value = attributes.Value("val");
    return value == "0" || value == "false" || value == "off";
}

// Each note's text by its number.
class NotesListener : public MarkupListener {
public:
    NotesListener(DocxStyles& styles, const DocumentRules& rules, DocxListener::OtherFile otherFile)
        : flow_(rules.referenceMarks), inner_(flow_, styles, rules) {
        inner_.SetOtherFile(std::move(otherFile));
    }

    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override {
        if (name == "footnotes" || name == "endnotes")
            return true;
        if (name == "footnote" || name == "endnote") {
            identifier_ = attributes.Value("id");
            const std::string_view type = attributes.Value("type");
            return type.empty() || type == "normal";
        }
        return inner_.EvElement(name, attributes);
    }
    void EvElementEnd(std::string_view name) override {
        if (name == "footnote" || name == "endnote")
            notes.emplace(identifier_, std::exchange(flow_, TextFlow()).Take());
        else if (name != "footnotes" && name != "endnotes")
            inner_.EvElementEnd(name);
    }
    void EvText(std::string_view text) override { inner_.EvText(text); }

    DocxNotes notes;

private:
    TextFlow flow_;
    DocxListener inner_;
    std::string identifier_;
};

}  // namespace

DocxNotes ReadDocxNotes(std::string_view xml, DocxStyles& styles, const DocumentRules& rules,
                        DocxListener::OtherFile otherFile) {
    NotesListener listener(styles, rules, std::move(otherFile));
    ParseXml(xml, listener);
    return std::move(listener.notes);
}

DocxListener::DocxListener(TextFlow& flow, DocxStyles& styles, const DocumentRules& rules)
    : flow_(flow), styles_(styles), rules_(rules) {}

void DocxListener::SetNotes(const DocxNotes* footnotes, const DocxNotes* endnotes) {
    footnotes_ = footnotes;
    endnotes_ = endnotes;
}

bool DocxListener::EvElement(std::string_view name, const MarkupAttributes& attributes) {
    if (IsLeftOutOfDocx(name))
        return false;
    if (name == "oMath" || formula_.IsOpen())
        return formula_.Begin(OfficeMathPart(name));
    if (name == "altChunk") {
        AddOtherFile(attributes.Value("id"));
    } else if (name == "p") {
        paragraphs_.emplace_back();
    } else if (name == "txbxContent") {
        if (boxes_.size() >= kMostTextBoxes)
            return false;
        boxes_.push_back({TextFlow(rules_.referenceMarks), std::exchange(cells_, 0)});
    } else if (name == "tc") {
        ++cells_;
    } else if (!paragraphs_.empty()) {
        EvProperty(name, attributes);
        EvContent(name, attributes);
    }
    return true;
}

// It stands between paragraphs, as some of its own.
void DocxListener::AddOtherFile(std::string_view identifier) {
    if (otherFile_)
        Flow().Append(otherFile_(identifier));
}

void DocxListener::EvProperty(std::string_view name, const MarkupAttributes& attributes) {
    const std::string_view value = attributes.Value("val");
    if (name == "pStyle")
        Current().style = value;
    else if (name == "outlineLvl")
        Current().outline = NumberIn(value) + 1;
    else if (name == "numId") {
        Current().list.list = value;
        Current().hasOwnList = true;
    } else if (name == "ilvl")
        Current().list.level = NumberIn(value);
    else if (name == "framePr")
        Current().isDropCapital =
            attributes.Has("dropCap") && attributes.Value("dropCap") != "none";
    else if (name == "vertAlign")
        isRaised_ = value == "superscript";
    else if (name == "vanish")
        isHidden_ = !IsOff(attributes);
    else if (name == "lang" && attributes.Has("val"))
        language_ = value;
}

void DocxListener::EvContent(std::string_view name, const MarkupAttributes& attributes) {
    if (name == "t") {
        ++texts_;
        BeginParagraph();
    } else if (name == "r") {
        isHidden_ = isRaised_ = false;
        language_ = styles_.Language();
    } else if (name == "br" || name == "cr") {
        Flow().EndLine();
    } else if (name == "tab" || name == "ptab") {
        Flow().AddBlank();
    } else if (name == "noBreakHyphen") {
        Flow().Add("-");
    } else if (name == "footnoteReference") {
        AddNote(footnotes_, attributes);
    } else if (name == "endnoteReference") {
        AddNote(endnotes_, attributes);
    } else if (name == "docPr" && attributes.Has("descr")) {
        BeginParagraph();
        Flow().AddPicture(attributes.Value("descr"));
    } else if (drawings_ != nullptr && behind_.size() < kMostBehind) {
        if (Document drawing = drawings_->Take(name, attributes); !drawing.text.empty())
            behind_.push_back(std::move(drawing.text));
    }
}

void DocxListener::AddNote(const DocxNotes* notes, const MarkupAttributes& attributes) {
    if (notes == nullptr || !rules_.notes || behind_.size() >= kMostBehind)
        return;
    if (const auto note = notes->find(attributes.Value("id"));
        note != notes->end() && !note->second.empty())
        behind_.push_back("Note: " + note->second);
}

// With its first word, when all its properties are known.
void DocxListener::BeginParagraph() {
    Paragraph& paragraph = Current();
    if (std::exchange(paragraph.hasBegun, true))
        return;
    const int heading =
        paragraph.outline > 0 ? paragraph.outline : styles_.HeadingLevel(paragraph.style);
    if (heading > 0 && heading <= 6 && cells_ == 0)
        Flow().BeginHeading(heading);
    DocxStyles::ListPlace place = styles_.ListOf(paragraph.style);
    if (paragraph.hasOwnList)
        place = paragraph.list;
    if (const std::string number = styles_.NextNumber(place); !number.empty())
        Flow().AddListMark(number);
}

void DocxListener::EndParagraph() {
    isHidden_ = isRaised_ = false;
    if (paragraphs_.empty())
        return;
    const Paragraph paragraph = Current();
    paragraphs_.pop_back();
    if (paragraph.isDropCapital) {
        Flow().EndHeading();
        Flow().Glue();
        return;
    }
    if (cells_ > 0) {
        Flow().EndCell();
        return;
    }
    Flow().EndHeading();
    if (paragraphs_.empty())
        AddWhatIsBehind();
}

void DocxListener::AddWhatIsBehind() {
    for (const std::string& text : std::exchange(behind_, {})) {
        flow_.AddLines(text);
        flow_.EndParagraph();
    }
}

void DocxListener::EndTextBox() {
    if (boxes_.empty())
        return;
    std::string text = boxes_.back().flow.Take();
    cells_ = boxes_.back().cells;
    boxes_.pop_back();
    if (!text.empty() && behind_.size() < kMostBehind)
        behind_.push_back(std::move(text));
}

void DocxListener::EvElementEnd(std::string_view name) {
    if (formula_.IsOpen()) {
        formula_.End();
        if (!formula_.IsOpen()) {
            if (!paragraphs_.empty())
                BeginParagraph();
            Flow().Add(formula_.Take());
        }
    } else if (name == "t" && texts_ > 0) {
        --texts_;
    } else if (name == "r") {
        isHidden_ = isRaised_ = false;
    } else if (name == "p") {
        EndParagraph();
    } else if (name == "tc" && cells_ > 0) {
        --cells_;
        Flow().EndCell();
    } else if (name == "tr" && cells_ == 0) {
        Flow().EndParagraph();
        if (paragraphs_.empty())
            AddWhatIsBehind();
    } else if (name == "txbxContent") {
        EndTextBox();
    }
}

void DocxListener::EvText(std::string_view text) {
    if (formula_.IsOpen())
        return formula_.AddText(text);
    if (texts_ == 0 || isHidden_)
        return;
    Flow().SetLanguage(language_);
    if (!isRaised_)
        Flow().Add(text);
    else if (rules_.referenceMarks || !IsReferenceMark(text, Flow().Text(), false))
        Flow().AddRaised(text);
}
