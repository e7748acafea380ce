// What long work may ask of whoever runs it.
//
// Long work (the Process functions) is written once, over this interface, and never learns whether
// that is a GTK dialog, a page of a wizard, a terminal's line or a test's recorder. Everything is
// called on the thread that runs the work.
#pragma once

#include "foundation/processes/process_result.h"
#include "foundation/threads/signal_object.h"

class LProgress {
public:
    LProgress() = default;
    LProgress(const LProgress&) = delete;
    LProgress& operator=(const LProgress&) = delete;
    virtual ~LProgress() = default;

    virtual bool IsShown() const = 0;  // false: labels and fraction go nowhere
    // The text is copied. What shows it handles pending events before it returns, here and with
    // the next two.
    virtual void SetFirstLabel(const char* text) = 0;
    virtual void SetSecondLabel(const char* text) = 0;
    virtual void SetFraction(double fraction) = 0;  // 0 to 1
    virtual bool IsToStop() = 0;  // handles pending events; true once the user asked to stop
    // Waits for the signal in small steps, keeping the user interface alive: done, stopped or
    // (time-out) failed.
    virtual LProcessResult ProcessWaitSignal(LSignalObjectRef signal,
                                             unsigned int milliseconds) = 0;
    // Running out of time is kProcessDone.
    virtual LProcessResult ProcessWait(unsigned int milliseconds) = 0;
};

// Progress that nobody watches and nobody can stop.
class LSilentProgress : public LProgress {
public:
    bool IsShown() const override { return false; }
    void SetFirstLabel(const char*) override {}
    void SetSecondLabel(const char*) override {}
    void SetFraction(double) override {}
    bool IsToStop() override { return false; }
    LProcessResult ProcessWaitSignal(LSignalObjectRef signal, unsigned int milliseconds) override {
        return signal.WaitSignal(milliseconds) ? kProcessDone : kProcessFailed;
    }
    LProcessResult ProcessWait(unsigned int milliseconds) override;
};
