#include "documents/odt_object.h"

#include <utility>

bool IsLeftOutOfOdt(std::string_view name, const MarkupAttributes& attributes) {
    // What a condition hides at times.
    if (name == "hidden-text" || name == "hidden-paragraph")
        return attributes.Value("is-hidden") != "false";
    return name == "annotation" || name == "tracked-changes" || name == "forms" ||
           name == "ruby-text" || name == "binary-data" || name == "note-citation" ||
           name == "notes" || name == "page-number" || name == "master-styles";
}

bool OdtObjectListener::EvElement(std::string_view name, const MarkupAttributes& attributes) {
    if (IsLeftOutOfOdt(name, attributes) || name == "styles" || name == "automatic-styles" ||
        name == "meta")
        return false;
    ++depth_;
    if (name == "p" || name == "h") {
        ++paragraphs_;
    } else if (name == "s" || name == "tab") {
        Flow().AddBlank();
    } else if (name == "line-break") {
        Flow().EndLine();
    } else if (name == "note") {
        ++notesOpen_;
    } else if (IsOdtCell(name)) {
        ++cells_;
    } else if (name == "chart" && flow_.Size() == 0) {
        flow_.Add("Chart:");
        flow_.AddBlank();
        empty_ = flow_.Size();
    }
    return true;
}

void OdtObjectListener::EvElementEnd(std::string_view name) {
    --depth_;
    if (name == "p" || name == "h")
        EndParagraph();
    else if (name == "note" && --notesOpen_ == 0)
        notes_ += "Note: " + note_.Take() + '\n';
    else if (name == "table-row")
        flow_.EndParagraph();
    else if (IsOdtCell(name) && --cells_ == 0)
        flow_.EndCell();
}

void OdtObjectListener::EndParagraph() {
    --paragraphs_;
    if (notesOpen_ > 0)
        return note_.AddBlank();
    if (paragraphs_ > 0 || cells_ > 0)
        return;
    flow_.EndParagraph();
    if (notes_.empty())
        return;
    flow_.AddLines(std::exchange(notes_, {}));
    flow_.EndParagraph();
}

// Charts have no number where a cell was empty.
void OdtObjectListener::EvText(std::string_view text) {
    if (paragraphs_ > 0 && (cells_ == 0 || text != "NaN"))
        Flow().Add(text);
}

std::string OdtObjectListener::Take() {
    return flow_.Size() > empty_ ? flow_.Take() : std::string();
}
