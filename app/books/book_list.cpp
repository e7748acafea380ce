#include "app/books/book_list.h"

#include <glib.h>
#include <sys/stat.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "app/books/book_text.h"
#include "books/book_work.h"
#include "books/subtitles.h"
#include "books/unfinished_book.h"

namespace {

bool Stands(const std::string& path) {
    struct stat info = {};
    return ::lstat(path.c_str(), &info) == 0;
}

// What stands at the path is a book, or something else of the user's; an unfinished folder of ours
// is gone on with.
bool IsTaken(const std::string& target, const BookChoices& choices) {
    if (target.back() == '/')
        return Stands(target) && !Stands(target + ".lectora-book");
    const std::string stem = target.substr(0, target.rfind('.') + 1);
    return Stands(target) || (choices.subtitles && Stands(stem + EndingOf(*choices.subtitles)));
}

// Of a book that goes on as begun, with subtitles that are not chosen now: nobody was asked whether
// these may be replaced.
bool IsUnaskedTaken(const BookOrder& order, const BookChoices& choices) {
    return order.subtitles && order.subtitles != choices.subtitles && order.target.back() != '/' &&
           Stands(SubtitlesPath(order.target, *order.subtitles));
}

void AddLine(std::string& lines, const std::string& line) {
    lines += (lines.empty() ? "" : "\n") + line;
}

// Takes what is finished of a book to a free name in the format in which it was begun, whatever is
// chosen now. Empty: it cannot be moved.
std::string MoveToItsFormat(const BookOrder& order) {
    if (order.target.back() == '/')
        return order.target;
    BookChoices begun;
    begun.type = order.type;
    begun.isReadAlong = order.isReadAlong;
    const std::string stem = order.target.substr(0, order.target.rfind('.'));
    const std::string ending = std::string(".") + EndingOf(begun);
    std::string target = stem + ending;
    if (target == order.target)
        return target;
    const auto isFree = [&target] {
        const std::string work = WorkFolderFor(target);
        return !Stands(target) && !Stands(work.substr(0, work.size() - 1));
    };
    for (int number = 2; !isFree(); ++number)
        target = stem + " " + std::to_string(number) + ending;
    return MoveUnfinished(order.target, target) ? target : "";
}

}  // namespace

bool BookList::Add(BookEntry entry, bool again) {
    for (std::size_t i = 0; i < entries_.size(); ++i)
        if (!(again && IsDone(i)) && entries_[i].path == entry.path &&
            entries_[i].text == entry.text)
            return false;
    entries_.push_back(std::move(entry));
    return true;
}

void BookList::Remove(std::size_t index) {
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(index));
    Keep();
}

BookState BookList::StateOf(std::size_t index) const {
    return queue_.StateOf(*entries_[index].number);
}

bool BookList::IsDone(std::size_t index) const {
    return entries_[index].number && StateOf(index).stage == BookStage::kDone;
}

bool BookList::IsOpen(std::size_t index) const {
    return !entries_[index].number || StateOf(index).stage == BookStage::kBrokenOff;
}

BookEstimate BookList::EstimateOf(std::size_t index, const BookOrder& manner) const {
    return EstimateBook(entries_[index].plan, manner);
}

BookEstimate BookList::EstimateOfOpen(const BookOrder& manner) const {
    BookEstimate whole;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (!IsOpen(i))
            continue;
        const BookEstimate one = EstimateOf(i, manner);
        whole.seconds += one.seconds;
        whole.bytes += one.bytes;
        whole.bytesMeanwhile = std::max(whole.bytesMeanwhile, one.bytesMeanwhile);
    }
    return whole;
}

std::set<std::string> BookList::TakenTargets(const BookChoices& choices) {
    std::vector<std::string> others;
    for (std::size_t i = 0; i < entries_.size(); ++i)
        if (!IsOpen(i))
            others.push_back(entries_[i].target);
    std::set<std::string> taken;
    bool hasMoved = false;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (!IsOpen(i))
            continue;
        entries_[i].target =
            TargetOf(entries_[i], choices.folder, EndingOf(choices), choices.inChapters, others);
        if (!entries_[i].begunAt.empty() && entries_[i].begunAt != entries_[i].target) {
            if (MoveUnfinished(entries_[i].begunAt, entries_[i].target)) {
                hasMoved = true;
                entries_[i].begunAt = entries_[i].target;
            }
        }
        others.push_back(entries_[i].target);
        if (IsTaken(entries_[i].target, choices))
            taken.insert(entries_[i].target);
    }
    if (hasMoved)
        Keep();  // also where the user starts nothing, then
    return taken;
}

