// A card's name and its playback volume. Every call opens and closes the card's control.
#pragma once

#include <string>

#include "sound/level.h"

constexpr int kMaxCards = 16;

// The card's name, empty when its control cannot be opened.
std::string CardName(int card);

enum class MixerResult { kDone, kCannotOpen, kFailed, kUnanswered };

// `device` is ALSA's name of a card or of the sound server.
// Sets every simple element but "Capture" from -36 dB (bottom) to +12 dB (top of its range),
// clamped.
MixerResult SetMixerVolume(const std::string& device, long decibels);
// Reads every such element's volume and discards it: tells whether the mixer answers.
MixerResult ProbeMixer(const std::string& device);

// The raw value of a volume: linear, not offset by the range's minimum, so hardware whose minimum
// is not 0 is shifted.
long MixerRawVolume(long decibels, long minimum, long maximum);
