// Makes an audiobook: chapters are spoken and encoded side by side, and whatever was finished stays
// for the next time.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "books/book_order.h"
#include "foundation/threads/progress.h"

struct BookResult {
    bool isDone = false;
    std::string problem;               // why it is not; empty when it was stopped
    std::vector<std::string> remarks;  // what was left out, a sentence each
    std::size_t chaptersKept = 0;      // of one that is not done, for the next time
};

// Blocks. Unfinished work stands in a hidden folder beside the target, or in it, and goes when the
// book is done; the same order goes on with it.
//
// The pronunciation list is the order's, or that of the beginning, whoever changes it meanwhile.
BookResult MakeBook(BookOrder order, LProgress& progress);
