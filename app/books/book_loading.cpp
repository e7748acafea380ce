#include "app/books/book_loading.h"

#include "app/books/book_text.h"
#include "app/saving/suggested_name.h"
#include "app/text/document_loading.h"

std::optional<BookEntry> LoadBookEntry(GtkWidget* parent, const KeptBook& book,
                                       std::string& problem) {
    if (IsBookText(book.path)) {
        std::optional<BookEntry> entry = LoadBookText(book.path, book.title);
        if (!entry)
            problem = "The text is not there any more.";
        return entry;
    }
    const std::optional<Document> document =
        LoadDocumentUnderDialog(parent, book.path.c_str(), false);
    if (!document)
        return std::nullopt;
    problem = document->problem;
    if (!problem.empty())
        return std::nullopt;
    return EntryOf(*document, book.path, SuggestedName("", book.path));
}
