#include "books/book_queue.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kYieldingPriority = -10;  // nice 10, for engines and encoders too
constexpr double kSurePart = 0.002;     // of a book, before its pace says anything

double SecondsSince(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

}  // namespace

struct BookQueue::Book {
    std::optional<BookOrder> order;  // the thread's once it is at work
    std::size_t bytes = 0;
    bool isToBreakOff = false;
    BookState state;
};

// What the work sees; on the queue's thread.
class BookQueue::Progress final : public LProgress {
public:
    Progress(BookQueue& queue, Book& book) : queue_(queue), book_(book) {}

    bool IsShown() const override { return true; }
    void SetFirstLabel(const char* text) override {
        const std::lock_guard lock(queue_.mutex_);
        book_.state.label = text;
    }
    void SetSecondLabel(const char*) override {}
    void SetFraction(double fraction) override {
        const std::lock_guard lock(queue_.mutex_);
        book_.state.fraction = fraction;
        // What an earlier run had finished says nothing of this one's pace.
        if (const double part = fraction - first_; hasBegun_ && part > kSurePart)
            queue_.bytesASecond_ =
                part * static_cast<double>(book_.bytes) / (SecondsSince(begin_) - paused_);
    }
    bool IsToStop() override {
        const std::lock_guard lock(queue_.mutex_);
        return queue_.IsStopping() || book_.isToBreakOff;
    }
    LProcessResult ProcessWaitSignal(LSignalObjectRef signal, unsigned int milliseconds) override {
        if (!std::exchange(hasBegun_, true)) {
            begin_ = Clock::now();
            const std::lock_guard lock(queue_.mutex_);
            first_ = book_.state.fraction;
        }
        while (GoesOn()) {
            if (signal.IsSignaled())
                return kProcessDone;
            if (!signal.WaitSignalTriple(queue_.StopSignal(), queue_.changed_.Ref(), milliseconds))
                return kProcessFailed;
        }
        return kProcessStopped;
    }
    LProcessResult ProcessWait(unsigned int milliseconds) override {
        return queue_.StopSignal().WaitSignal(milliseconds) || IsToStop() ? kProcessStopped
                                                                          : kProcessDone;
    }

private:
    // Waits while it is paused; false: to stop.
    bool GoesOn() {
        const Clock::time_point begin = Clock::now();
        for (bool waited = false;; waited = true) {
            {
                const std::lock_guard lock(queue_.mutex_);
                queue_.changed_.Reset();
                if (queue_.IsStopping() || book_.isToBreakOff)
                    return false;
                if (!queue_.isPaused_) {
                    paused_ += waited ? SecondsSince(begin) : 0;
                    return true;
                }
            }
            WaitForever(queue_.changed_.Ref(), queue_.StopSignal());
        }
    }
    static void WaitForever(LSignalObjectRef one, LSignalObjectRef other) {
        constexpr unsigned int kLong = 1U << 30;
        while (!one.WaitSignalDual(other, kLong)) {
        }
    }

    BookQueue& queue_;
    Book& book_;
    bool hasBegun_ = false;  // the engine
    Clock::time_point begin_;
    double paused_ = 0;
    double first_ = 0;
};

BookQueue::~BookQueue() {
    StopThreadSoon();
    Join();
}

std::size_t BookQueue::Add(BookOrder order) {
    auto book = std::make_shared<Book>();
    book->bytes = order.text.size();
    book->order = std::move(order);
    std::size_t number = 0;
    {
        const std::lock_guard lock(mutex_);
        number = books_.size();
        books_.push_back(std::move(book));
        changed_.Signal();
    }
    Start(kYieldingPriority);
    return number;
}

BookState BookQueue::StateOf(std::size_t book) const {
    const std::lock_guard lock(mutex_);
    BookState state = books_[book]->state;
    if ((state.stage != BookStage::kAtWork && state.stage != BookStage::kWaiting) ||
        bytesASecond_ <= 0)
        return state;
    double bytes = 0;
    for (std::size_t i = 0; i <= book; ++i) {
        const Book& each = *books_[i];
        if (each.state.stage == BookStage::kAtWork || each.state.stage == BookStage::kWaiting)
            bytes += (1 - each.state.fraction) * static_cast<double>(each.bytes);
    }
    state.secondsLeft = bytes / bytesASecond_;
    return state;
}

void BookQueue::BreakOff(std::size_t book) {
    const std::lock_guard lock(mutex_);
    Book& broken = *books_[book];
    broken.isToBreakOff = true;
    if (broken.state.stage == BookStage::kWaiting) {
        broken.state.stage = BookStage::kBrokenOff;
        broken.order.reset();
    }
    changed_.Signal();
}

bool BookQueue::IsAtWork() const {
    const std::lock_guard lock(mutex_);
    return std::ranges::any_of(books_, [](const auto& book) {
        return book->state.stage == BookStage::kWaiting || book->state.stage == BookStage::kAtWork;
    });
}

void BookQueue::Pause(bool pauses) {
    const std::lock_guard lock(mutex_);
    isPaused_ = pauses;
    changed_.Signal();
}

bool BookQueue::IsPaused() const {
    const std::lock_guard lock(mutex_);
    return isPaused_;
}

std::shared_ptr<BookQueue::Book> BookQueue::NextBook() {
    const std::lock_guard lock(mutex_);
    changed_.Reset();
    for (const auto& book : books_) {
        if (book->state.stage != BookStage::kWaiting || isPaused_)
            continue;
        book->state.stage = BookStage::kAtWork;
        return book;
    }
    return nullptr;
}

void BookQueue::ThreadFunction() {
    while (!IsStopping()) {
        const std::shared_ptr<Book> book = NextBook();
        if (book == nullptr) {
            ProcessWaitSignalForever(*this, changed_.Ref());
            continue;
        }
        Progress progress(*this, *book);
        BookResult result = MakeBook(*std::exchange(book->order, std::nullopt), progress);
        const std::lock_guard lock(mutex_);
        book->state.stage = result.isDone ? BookStage::kDone : BookStage::kBrokenOff;
        book->state.result = std::move(result);
    }
}
