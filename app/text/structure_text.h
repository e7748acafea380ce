// A document's structure as lines of a file, for the next start.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "documents/document_outline.h"

// Places are bytes of the text, in order.
struct KeptStructure {
    std::string title = {};  // of the document
    std::vector<OutlineEntry> outline = {};
    std::vector<std::size_t> pages = {};
    std::vector<DocumentLanguage> languages = {};
    bool isPart = false;        // the rest of the document was still to come
    bool isRecognised = false;  // in pictures

    bool operator==(const KeptStructure&) const = default;
};

std::string LinesOfStructure(const KeptStructure& structure);
// For a text of so many bytes; what does not fit it, or is no such line, ends what is read.
KeptStructure StructureOfLines(const std::string& lines, std::size_t textSize);
