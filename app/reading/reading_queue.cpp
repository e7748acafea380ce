#include "app/reading/reading_queue.h"

#include <algorithm>
#include <utility>

std::vector<ReadingQueue::File> ReadingQueue::Files() const {
    std::vector<File> files;
    for (const Waiting& each : texts_)
        if (!each.text.path.empty())
            files.push_back({each.id, each.text.path});
    return files;
}

std::deque<ReadingQueue::Waiting>::iterator ReadingQueue::Find(int id) {
    return std::ranges::find(texts_, id, &Waiting::id);
}

void ReadingQueue::Add(QueuedText text) {
    const auto aside = std::ranges::find(texts_, true, &Waiting::isAside);
    texts_.insert(aside, {++lastId_, std::move(text)});
    Tell();
}

void ReadingQueue::AddAside(QueuedText text) {
    texts_.push_back({++lastId_, std::move(text), true});
    Tell();
}

// Those in front begin by themselves, whichever these are.
bool ReadingQueue::Move(int id, int step) {
    const auto from = Find(id);
    if (from == texts_.end() || (step < 0 && from == texts_.begin()) ||
        (step > 0 && std::next(from) == texts_.end()))
        return false;
    std::swap(from->id, (from + step)->id);
    std::swap(from->text, (from + step)->text);
    Tell();
    return true;
}

void ReadingQueue::MoveToFront(int id) {
    const auto from = Find(id);
    if (from == texts_.end())
        return;
    Waiting first = std::move(*from);
    texts_.erase(from);
    first.isAside = false;
    texts_.push_front(std::move(first));
    Tell();
}

void ReadingQueue::Remove(int id) {
    if (const auto found = Find(id); found != texts_.end()) {
        texts_.erase(found);
        Tell();
    }
}

// What goes may be asked for its place here.
void ReadingQueue::Clear() {
    const std::deque<Waiting> gone = std::exchange(texts_, {});
    if (!gone.empty())
        Tell();
}

void ReadingQueue::SetAside() {
    std::deque<Waiting> files;
    const std::deque<Waiting> all = std::exchange(texts_, {});
    for (const Waiting& each : all)
        if (!each.text.path.empty())
            files.push_back({each.id, each.text, true});
    texts_ = std::move(files);
    if (!all.empty())
        Tell();
}

void ReadingQueue::TakeUp() {
    for (Waiting& each : texts_)
        each.isAside = false;
    Tell();
}

QueuedText ReadingQueue::TakeFirst() {
    QueuedText first = std::move(texts_.front().text);
    texts_.pop_front();
    Tell();
    return first;
}

void ReadingQueue::PutBack(QueuedText text) {
    texts_.push_front({++lastId_, std::move(text)});
    Tell();
}
