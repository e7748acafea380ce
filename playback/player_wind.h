// The rewind or forward of a player, which lasts as long as its button is held.
#pragma once

#include <glib.h>

#include "sound/sound_source.h"

// GUI thread.
class PlayerWind {
public:
    enum class Way { kBack, kForward };
    enum class Before { kIdle, kCued, kPlaying };  // what the wind interrupts

    // The source as it is heard from now on: from its position that way, ever faster, and slower
    // where it was not being heard before.
    LSoundSource Begin(Way way, Before before, const LSoundSource& source);
    Before End();

    bool IsOn() const { return isOn_; }
    bool Is(Way way) const { return isOn_ && way_ == way; }
    double Factor() const;  // of the speech's own speed, at this moment; below 0 backwards

private:
    bool isOn_ = false;
    Way way_ = Way::kBack;
    Before before_ = Before::kIdle;
    double first_ = 0;  // factors at the beginning and after the ramp
    double last_ = 0;
    gint64 begin_ = 0;  // monotonic microseconds
};
