// The kernel table that is compiled for AVX2.
#pragma once

#if defined(__x86_64__)
#include "formats/sample_kernels.h"

extern const LSampleKernels kAvx2SampleKernels;
#endif
