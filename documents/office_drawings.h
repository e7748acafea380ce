// Diagrams and charts of Office Open XML documents. Each is a file of its own, which the document
// only points to.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "documents/document.h"
#include "documents/zip_index.h"

class OfficeDrawings {
public:
    // Those of one file of the archive. The index must outlive this.
    OfficeDrawings(const ZipIndex& index, std::string_view file);

    // What the drawing says to which this element of the file points: a diagram's words, a chart's
    // title and its figures row by row. Empty for other elements, and when it was taken before.
    Document Take(std::string_view element, const MarkupAttributes& attributes);

    // The file with that identifier, as it is; once, and empty when there is none or all of them
    // are too large. Lives as long as the index.
    std::string_view TakeFile(std::string_view identifier);

private:
    const ZipIndex& index_;
    std::string folder_;
    std::map<std::string, std::string, std::less<>> targets_;  // by identifier
    std::set<std::string> taken_;                              // files
    std::size_t bytes_ = 0;                                    // of these
};
