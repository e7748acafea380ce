// How long and how large a book will be, before any of it is spoken.
#pragma once

#include "books/book_run.h"

struct BookEstimate {
    double seconds = 0;
    long long bytes = 0;
};

BookEstimate EstimateBook(const BookOrder& order);  // voices differ by some 15 %
double SecondsOfChapter(const BookOrder& order, const BookChapter& chapter);

// What speech needs, in kilobits a second.
int SpeechKilobits(SoundType type, int rate);
