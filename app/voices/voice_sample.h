// A few words heard from within a dialog.
#pragma once

#include <gtk/gtk.h>

#include <string>
#include <vector>

#include "app/reading/dialogs/reading_troubles.h"
#include "app/reading/dialogs/reading_wait_box.h"
#include "app/reading/narrator.h"
#include "speech/voice_manner.h"

// A reading of its own: that of the main window stays where it is. GUI thread; belongs to a dialog
// that runs.
class VoiceSample {
public:
    VoiceSample();
    ~VoiceSample();
    VoiceSample(const VoiceSample&) = delete;
    VoiceSample& operator=(const VoiceSample&) = delete;

    // As it stands, without the pronunciation list, in that voice alone; manners as for
    // SpeakingRules, none: as they are kept.
    void Hear(GtkWidget* parent, const std::string& text, int voice,
              std::vector<VoiceManner> manners = {});

private:
    GtkWidget* parent_ = nullptr;
    Narrator narrator_;
    ReadingWaitBox waitBox_;
    ReadingTroubles troubles_;
};