BookOrder BookList::OrderOfEntry(const BookEntry& entry, const BookOrder& manner) const {
    BookOrder order = manner;
    order.plan = entry.plan;
    order.text = entry.text;
    order.rules.marks = entry.marks;
    order.target = entry.target;
    return order;
}

BegunOtherwise BookList::BegunOtherwiseThan(const BookChoices& choices, int voice) const {
    const BookOrder manner = OrderOf(choices, voice);
    BegunOtherwise books;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (!IsOpen(i))
            continue;
        const BookEntry& entry = entries_[i];
        const std::string begun = entry.plan.title + ": begun ";
        if (const auto book = FindUnfinished(OrderOfEntry(entry, manner)))
            AddLine(book->asBegun ? books.canGoOn : books.cannot,
                    begun + "with " + book->difference + ".");
        // It could not be moved, maybe because of what stands there.
        if (!entry.begunAt.empty() && entry.begunAt != entry.target)
            AddLine(books.cannot, begun + "as " + entry.begunAt + ".");
    }
    return books;
}

std::string BookList::Start(const BookChoices& choices, int voice,
                            const std::set<std::string>& replaced, bool asBegun) {
    if (folder_ == nullptr || !folder_->IsMade())
        folder_ = std::make_unique<WorkFolder>("lectora-books");
    if (!folder_->IsMade())
        return "There is no room for temporary files.";
    std::string problems;
    const BookOrder manner = OrderOf(choices, voice);
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (!IsOpen(i))
            continue;
        BookEntry& entry = entries_[i];
        BookOrder order = OrderOfEntry(entry, manner);
        if (std::optional<UnfinishedBook> book = asBegun ? FindUnfinished(order) : std::nullopt;
            book && book->asBegun) {
            const std::string target = MoveToItsFormat(*book->asBegun);
            if (target.empty()) {
                AddLine(problems, entry.plan.title +
                                      ": what is finished of it cannot be moved, as "
                                      "another program is at work on it, maybe. It "
                                      "is not started.");
                continue;
            }
            order = *std::move(book->asBegun);
            entry.target = order.target = target;
        }
        order.overwrites = replaced.contains(entry.target) && !IsUnaskedTaken(order, choices);
        order.engineFolder = folder_->Path();
        entry.voice = KeyOf(VoiceAt(order.voice));
        entry.begunAt = entry.target;
        if (const int error = entry.path.empty() && entry.keptAs.empty() ? StoreBookText(entry) : 0;
            error != 0)
            AddLine(problems, entry.plan.title + ": its text cannot be kept for the next start: " +
                                  g_strerror(error) + ".");
        entry.isToldOf = false;
        entry.number = queue_.Add(std::move(order));
    }
    if (const int error = Keep(); error != 0)
        AddLine(problems, std::string("The list cannot be kept for the next start: ") +
                              g_strerror(error) + ".");
    return problems;
}

void BookList::BreakOff(std::size_t index) {
    if (IsOnItsWay(index))
        queue_.BreakOff(*entries_[index].number);
}

double BookList::Fraction() const {
    double made = 0;
    double all = 0;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (IsOpen(i))
            continue;
        const auto size = static_cast<double>(entries_[i].text.size());
        all += size;
        made += size * (IsDone(i) ? 1 : StateOf(i).fraction);
    }
    return all > 0 ? made / all : 0;
}

std::vector<std::size_t> BookList::TakeEnds() {
    std::vector<std::size_t> ends;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (!entries_[i].number || IsOnItsWay(i) || std::exchange(entries_[i].isToldOf, true))
            continue;
        ends.push_back(i);
    }
    if (!ends.empty())
        Keep();
    return ends;
}

int BookList::Keep() const {
    std::vector<KeptBook> books;
    for (std::size_t i = 0; i < entries_.size(); ++i)
        if ((entries_[i].number || !entries_[i].begunAt.empty()) && !IsDone(i))
            books.push_back(KeptOf(entries_[i]));
    books.insert(books.end(), later_.begin(), later_.end());
    return StoreKeptBooks(books);
}
