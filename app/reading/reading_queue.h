// The texts that wait to be read.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "foundation/broadcast.h"

struct QueuedText {
    enum class Begun { kYes, kFailed, kNotNow };
    // Reads it (Narrator::Read), or says why it does not; called from the main loop.
    std::function<Begun()> begin;
    // Of the file that it reads. Without one it is not seen by the user, and is of use at once or
    // never.
    std::string path = {};
};

// In the order in which they are read. What the user has set aside stays, behind the others, and
// waits to be asked for. GUI thread.
class ReadingQueue {
public:
    struct File {
        int id;  // of no other text, ever
        std::string path;
    };

    LBroadcast<std::vector<File>>& Changes() { return changes_; }  // of Files() and IsAside()
    std::vector<File> Files() const;
    bool IsAside() const { return !texts_.empty() && texts_.front().isAside; }
    bool IsEmpty() const { return texts_.empty(); }
    std::size_t Length() const { return texts_.size(); }

    void Add(QueuedText text);  // behind those that are to come
    void AddAside(QueuedText text);
    // Among the files: -1 sooner, 1 later. False when it is the first or last already.
    bool Move(int id, int step);
    void MoveToFront(int id);
    void Remove(int id);
    void Clear();
    void SetAside();  // nothing begins by itself; what is no file is dropped
    void TakeUp();    // that is over

    bool MayBegin() const { return !IsEmpty() && !IsAside(); }
    QueuedText TakeFirst();
    void PutBack(QueuedText text);  // what was taken, and could not begin yet

private:
    struct Waiting {
        int id;
        QueuedText text;
        bool isAside = false;
    };
    std::deque<Waiting>::iterator Find(int id);
    void Tell() { changes_.Tell(Files()); }

    std::deque<Waiting> texts_;
    int lastId_ = 0;
    LBroadcast<std::vector<File>> changes_;
};
