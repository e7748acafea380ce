// The main window, as those outside it see it.
#pragma once

#include <functional>
#include <string>

#include "app/control/verb_reply.h"

// What the window does for whoever asks from outside.
struct ControlledWindow {
    std::function<bool(int command)> run;  // of command_numbers.h; false: it cannot act now
    std::function<bool(int command)> canRun;
    std::function<void()> show;
    std::function<bool()> isReady;  // has come up at its start
    enum class Source { kSelection, kClipboard };
    std::function<void(Source source, VerbReplyRef reply)> read;
    std::function<void(const std::string& path, VerbReplyRef reply)> readFile;
};
