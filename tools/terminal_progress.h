// Progress as one line on the terminal.
#pragma once

#include <string>

#include "foundation/progress.h"

// Models LProgress on standard error, shown only where that is a terminal; stopped by an
// interruption. One at a time.
class LTerminalProgress {
public:
    explicit LTerminalProgress(
        bool isWanted = true);  // false: never shown, but stopped like one that is
    ~LTerminalProgress();       // takes the line away
    LTerminalProgress(const LTerminalProgress&) = delete;
    LTerminalProgress& operator=(const LTerminalProgress&) = delete;

    bool IsShown() const { return isShown_; }
    void SetFirstLabel(const char* text);
    void SetSecondLabel(const char*) {}  // "please wait" is what a terminal's user does anyway
    void SetFraction(double fraction);
    bool IsToStop() const;
    LProcessResult ProcessWaitSignal(LSignalObjectRef signal, unsigned int milliseconds);
    LProcessResult ProcessWait(unsigned int milliseconds);

    // What the line says instead of the labels that runs set.
    void SetSubject(const std::string& subject);

    static void ClearLine();  // for whoever prints something else

private:
    void Show();

    bool isShown_;
    std::string subject_;
    std::string label_;
    int percent_ = -1;  // -1: not told
};
