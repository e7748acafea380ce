// What a stretch of playback tells of itself.
#pragma once

#include <string>

#include "sound/level.h"

// Why playback ended by itself.
enum class PlayTrouble {
    kNone,         // played to the end, stopped by the owner, or still playing
    kCannotOpen,   // no such card, or another program holds it; no sound server either
    kCannotSetUp,  // the card refused the sound's parameters
    kDeviceLost,   // the card vanished, failed or stood still while playing
};

// Where the sound goes.
struct PlayRoute {
    enum class Way {
        kAsked,    // to the device that was asked for
        kAwaited,  // nowhere yet: another program holds the card, which is tried again
        kServer,   // to the sound server, since the card that was asked for cannot be had
    };
    Way way = Way::kAsked;
    bool isBusy = false;  // the card is there, but another program holds it
    std::string holder;   // the name of that program, when the kernel tells
};

// Frames are the owner's source's own, whatever the card is given.
struct PlayNews {
    bool hasBlock = false;   // another block is being heard: its start and its levels are told
    bool hasEnded = false;   // heard to the end, or the card could not be opened
    bool hasFailed = false;  // ended without an end; trouble says why
    bool hasRoute = false;   // not what it was
    PlayRoute route;
    PlayTrouble trouble = PlayTrouble::kNone;
    int frame = 0;     // where playback would go on: start of the block being heard
    int endFrame = 0;  // grows while the source streams
    LDBMC levels;
};
