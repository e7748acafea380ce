// Does what is asked from outside the windows.
#pragma once

#include <functional>
#include <string>

#include "app/control/verb.h"
#include "app/control/verb_reply.h"
#include "app/reading/narrator.h"

// What the window does for whoever asks from outside.
struct ControlledWindow {
    std::function<bool(int command)> run;  // of command_numbers.h; false: it cannot act now
    enum class Source { kSelection, kClipboard };
    std::function<void(Source source, VerbReplyRef reply)> read;
    std::function<void(const std::string& path, VerbReplyRef reply)> readFile;
};

// GUI thread.
class RemoteControl {
public:
    // The narrator outlives this object.
    RemoteControl(Narrator& narrator, ControlledWindow window);
    RemoteControl(const RemoteControl&) = delete;
    RemoteControl& operator=(const RemoteControl&) = delete;

    // operand: what stood behind the verb.
    void Do(Verb verb, const std::string& operand, const VerbReplyRef& reply);

private:
    void Run(int command, const VerbReplyRef& reply);

    Narrator& narrator_;
    const ControlledWindow window_;
};

// State, title, time and sentence, in this order and a tab between each: a line that people and
// scripts can read.
std::string StatusLine(const Narrator& narrator);
