// Books that are made one after the other on a thread of their own, while their user does something
// else.
#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "books/book_run.h"
#include "foundation/threads/thread.h"

enum class BookStage { kWaiting, kAtWork, kDone, kBrokenOff };

struct BookState {
    BookStage stage = BookStage::kWaiting;
    std::string label;                  // "Chapter 3 of 12: Of the Sea", while at work
    double fraction = 0;                // of the book
    std::optional<double> secondsLeft;  // until it is done, others before it included
    BookResult result;                  // once done or broken off
};

// Public operations: one thread, the owner's. Its end breaks off what is at work; what is finished
// of it stays for the next time (MakeBook).
class BookQueue final : LThread {
public:
    BookQueue() = default;
    ~BookQueue() override;

    // Its number, by which it is asked for. The speaking yields to other programs, a reading too.
    std::size_t Add(BookOrder order);
    BookState StateOf(std::size_t book) const;
    void BreakOff(std::size_t book);  // soon; one that is done stays done
    bool IsAtWork() const;            // at some book, or about to be, paused or not
    void Pause(bool pauses);          // the engine finishes the sentences that it is at
    bool IsPaused() const;

private:
    struct Book;
    class Progress;

    void ThreadFunction() override;
    // What the user does meanwhile does not wait for books.
    bool IsPendingWork() const override { return false; }
    std::shared_ptr<Book> NextBook();

    mutable std::mutex mutex_;  // guards what follows, and what the books say
    std::deque<std::shared_ptr<Book>> books_;
    bool isPaused_ = false;
    LSignalObject changed_;  // a book has come or is broken off, or the pause
    double bytesASecond_ = 0;
};
