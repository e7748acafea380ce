// How much sound a text of so many letters (speech_estimate.h) will be, before any of it is spoken.
#pragma once

#include <cstddef>

struct SpeechSize {
    long long speechBytes;  // as the engine speaks it
    long long fileBytes;    // as 16-bit samples of the rate and channels asked for
    bool fits;              // one sound file can hold it
    std::size_t surelyFit;  // letters of which that is certain, whatever the voice
};

SpeechSize EstimateSpeechSize(std::size_t letters, int rate, int channels);

// Of speech that is there.
bool FitsIntoFile(double seconds, int rate, int channels);
