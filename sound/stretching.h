// How the stretching library is set for speech.
#pragma once

#include <SoundTouch.h>

constexpr float kStretchScale = 524288;

// For speech the library's makers advise shorter stretches than for music: sequence, search and
// overlap in milliseconds.
constexpr int kSequence = 40;
constexpr int kSearch = 15;
constexpr int kOverlap = 8;

inline void SetForSpeech(soundtouch::SoundTouch& stretcher) {
    stretcher.setSetting(SETTING_SEQUENCE_MS, kSequence);
    stretcher.setSetting(SETTING_SEEKWINDOW_MS, kSearch);
    stretcher.setSetting(SETTING_OVERLAP_MS, kOverlap);
}
