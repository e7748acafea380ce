// The loops behind ConvertSamplesIn and ConvertSamplesOut, in one table for each instruction set.
//
// Every table gives the same bits; they differ in speed only. The table is chosen once, at first
// use, from what the processor has.
#pragma once

#include "formats/sample_formats.h"

// Each function converts `samples` samples; in and out do not overlap.
struct LSampleKernels {
    void (*in16)(const LSF16* in, int* out, int samples);
    void (*inBE16)(const LSFBE16* in, int* out, int samples);
    void (*inS8)(const LSFS8* in, int* out, int samples);
    void (*inU8)(const LSFU8* in, int* out, int samples);
    void (*inF32)(const LSFF32* in, int* out, int samples);
    void (*inRE32)(const LSFFRE32* in, int* out, int samples);
    void (*out16)(const int* in, LSF16* out, int samples);
    void (*outBE16)(const int* in, LSFBE16* out, int samples);
    void (*outS8)(const int* in, LSFS8* out, int samples);
    void (*outU8)(const int* in, LSFU8* out, int samples);
    void (*outF32)(const int* in, LSFF32* out, int samples);
    void (*outRE32)(const int* in, LSFFRE32* out, int samples);
    void (*outMuLaw)(const int* in, LSFULAW* out, int samples);
    void (*outALaw)(const int* in, LSFALAW* out, int samples);
};

extern const LSampleKernels kPlainSampleKernels;

// Any thread.
const LSampleKernels& SampleKernels();
