// How a long operation or a wait ended.
#pragma once

enum LProcessResult : int {
    kProcessDone = 0,     // the work was finished, or the awaited signal came
    kProcessStopped = 1,  // the user cancelled, or the waiting thread was asked to stop
    kProcessFailed = 2,   // failed, or the time limit passed
};
