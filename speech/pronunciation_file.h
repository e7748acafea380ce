// Lists of what is said differently, as text files that people write, share and hand on.
//
//   # name            said as        for           how
//   Nguyen<Tab>win
//   Polish<Tab>poh-lish<Tab>en<Tab>case
//   \[\d+\]<Tab><Tab><Tab>pattern
//
// Columns between tabs, in UTF-8: the text; what is said in its place, nothing when it is skipped;
// for what, a language ("de"), a voice ("festival:kal_diphone") or nothing for all; and "case",
// "pattern" or both. Lines that begin with "#" and empty ones say nothing.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "speech/pronunciation.h"

// Empty, or why there can be no such entry, in a sentence for the user.
std::string ProblemOf(const Pronunciation& entry);

struct PronunciationList {
    std::vector<Pronunciation> entries;
    std::string below = {};   // what stands behind the last entry and says nothing
    std::size_t leftOut = 0;  // lines that nothing can be made of; they are kept as they are
    int error = 0;            // the errno with which the file could not be read
};

PronunciationList ParsePronunciations(std::string_view file);
std::string FormatPronunciationList(const PronunciationList& list);
// The entries alone, for who asks whether others say the same.
std::string FormatPronunciations(const std::vector<Pronunciation>& entries);
// What stands above it stays.
void RemovePronunciation(PronunciationList& list, std::size_t entry);

// The same of a list that another program has written: two columns, parted by a tab, "=", ";" or
// ",", whichever most lines have, the words perhaps in quotation marks.
std::vector<Pronunciation> ImportPronunciations(std::string_view file, std::size_t& leftOut);

// The user's own list and, behind it, the one that an administrator has made for everybody. The log
// tells what cannot be read.
PronunciationList LoadOwnPronunciations();
PronunciationList LoadMachinePronunciations();
std::string OwnPronunciationsPath();
// 0 or the errno: EFBIG for a list that could not be read again. What replaces a list that could
// not be read is refused with its error.
int StoreOwnPronunciations(const PronunciationList& list);
// Changes whenever one of the two files does.
std::string PronunciationFilesState();
