// Tells a web page's article from what surrounds it: menus, heads and feet of the site, notices,
// "share", "related", comments.
#pragma once

#include <cstddef>
#include <limits>
#include <set>
#include <string_view>

#include "documents/reading_watch.h"

struct PageSurroundings {
    static constexpr std::size_t kNowhere = std::numeric_limits<std::size_t>::max();

    std::set<std::size_t> leftOut;   // the elements, by where their tags end in the page
    std::size_t article = kNowhere;  // the element outside of which nothing is read
    std::size_t words = 0;           // that are left out

    bool AreThere() const { return words > 0; }
};

// None when little text would be left: then it was no page with an article.
PageSurroundings FindSurroundings(std::string_view page, const ReadingWatch& watch);
