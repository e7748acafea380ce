// Speech as it is listened to, to be kept.
#pragma once

#include "sound/sound_source.h"

// The rest of the source so many percent as fast, at its own pitch, its times those of what is
// heard. It is read from its beginning to its end; Seek does nothing.
LSoundSource AtTempo(const LSoundSource& source, int percent);
