// A sound with silence behind it.
#pragma once

#include "sound/sound_source.h"

// The same where there is no pause. One thread at a time, the sound's.
LSoundSource WithPause(const LSoundSource& sound, int milliseconds);
