// How long and how large a book will be, before any of it is spoken.
#pragma once

#include <cstddef>

#include "books/book_order.h"

struct BookEstimate {
    double seconds = 0;
    long long bytes = 0;
    long long bytesMeanwhile = 0;  // what stands beside it while it is made
};

// Of a book that is ordered in that manner, whose own plan does not count. Voices differ by some
// 15 %.
BookEstimate EstimateBook(const BookPlan& plan, const BookOrder& manner);
double SecondsOfChapter(const BookOrder& manner, const BookChapter& chapter);

// What no book of that order falls below, whichever voices and languages are still to come: its
// seconds, and its frames where the text before a byte has taken so many at a rate.
double LeastSeconds(const BookOrder& order);
double LeastFrames(const BookOrder& order, std::size_t end, double frames, int rate);

// What speech needs, in kilobits a second.
int SpeechKilobits(SoundType type, int rate);
