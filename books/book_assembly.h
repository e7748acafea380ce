// The files of a book, made of its encoded sections.
#pragma once

#include <string>
#include <vector>

#include "books/book_joint.h"
#include "books/book_order.h"
#include "books/book_sections.h"
#include "books/book_tags.h"
#include "books/book_work.h"
#include "formats/whole_file.h"

// Blocks. What it makes appears only whole.
class BookAssembly {
public:
    // All outlive it.
    BookAssembly(const BookOrder& order, const BookWork& work,
                 const std::vector<BookSection>& sections)
        : order_(order), work_(work), sections_(sections) {}

    // Of a book with a file of sound for each: where it goes, or waits for the others.
    std::string ChapterPath(std::size_t chapter) const;
    // Its sections are encoded, and go.
    BookJoint MakeChapter(std::size_t chapter, LProgress& progress) const;
    // Of one that is made: why its tags cannot be the order's, or empty.
    std::string TagAnew(std::size_t chapter) const;
    // All its sections are encoded, or its chapters made.
    BookJoint MakeBook(LProgress& progress) const;

private:
    struct Sound;
    Sound SoundOf(std::size_t first, std::size_t end) const;
    Sound SoundOfChapter(std::size_t chapter) const;
    BookTags TagsOf(std::size_t chapter) const;
    BookJoint MakeFile(const Sound& sound, BookTags tags, const std::string& path,
                       LProgress& progress) const;
    SoundLength TaggedLength(const SoundLength& length) const;
    std::string AddChapters(const std::string& joined, const BookTags& tags,
                            const std::string& path, LProgress& progress) const;
    std::string Publish(WholeFile& file, const Sound& sound, const std::string& path,
                        WholeFile::Existing existing) const;
    std::string Commit(WholeFile& file) const;
    std::string WriteWithText(const std::string& path, LProgress& progress) const;

    const BookOrder& order_;
    const BookWork& work_;
    const std::vector<BookSection>& sections_;
};
