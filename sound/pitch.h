// A voice higher or lower than it is, at its own speed, and softer.
#pragma once

#include "sound/sound_source.h"

// In percent of its own; 100 and 100 give the sound itself, else one of the same length in memory.
// The sound is at an end, not streaming.
LSoundSource AtPitchAndVolume(const LSoundSource& sound, int pitchPercent, int volumePercent);
