// The text of Office Open XML presentations (PPTX): slide by slide, titles as headings, then what
// stands on the slide in the file's order.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "documents/formula_text.h"
#include "documents/markup_listener.h"
#include "documents/office_drawings.h"
#include "documents/small_texts.h"
#include "documents/text_flow.h"
#include "documents/zip_index.h"

// The slides' names in the archive, in the order that they are shown; empty for a missing one.
std::vector<std::string> PptxSlides(const ZipIndex& index);

class SlideListener : public MarkupListener {
public:
    // Both must outlive this.
    SlideListener(TextFlow& flow, OfficeDrawings& drawings, const DocumentRules& rules)
        : flow_(flow), keepsMarks_(rules.referenceMarks), drawings_(drawings) {}

    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override;
    void EvElementEnd(std::string_view name) override;
    void EvText(std::string_view text) override;

private:
    TextFlow& flow_;
    bool keepsMarks_;
    struct Numbering {
        std::string type;  // empty: none
        int start = 1;

        bool operator==(const Numbering&) const = default;
    };
    struct List {
        Numbering numbering;
        int count = 0;
    };

    std::string NextNumber();
    void BeginWords();

    OfficeDrawings& drawings_;
    FormulaText formula_;
    std::array<List, kMostListLevels> lists_ = {};  // of the shape
    std::size_t level_ = 0;                         // of the paragraph
    Numbering numbering_;                           // that it has
    bool hasBegun_ = false;
    bool isRaised_ = false;
    int texts_ = 0;
    int cells_ = 0;
    bool isTitle_ = false;
    bool isFurniture_ = false;
};
