// How long the speech of a text will be, before any of it is spoken, and whether it can be saved.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

struct SpeechEstimate {
    double seconds = 0;
    long long bytes = 0;  // of a WAV file as the engine writes it
};

// What a voice takes about as long for as for a letter of English: an ideograph counts as five, a
// syllable of Japanese or Korean as two.
std::size_t LettersIn(std::string_view text);
// How many of the text's own characters are as long as so many of these.
std::size_t OwnLetters(std::size_t letters, std::string_view text);

// Of these. Voices and languages differ by some 15 %.
SpeechEstimate EstimateSpeech(std::size_t letters);

// Letters whose speech one sound file can hold, with a margin for slow voices.
std::size_t LargestTextForOneFile();

// Why the speech of the text cannot be saved in one file in the folder, as a sentence for
// the user that names what would fit: too long for the sizes in a file, or too little room on the
// disk. Empty when it can be.
std::string SavingProblem(std::string_view text, const std::string& folder);
