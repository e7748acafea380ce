// The words of a chart, a table or a text that stands as an object in an OpenDocument file.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "documents/markup_listener.h"
#include "documents/text_flow.h"

// Its titles, then its figures row by row. Listens to the object's own file, or to the whole
// document that stands in a flat one.
class OdtObjectListener : public MarkupListener {
public:
    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override;
    void EvElementEnd(std::string_view name) override;
    void EvText(std::string_view text) override;

    // Whether an element that began has not ended.
    bool IsOpen() const { return depth_ > 0; }
    // Empty when it says nothing.
    std::string Take();

private:
    TextFlow& Flow() { return notesOpen_ > 0 ? note_ : flow_; }
    void EndParagraph();

    TextFlow flow_;
    TextFlow note_;
    std::string notes_;      // of the paragraph, for behind it
    std::size_t empty_ = 0;  // its size without a word of the object
    int depth_ = 0;
    int paragraphs_ = 0;
    int cells_ = 0;
    int notesOpen_ = 0;
};

// What is no text of the document, wherever it stands in it.
bool IsLeftOutOfOdt(std::string_view name, const MarkupAttributes& attributes);

inline bool IsOdtCell(std::string_view name) {
    return name == "table-cell" || name == "covered-table-cell";
}
