// A document that is to become an audiobook.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "books/book_plan.h"
#include "documents/document.h"
#include "speech/voice_stretches.h"

struct BookEntry {
    std::string path;  // of the document; empty: the text was typed, or came from a program
    std::string text;
    std::string structure;  // of such a text, as lines of structure_text.h
    std::vector<LanguageMark> marks;
    BookPlan plan;  // its tags as the user has changed them
    std::string documentsCover;
    std::string coverPath;              // of the picture that the user has chosen in its place
    std::optional<std::size_t> number;  // in the queue, once it is there
    std::string target;                 // where it goes, then
    std::string voice;                  // its key, then
    std::string begunAt;                // where it went before its title was changed
    std::string keptAs;                 // the file of a text that is in no document, once begun
    bool isToldOf = false;              // how it ended
};

// The document's; name serves where it has no title.
BookEntry EntryOf(const Document& document, const std::string& path, const std::string& name);

// Where the entry's book goes: below the folder (without its slash), by its title; a number behind
// it where one of the others goes there. With a slash at its end for a folder of chapters.
std::string TargetOf(const BookEntry& entry, const std::string& folder, const char* ending,
                     bool inChapters, const std::vector<std::string>& others);

// What is not done yet, from one run of the program to the next: what a restart has to begin with.
struct KeptBook {
    std::string path;        // or the name of a text of book_text.h
    std::string title = {};  // empty: the document's tags
    std::string author = {};
    std::string language = {};
    std::string coverPath = {};  // "": the document's, "-": none
    std::string voice = {};
    std::string target = {};
};
std::vector<KeptBook> LoadKeptBooks();
// And removes the texts of all others. 0 or the errno.
int StoreKeptBooks(const std::vector<KeptBook>& books);
KeptBook KeptOf(const BookEntry& entry);
// What is wrong with the picture that the user had chosen, which is the document's then; empty for
// nothing.
std::string Restore(const KeptBook& kept, BookEntry& entry);
