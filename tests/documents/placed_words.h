// Pages of PDF as the program tells them: words with their places.
#pragma once

#include <string>
#include <vector>

#include "documents/pdf_pages.h"

inline std::string WordAt(double left, double top, double height, const std::string& word) {
    const auto is = [](const char* name, double value) {
        return std::string(" ") + name + "=\"" + std::to_string(value) + '"';
    };
    return "<word" + is("xMin", left) +
           is("xMax", left + height / 2 * static_cast<double>(word.size())) + is("yMin", top) +
           is("yMax", top + height) + ">" + word + "</word>\n";
}

inline std::string TextOfBlocks(const std::vector<std::vector<std::string>>& blocks) {
    PdfLayout layout(false);
    layout.Feed("<page x>\n");
    for (const std::vector<std::string>& lines : blocks) {
        layout.Feed("<block xMin=\"50\" xMax=\"500\">\n");
        for (const std::string& words : lines)
            layout.Feed(words + "</line>\n");
    }
    layout.Feed("</page>\n");
    return JoinPages(layout.TakePages(), {}).text;
}
