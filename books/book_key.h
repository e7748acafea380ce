// What tells an audiobook's order from others: all that its sound depends on. Titles, author, cover
// and what else stands in tags are no part of it, as they are written when the sound is there.
#pragma once

#include <string>
#include <string_view>

struct BookOrder;

// Of its text, then how it is spoken and encoded, in lines. Its pronunciation list is there.
std::string BookKey(const BookOrder& order);

// Gives the order for the same text that manner; false when that cannot be, as the text is another
// one or a voice is gone.
bool TakeBookKey(std::string_view key, BookOrder& order);

// Of what is written into its finished chapters, which each have a file.
std::string TagsKey(const BookOrder& order);
