// What every document reader asks while it works: may it go on? And whom it tells how far it is.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "documents/document.h"
#include "documents/growing_document.h"

// The most text that one document may give: books have 1 MB.
constexpr std::size_t kLargestDocumentText = 64U << 20;

// One document, one thread.
class ReadingWatch {
public:
    static constexpr std::chrono::seconds kPatience{30};

    // take: null where the whole alone is wanted.
    explicit ReadingWatch(const StopTest& isToStop, const BeginningTaker* take = nullptr)
        : isToStop_(isToStop), take_(take) {}

    // The same for a part of the document that takes time of its own.
    ReadingWatch Anew(std::chrono::seconds patience = kPatience) const {
        ReadingWatch watch(isToStop_, take_);
        watch.end_ = std::chrono::steady_clock::now() + patience;
        return watch;
    }

    bool WantsBeginning() const { return take_ != nullptr; }
    void TellBeginning(const Document& beginning) const { (*take_)(beginning); }

    bool IsToEnd() const { return WasStopped() || IsLate(); }
    bool WasStopped() const { return isToStop_ && isToStop_(); }
    // The sentence for a reading that was ended.
    std::string Problem() const {
        return WasStopped() ? "Reading the document was stopped."
                            : "The document takes too long to read.";
    }

private:
    bool IsLate() const { return std::chrono::steady_clock::now() > end_; }

    const StopTest& isToStop_;
    const BeginningTaker* take_;
    std::chrono::steady_clock::time_point end_ = std::chrono::steady_clock::now() + kPatience;
};
