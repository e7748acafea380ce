// The words that are marked while a sound is heard.
#pragma once

#include <string>
#include <vector>

#include "speech/speech_track.h"

// "100 word" for each that is marked, the frame its first.
inline std::vector<std::string> MarkedWords(const SpeechTrack& track, const std::string& text) {
    std::vector<std::string> words;
    for (int frame = 0; frame < track.Frames();) {
        const auto word = track.WordAt(frame);
        if (word && word->sourceBegin < word->sourceEnd)
            words.push_back(std::to_string(frame) + " " +
                            text.substr(word->sourceBegin, word->sourceEnd - word->sourceBegin));
        frame = word ? word->endFrame : track.NextSentence(frame);
    }
    return words;
}
