// Chapters that are equally loud, whoever speaks them (EBU R 128).
#pragma once

#include "sound/sound_source.h"

constexpr double kBookLoudness = -19;  // LUFS, of one channel

// Of the rest of the source, which is read; nothing below -70 for silence.
double LoudnessOf(const LSoundSource& source);

// The source louder by so many decibels, its peaks kept 1 dB below full scale and a little more, so
// that what lies between the samples stays below that, too.
LSoundSource Louder(const LSoundSource& source, double decibels);
