// What a run that was broken off has left of a book.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "books/book_order.h"

// One that was begun otherwise than its order has it: made by the order, what is finished of it is
// lost.
struct UnfinishedBook {
    std::size_t pieces = 0;            // that are finished: chapters, or parts of them
    std::optional<BookOrder> asBegun;  // none: its text is another one by now, or a voice is gone
    std::string difference;            // how it was begun, in words that follow "begun with"
};

// None where there is nothing to lose. Reads files beside the target.
std::optional<UnfinishedBook> FindUnfinished(const BookOrder& order);

// Of a book that is to have another name: what is unfinished goes to where the new target looks
// for it. False: it stays where it is, as the other is on another disk or taken, another program
// is at work on it, or one is a file and the other a folder of chapters.
bool MoveUnfinished(const std::string& from, const std::string& target);
