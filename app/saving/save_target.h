// Where speech is saved, and as what: the file chooser, and what is asked about the format.
#pragma once

#include <gtk/gtk.h>

#include <optional>
#include <string>

#include "formats/sound_types.h"

struct SaveTarget {
    std::string path;
    SoundType type;
    bool asksSettings;  // the format's, before it is written
    bool replaces;      // the user has agreed to the end of the file that stands there
};

// The name's ending decides the format; where it tells none, the format that the chooser shows.
// Nothing: the user thought better of it. GUI thread, GDK lock held.
std::optional<SaveTarget> ChooseSaveTarget(GtkWidget* parent, const std::string& suggestedName);

// Opens writePath as the target's format, with the user's settings or with those he is asked for.
// Nothing: he thought better of it. A sink that could not be opened says so by its status.
std::optional<LSoundSink> OpenTargetSink(GtkWidget* parent, const SaveTarget& target,
                                         const std::string& writePath, const LRawSettings& asked);
