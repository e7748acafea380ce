#include "tools/terminal_progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "tools/interruption.h"

namespace {

constexpr unsigned int kStepMilliseconds = 50;  // how late an interruption may be noticed
constexpr int kLabelWidth = 60;                 // fits a terminal of 80 columns

// There is one terminal.
bool& LineIsShown() {
    static bool isShown = false;
    return isShown;
}

}  // namespace

LTerminalProgress::LTerminalProgress(bool isWanted)
    : isShown_(isWanted && ::isatty(STDERR_FILENO) == 1) {}

LTerminalProgress::~LTerminalProgress() {
    if (isShown_)
        ClearLine();
}

void LTerminalProgress::SetSubject(const std::string& subject) {
    subject_ = subject;
    Show();
}

void LTerminalProgress::ClearLine() {
    if (LineIsShown())
        std::fputs("\r\x1b[K", stderr);
    LineIsShown() = false;
}

void LTerminalProgress::Show() {
    if (!isShown_)
        return;
    const std::string& text = subject_.empty() ? label_ : subject_;
    std::fprintf(stderr, "\r\x1b[K%.*s", kLabelWidth, text.c_str());
    if (percent_ >= 0)
        std::fprintf(stderr, " %d %%", percent_);
    std::fflush(stderr);
    LineIsShown() = true;
}

void LTerminalProgress::SetFirstLabel(const char* text) {
    label_ = text;
    percent_ = -1;
    Show();
}

void LTerminalProgress::SetFraction(double fraction) {
    const int percent = static_cast<int>(std::clamp(fraction, 0.0, 1.0) * 100);
    if (percent == percent_)
        return;
    percent_ = percent;
    Show();
}

bool LTerminalProgress::IsToStop() {
    return IsInterrupted();
}

LProcessResult LTerminalProgress::ProcessWaitSignal(LSignalObjectRef signal,
                                                    unsigned int milliseconds) {
    for (unsigned int left = milliseconds; left > 0;) {
        if (IsInterrupted())
            return kProcessStopped;
        const unsigned int step = std::min(left, kStepMilliseconds);
        if (signal.WaitSignal(step))
            return kProcessDone;
        left -= step;
    }
    return kProcessFailed;
}

LProcessResult LTerminalProgress::ProcessWait(unsigned int milliseconds) {
    LSilentProgress clock;
    for (unsigned int left = milliseconds; left > 0;) {
        if (IsInterrupted())
            return kProcessStopped;
        const unsigned int step = std::min(left, kStepMilliseconds);
        clock.ProcessWait(step);
        left -= step;
    }
    return kProcessDone;
}
