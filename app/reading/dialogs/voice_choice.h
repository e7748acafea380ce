// The list of voices in the main window, and the voice that reads.
#pragma once

#include <functional>

#include "app/reading/narrator.h"
#include "foundation/gdk/queued_notify.h"
#include "gui/windows/window.h"
#include "speech/voice_list_query.h"

// Fills a combo box with the engine's voices as soon as the engine has answered; nothing waits for
// that but Await. GUI thread.
class VoiceChoice : private LThreadQueuedNotify {
public:
    // The combo box `list` of the window; both outlive this object. A reading that waits for the
    // engine's answer gets its voice. `missing` tells that there is no voice, in a box.
    VoiceChoice(LWindow& window, int list, Narrator& narrator, std::function<void()> missing);

    // Shows the voices that have become known since, whoever asked for them.
    void Update() { Fill(); }
    void Ask() { query_.Ask(); }  // at once; after an answer without voices asks again

    // The voice that reads, for which the engine is awaited under a progress dialog; below 0: there
    // is none, which the user has been told, or he wants none.
    int Require();

    // Whatever was typed into the list, the voice chosen last reads: a typed name chooses its
    // voice, anything else is put right. Index into the engine's voices, -1 while there are none.
    int Chosen();
    bool NoteChange();  // the list's selection may have changed, which is stored then
    void TakeChosen();  // that was chosen and stored elsewhere
    // What was typed, too, for the next start; nothing known, nothing stored. A voice that only
    // stands in for one that is missing today is none that was chosen.
    void Store();

private:
    void EvNotify() override;
    void Fill();
    LProcessResult Await();

    LWindow& window_;
    const int list_;
    Narrator& narrator_;
    const std::function<void()> missing_;
    bool isRequired_ = false;  // by somebody who tells what comes of it
    int shown_ = 0;            // voices in the list
    int chosen_ = -1;
    VoiceListQuery query_;  // last: its thread ends before what it notifies
};
