// The list of voices in the main window, and the voice that reads.
#pragma once

#include <functional>

#include "foundation/gdk/queued_notify.h"
#include "gui/windows/window.h"
#include "speech/voice_list_query.h"

// Fills a combo box with the engine's voices as soon as the engine has answered; nothing waits for
// that but Await. GUI thread.
class VoiceChoice : private LThreadQueuedNotify {
public:
    // The combo box `list` of the window, which outlives this object. `answered` is called on the
    // GUI thread, from the main loop, when the engine has answered or turned out to be missing.
    VoiceChoice(LWindow& window, int list, std::function<void()> answered);

    // Shows the voices that have become known since, whoever asked for them.
    void Update() { Fill(); }
    void Ask() { query_.Ask(); }  // at once; after an answer without voices asks again
    bool IsKnown() const { return query_.State() == VoiceListState::kKnown; }

    // Asks again and waits under a progress dialog until the engine has answered. Done: there are
    // voices.
    LProcessResult Await(GtkWidget* parent);

    // Whatever was typed into the list, the voice chosen last reads: a typed name chooses its
    // voice, anything else is put right. Index into the engine's voices, -1 while there are none.
    int Chosen();
    void NoteChange();  // the list's selection has changed; stored
    void Store();       // what was typed, too, for the next start; nothing known, nothing stored

private:
    void EvNotify() override;
    void Fill();

    LWindow& window_;
    const int list_;
    std::function<void()> answered_;
    int shown_ = 0;  // voices in the list
    int chosen_ = -1;
    VoiceListQuery query_;  // last: its thread ends before what it notifies
};
