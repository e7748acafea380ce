// What every document reader asks while it works: may it go on?
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "documents/document.h"

// The most text that one document may give: books have 1 MB.
constexpr std::size_t kLargestDocumentText = 64U << 20;

// One document, one thread.
class ReadingWatch {
public:
    explicit ReadingWatch(const StopTest& isToStop) : isToStop_(isToStop) {}

    // The same for a part of the document that takes time of its own.
    ReadingWatch Anew() const { return ReadingWatch(isToStop_); }

    bool IsToEnd() const { return WasStopped() || IsLate(); }
    // The sentence for a reading that was ended.
    std::string Problem() const {
        return WasStopped() ? "Reading the document was stopped."
                            : "The document takes too long to read.";
    }

private:
    bool WasStopped() const { return isToStop_ && isToStop_(); }
    bool IsLate() const { return std::chrono::steady_clock::now() > end_; }

    const StopTest& isToStop_;
    std::chrono::steady_clock::time_point end_ =
        std::chrono::steady_clock::now() + std::chrono::seconds(30);
};
