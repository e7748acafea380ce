// The loops themselves, written for the vectoriser and compiled once for each instruction set: a
// source file that includes this defines one table from them. Nothing here may call an inline
// function of a header that others include, or the linker could take a vector copy for everyone.
#pragma once

#include "formats/sample_kernels.h"
#include "formats/sample_values_generic.h"

namespace {

inline void In16(const LSF16* __restrict in, int* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i] = FromWord(in[i].bits);
}

inline void InBE16(const LSFBE16* __restrict in, int* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i] = FromWord(Swapped16(in[i].bits));
}

inline void InS8(const LSFS8* __restrict in, int* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i] = static_cast<std::int8_t>(in[i].bits) * 4096;
}

inline void InU8(const LSFU8* __restrict in, int* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i] = (in[i].bits - 128) * 4096;
}

inline void InF32(const LSFF32* __restrict in, int* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i] = FromFloat(in[i].bits, 524288.0F);
}

inline void InRE32(const LSFFRE32* __restrict in, int* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i] = FromFloat(Swapped32(in[i].bits), 524272.0F);
}

inline void Out16(const int* __restrict in, LSF16* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i].bits = ToWord(in[i]);
}

inline void OutBE16(const int* __restrict in, LSFBE16* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i].bits = Swapped16(ToWord(in[i]));
}

inline void OutS8(const int* __restrict in, LSFS8* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i].bits = static_cast<std::uint8_t>(RoundedShift(in[i], 12));
}

inline void OutU8(const int* __restrict in, LSFU8* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i].bits = static_cast<std::uint8_t>(RoundedShift(in[i], 12) - 128);
}

inline void OutF32(const int* __restrict in, LSFF32* __restrict out, int samples) {
    constexpr float kUnit = 1.0F / 524288.0F;
    for (int i = 0; i < samples; ++i)
        out[i].bits = BitsOf(static_cast<float>(in[i]) * kUnit);
}

inline void OutRE32(const int* __restrict in, LSFFRE32* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i].bits = Swapped32(BitsOf(static_cast<float>(in[i]) / 524272.0F));
}

inline void OutMuLaw(const int* __restrict in, LSFULAW* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i].bits = MuLawOf(in[i]);
}

inline void OutALaw(const int* __restrict in, LSFALAW* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i].bits = ALawOf(in[i]);
}

constexpr LSampleKernels kKernels = {In16,    InBE16, InS8,  InU8,   InF32,   InRE32,   Out16,
                                     OutBE16, OutS8,  OutU8, OutF32, OutRE32, OutMuLaw, OutALaw};

}  // namespace
