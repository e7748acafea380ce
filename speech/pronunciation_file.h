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

// Lines that say nothing that can be used are counted in leftOut.
std::vector<Pronunciation> ParsePronunciations(std::string_view file, std::size_t& leftOut);
std::string FormatPronunciations(const std::vector<Pronunciation>& entries);

// The same of a list that another program has written: two columns, parted by a tab, "=", ";" or
// ",", whichever most lines have, the words perhaps in quotation marks.
std::vector<Pronunciation> ImportPronunciations(std::string_view file, std::size_t& leftOut);

// The user's own list and, behind it, the one that an administrator has made for everybody. What
// cannot be read is an empty list; the log says so.
std::vector<Pronunciation> LoadOwnPronunciations();
std::vector<Pronunciation> LoadMachinePronunciations();
// 0 or the errno.
int StoreOwnPronunciations(const std::vector<Pronunciation>& entries);
// Changes whenever one of the two files does.
std::string PronunciationFilesState();
