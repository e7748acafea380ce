// A second stack on which a thread's fatal signals are handled, so that running out of the first
// can be reported.
#pragma once

// Installs the stack for the calling thread; destroyed on the same thread. Without memory nothing
// is installed.
class LSignalStack {
public:
    LSignalStack();
    LSignalStack(const LSignalStack&) = delete;
    LSignalStack& operator=(const LSignalStack&) = delete;
    ~LSignalStack();

private:
    void* memory_ = nullptr;
};
