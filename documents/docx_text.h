// The text of Office Open XML documents (DOCX).
//
// Paragraphs, headings and list items become paragraphs, a table's row one with its cells parted by
// commas. Footnotes and text boxes stand behind the paragraph that they belong to. Comments, what
// was deleted under tracked changes and hidden text are not read.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "documents/docx_styles.h"
#include "documents/formula_text.h"
#include "documents/markup_listener.h"
#include "documents/office_drawings.h"
#include "documents/text_flow.h"

using DocxNotes = std::map<std::string, std::string, std::less<>>;  // by identifier

class DocxListener : public MarkupListener {
public:
    // All must outlive this.
    DocxListener(TextFlow& flow, DocxStyles& styles, const DocumentRules& rules);

    // What was read of "word/footnotes.xml" and "word/endnotes.xml".
    void SetNotes(const DocxNotes* footnotes, const DocxNotes* endnotes);
    void SetDrawings(OfficeDrawings* drawings) { drawings_ = drawings; }  // of the document

    // Gives the whole file with that identifier that stands in the text; without a word where it is
    // not read.
    using OtherFile = std::function<Document(std::string_view identifier)>;
    void SetOtherFile(OtherFile otherFile) { otherFile_ = std::move(otherFile); }

    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override;
    void EvElementEnd(std::string_view name) override;
    void EvText(std::string_view text) override;

private:
    struct Paragraph {
        std::string style;
        int outline = 0;
        DocxStyles::ListPlace list;
        bool hasOwnList = false;
        bool isDropCapital = false;
        bool hasBegun = false;
    };

    struct TextBox {
        TextFlow flow;
        int cells;  // that were open around it
    };

    void EvProperty(std::string_view name, const MarkupAttributes& attributes);
    void EvContent(std::string_view name, const MarkupAttributes& attributes);
    void AddOtherFile(std::string_view identifier);
    void AddNote(const DocxNotes* notes, const MarkupAttributes& attributes);
    void BeginParagraph();
    void EndParagraph();
    void AddWhatIsBehind();
    void EndTextBox();
    TextFlow& Flow() { return boxes_.empty() ? flow_ : boxes_.back().flow; }
    Paragraph& Current() { return paragraphs_.back(); }

    TextFlow& flow_;
    DocxStyles& styles_;
    const DocumentRules& rules_;
    const DocxNotes* footnotes_ = nullptr;
    const DocxNotes* endnotes_ = nullptr;
    OfficeDrawings* drawings_ = nullptr;
    OtherFile otherFile_;
    std::vector<Paragraph> paragraphs_;  // a text box's stand within another
    std::vector<TextBox> boxes_;         // that are open
    std::vector<std::string> behind_;    // what follows the paragraph
    FormulaText formula_;
    int texts_ = 0;
    int cells_ = 0;
    bool isHidden_ = false;
    bool isRaised_ = false;
    std::string language_;  // of the run
};

// The notes in "word/footnotes.xml" or "word/endnotes.xml".
DocxNotes ReadDocxNotes(std::string_view xml, DocxStyles& styles, const DocumentRules& rules,
                        DocxListener::OtherFile otherFile);
