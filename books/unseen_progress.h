// The progress of a step that shows nothing of its own, and is stopped with the whole.
#pragma once

#include "foundation/threads/progress.h"

class UnseenProgress final : public LSilentProgress {
public:
    // The whole must outlive this.
    explicit UnseenProgress(LProgress& whole) : whole_(whole) {}
    bool IsToStop() override { return whole_.IsToStop(); }

private:
    LProgress& whole_;
};
