#if defined(__x86_64__)
#include "formats/sample_kernels_generic.h"
#include "formats/sample_kernels_x86.h"

const LSampleKernels kAvx2SampleKernels = kKernels;
#endif
