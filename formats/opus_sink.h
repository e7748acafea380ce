// Opus in Ogg, written through libopusenc.
#pragma once

#include "sound/sound_sink.h"

constexpr int kOpusRate = 48000;  // what the codec works at; callers convert to it

// kilobits a second, of the whole; 0 leaves it to the encoder. A sink of kOpusRate.
LSoundSink OpenOpusSink(const char* path, unsigned char channels, int kilobits);
