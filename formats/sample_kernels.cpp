#include "formats/sample_kernels.h"

#include "formats/sample_kernels_generic.h"
#include "formats/sample_kernels_x86.h"

const LSampleKernels kPlainSampleKernels = kKernels;

const LSampleKernels& SampleKernels() {
#if defined(__x86_64__)
    static const LSampleKernels& kernels =
        __builtin_cpu_supports("avx2") ? kAvx2SampleKernels : kPlainSampleKernels;
    return kernels;
#else
    return kPlainSampleKernels;
#endif
}
