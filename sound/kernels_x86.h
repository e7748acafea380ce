// The kernel tables of x86-64, each defined in a source file compiled for its instruction set.
#pragma once

#if defined(__x86_64__)
#include "sound/kernels.h"

extern const LSoundKernels kSse2Kernels;
extern const LSoundKernels kAvx2Kernels;
#endif
