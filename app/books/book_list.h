// The documents that are to become audiobooks, and the making of them.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "app/books/book_choices.h"
#include "app/books/book_entry.h"
#include "books/book_estimate.h"
#include "books/book_queue.h"
#include "foundation/files/work_folder.h"

// Unfinished books that were begun otherwise than they are ordered now, a line each: its title and
// how.
struct BegunOtherwise {
    std::string canGoOn;  // as they were begun
    std::string cannot;
};

// GUI thread. Its end breaks off what is at work, which a later run of the program goes on with.
class BookList {
public:
    std::size_t Count() const { return entries_.size(); }
    const BookEntry& At(std::size_t index) const { return entries_[index]; }
    BookEntry& Change(std::size_t index) { return entries_[index]; }

    // False: it is there already, where one that is done counts, too, unless it is to be made
    // again.
    bool Add(BookEntry entry, bool again);
    void Remove(std::size_t index);
    // Those of a former run that are not in the list, and wait for the next one.
    void KeepForLater(std::vector<KeptBook> books) { later_ = std::move(books); }
    bool IsOpen(std::size_t index) const;  // neither done nor on its way
    bool IsOnItsWay(std::size_t index) const { return !IsOpen(index) && !IsDone(index); }
    bool IsDone(std::size_t index) const;
    BookState StateOf(std::size_t index) const;  // of one that was started
    BookEstimate EstimateOf(std::size_t index, const BookOrder& manner) const;
    BookEstimate EstimateOfOpen(const BookOrder& manner) const;  // of all that are open

    // Of where the open ones would go, what stands there already, or has subtitles there.
    std::set<std::string> TakenTargets(const BookChoices& choices);
    // Of the open ones. Behind TakenTargets.
    BegunOtherwise BegunOtherwiseThan(const BookChoices& choices, int voice) const;
    // Makes these, in the place of what stands at the targets that are named, those that were begun
    // otherwise as they were begun or anew. What does not go as it was asked, a line each.
    std::string Start(const BookChoices& choices, int voice, const std::set<std::string>& replaced,
                      bool asBegun);
    void BreakOff(std::size_t index);
    BookQueue& Queue() { return queue_; }
    const BookQueue& Queue() const { return queue_; }
    double Fraction() const;  // of all that were started and not broken off

    // Those that have ended since this was asked last.
    std::vector<std::size_t> TakeEnds();

private:
    int Keep() const;  // 0 or the errno
    BookOrder OrderOfEntry(const BookEntry& entry, const BookOrder& manner) const;

    std::unique_ptr<WorkFolder> folder_;  // the engines'
    std::vector<BookEntry> entries_;
    std::vector<KeptBook> later_;
    BookQueue queue_;  // last: ends before what its engines write into
};
