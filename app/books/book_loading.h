// Documents on their way into the list of audiobooks.
#pragma once

#include <gtk/gtk.h>

#include <optional>
#include <string>

#include "app/books/book_entry.h"

// As the document has it, without what its user changed then. None with a problem, a sentence: it
// cannot be read; none without one: the user has cancelled. GUI thread.
std::optional<BookEntry> LoadBookEntry(GtkWidget* parent, const KeptBook& book,
                                       std::string& problem);
