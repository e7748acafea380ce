// Does what is asked from outside the windows.
#pragma once

#include <string>

#include "app/control/controlled_window.h"
#include "app/control/media_player.h"
#include "app/control/verb.h"
#include "app/reading/narrator.h"

// GUI thread.
class RemoteControl {
public:
    // The narrator outlives this object.
    RemoteControl(Narrator& narrator, ControlledWindow window);
    RemoteControl(const RemoteControl&) = delete;
    RemoteControl& operator=(const RemoteControl&) = delete;

    // operand: what stood behind the verb.
    void Do(Verb verb, const std::string& operand, const VerbReplyRef& reply);
    // What this process was started for: once the window is ready. What comes of it the window
    // tells; nobody waits for an answer.
    void DoOnceReady(Verb verb, const std::string& operand);

    // As a media player of the desktop: once the window is shown, and whenever something else can
    // be asked for.
    void OfferSoon() { player_.BeginSoon(); }
    void Update() { player_.Update(); }

private:
    void Run(int command, const VerbReplyRef& reply);

    Narrator& narrator_;
    const ControlledWindow window_;
    MediaPlayer player_;
};

// State, title, time and sentence, in this order and a tab between each: a line that people and
// scripts can read.
std::string StatusLine(const Narrator& narrator);
