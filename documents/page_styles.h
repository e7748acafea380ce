// How a page's own styles lay out what its markup has within lines.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

#include "documents/markup_listener.h"

struct PageLayout {
    bool isLines = false;        // stands in lines of its own
    bool partsChildren = false;  // each element in it stands apart
};

// Knows "span.line", ".line" and "span" of the pages' style elements and the common names that
// stand for a layout; no other selectors, no other files. One thread.
class PageStyles {
public:
    static constexpr std::size_t kMostBytes = 256U << 10;

    // A style element's text; of all of them only the first kMostBytes.
    void Learn(std::string_view css);
    // With what the element says of itself.
    PageLayout LayoutOf(std::string_view name, const MarkupAttributes& attributes) const;

private:
    void LearnRule(std::string_view selectors, std::string_view body);

    std::size_t learnt_ = 0;                                  // bytes
    std::map<std::string, PageLayout, std::less<>> layouts_;  // by selector; the last rule holds
};
