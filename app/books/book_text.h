// The texts of audiobooks that are in no document: what was typed, edited or recognised.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "app/books/book_entry.h"
#include "app/text/structure_text.h"

// With the headings that the text still has; title, author and cover are the original's from which
// it was edited.
BookEntry EntryOfText(const std::string& text, const KeptStructure& structure,
                      const Document& original, const std::string& name);

// Keeps such an entry's text, structure and cover in a file of the user's own, which is called by
// what it holds, unless the user has nothing kept. 0 or the errno. GUI thread.
int StoreBookText(BookEntry& entry);
// None: it is not there any more, or not what was stored.
std::optional<BookEntry> LoadBookText(const std::string& file, const std::string& name);
bool IsBookText(std::string_view file);
