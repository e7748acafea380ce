// How long the speech of a text will be, before any of it is spoken, and whether it can be saved.
#pragma once

#include <cstddef>
#include <string>

struct SpeechEstimate {
    double seconds = 0;
    long long bytes = 0;  // of a WAV file as the engine writes it
};

// By the length of the text in bytes; voices differ by some 15 %.
SpeechEstimate EstimateSpeech(std::size_t textBytes);

// Bytes of text whose speech one sound file can hold, with a margin for slow voices.
std::size_t LargestTextForOneFile();

// Why the speech of so much text cannot be saved in one file in the folder, as a sentence for the
// user that names what would fit: too long for the sizes in a file, or too little room on the disk.
// Empty when it can be.
std::string SavingProblem(std::size_t textBytes, const std::string& folder);
