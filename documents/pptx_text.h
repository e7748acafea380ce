// The text of Office Open XML presentations (PPTX): slide by slide, titles as headings, then what
// stands on the slide in the file's order.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "documents/markup_listener.h"
#include "documents/office_drawings.h"
#include "documents/text_flow.h"
#include "documents/zip_index.h"

// The slides' names in the archive, in the order that they are shown.
std::vector<std::string> PptxSlides(const ZipIndex& index);

class SlideListener : public MarkupListener {
public:
    // Both must outlive this.
    SlideListener(TextFlow& flow, OfficeDrawings& drawings) : flow_(flow), drawings_(drawings) {}

    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override;
    void EvElementEnd(std::string_view name) override;
    void EvText(std::string_view text) override;

private:
    TextFlow& flow_;
    OfficeDrawings& drawings_;
    int texts_ = 0;
    int cells_ = 0;
    bool isTitle_ = false;
    bool isFurniture_ = false;
};
