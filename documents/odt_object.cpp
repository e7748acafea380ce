#include "documents/odt_object.h"

bool OdtObjectListener::EvElement(std::string_view name, const MarkupAttributes&) {
    if (name == "styles" || name == "automatic-styles" || name == "annotation" || name == "meta" ||
        name == "binary-data")
        return false;
    ++depth_;
    if (name == "p" || name == "h") {
        ++paragraphs_;
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
    if ((name == "p" || name == "h") && --paragraphs_ == 0 && cells_ == 0)
        flow_.EndParagraph();
    else if (name == "table-row")
        flow_.EndParagraph();
    else if (IsOdtCell(name) && --cells_ == 0)
        flow_.EndCell();
}

// Charts have no number where a cell was empty.
void OdtObjectListener::EvText(std::string_view text) {
    if (paragraphs_ > 0 && (cells_ == 0 || text != "NaN"))
        flow_.Add(text);
}

std::string OdtObjectListener::Take() {
    return flow_.Size() > empty_ ? flow_.Take() : std::string();
}
