// Progress as one line on the terminal.
#pragma once

#include <string>

#include "foundation/threads/progress.h"

// On standard error, shown only where that is a terminal; stopped by an
// interruption. One at a time.
class LTerminalProgress final : public LProgress {
public:
    explicit LTerminalProgress(
        bool isWanted = true);      // false: never shown, but stopped like one that is
    ~LTerminalProgress() override;  // takes the line away

    bool IsShown() const override { return isShown_; }
    void SetFirstLabel(const char* text) override;
    // "Please wait" is what a terminal's user does anyway.
    void SetSecondLabel(const char*) override {}
    void SetFraction(double fraction) override;
    bool IsToStop() override;
    LProcessResult ProcessWaitSignal(LSignalObjectRef signal, unsigned int milliseconds) override;
    LProcessResult ProcessWait(unsigned int milliseconds) override;

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
