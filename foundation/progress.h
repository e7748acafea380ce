// What long work may ask of whoever runs it.
//
// Long work (the Process functions) is written once, as a template over a progress object, and
// never learns whether that is a GTK dialog, a terminal line or a test's recorder. Everything is
// called on the thread that runs the work.
#pragma once

#include <concepts>

#include "foundation/process_result.h"
#include "foundation/signal_object.h"

template <typename P>
concept LProgress = requires(P& progress, const P& constProgress, const char* text, double fraction,
                             LSignalObjectRef signal, unsigned int milliseconds) {
    { constProgress.IsShown() } -> std::same_as<bool>;  // false: labels and fraction go nowhere
    progress.SetFirstLabel(
        text);  // text is copied; one round of pending events is handled before returning
    progress.SetSecondLabel(text);
    progress.SetFraction(fraction);  // 0 to 1
    {
        progress.IsToStop()
        } -> std::same_as<bool>;  // handles pending events; true once the user asked to stop
    // Waits for the signal in small steps, keeping the user interface alive: done, stopped or
    // (time-out) failed.
    { progress.ProcessWaitSignal(signal, milliseconds) } -> std::same_as<LProcessResult>;
    {
        progress.ProcessWait(milliseconds)
        } -> std::same_as<LProcessResult>;  // running out of time is kProcessDone
};

// Progress that nobody watches and nobody can stop.
class LSilentProgress {
public:
    bool IsShown() const { return false; }
    void SetFirstLabel(const char*) {}
    void SetSecondLabel(const char*) {}
    void SetFraction(double) {}
    bool IsToStop() { return false; }
    LProcessResult ProcessWaitSignal(LSignalObjectRef signal, unsigned int milliseconds) {
        return signal.WaitSignal(milliseconds) ? kProcessDone : kProcessFailed;
    }
    LProcessResult ProcessWait(unsigned int milliseconds);
};
