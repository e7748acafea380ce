// How books and their states are called.
#pragma once

#include <string>

#include "books/book_queue.h"

std::string LengthText(double seconds);    // "2:05:00"
std::string SizeText(double bytes);        // "27 MB"
std::string SilenceText(int seconds);      // "2 seconds after chapters"
std::string TimeLeftText(double seconds);  // "5 minutes left"

// A few words, for a list.
std::string StateText(const BookState& state, bool isPaused);
// All that there is to tell, in sentences; of what goes to target.
std::string StateDetails(const BookState& state, const std::string& target);
