#include "formats/sample_formats.h"

#include <gtest/gtest.h>

#include "formats/sample_kernels.h"

#include <bit>
#include <climits>
#include <cmath>
#include <limits>
#include <vector>

namespace {

template <typename Stored>
std::uint32_t Out(int sample) {
    Stored stored;
    ConvertSamplesOut(&sample, &stored, 1);
    return stored.bits;
}

template <typename Stored>
int In(std::uint32_t bits) {
    const Stored stored{static_cast<decltype(Stored::bits)>(bits)};
    int sample = -1;
    ConvertSamplesIn(&stored, &sample, 1);
    return sample;
}

TEST(SampleFormats, GoldenValuesOut) {
    struct Case {
        int sample;
        std::uint32_t s16, be16, s8, u8;
    };
    const Case cases[] = {
        {0, 0, 0, 0, 128},
        {524272, 0x7FFF, 0xFF7F, 0x80, 0},  // 8 bits: rounds up past the top and wraps
        {522239, 0x7F80, 0x807F, 0x7F, 0xFF},
        {-524288, 0x8000, 0x0080, 0x80, 0},
        {-8, 0, 0, 0, 128},
        {-9, 0xFFFF, 0xFFFF, 0, 128},
        {7, 0, 0, 0, 128},
        {8, 1, 0x0100, 0, 128},
        {2047, 0x80, 0x8000, 0, 128},
        {2048, 0x80, 0x8000, 1, 129},
        {-2049, 0xFF80, 0x80FF, 0xFF, 127},
        {524288, 0x8000, 0x0080, 0x80, 0},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Out<LSF16>(c.sample), c.s16) << c.sample;
        EXPECT_EQ(Out<LSFBE16>(c.sample), c.be16) << c.sample;
        EXPECT_EQ(Out<LSFS8>(c.sample), c.s8) << c.sample;
        EXPECT_EQ(Out<LSFU8>(c.sample), c.u8) << c.sample;
    }
    EXPECT_EQ(Out<LSFFRE32>(524272), 0x0000803FU);  // big-endian bytes of 1.0f
    EXPECT_EQ(Out<LSFF32>(524288), std::bit_cast<std::uint32_t>(1.0F));
    EXPECT_EQ(Out<LSFF32>(-1), std::bit_cast<std::uint32_t>(-1.0F / 524288));
    for (const int beyond : {INT_MIN, INT_MIN + 1, -600000, 600000, INT_MAX}) {
        EXPECT_EQ(Out<LSFULAW>(beyond), beyond < 0 ? 0x00U : 0x80U);
        EXPECT_EQ(Out<LSFALAW>(beyond), beyond < 0 ? 0x2AU : 0xAAU);
    }
}

TEST(SampleFormats, FloatsThatAreNoSamplesStayDefined) {
    const float infinity = std::numeric_limits<float>::infinity();
    for (const auto& [value, sample] : {std::pair{infinity, 2147483520},
                                        {1e30F, 2147483520},
                                        {5000.0F, 2147483520},
                                        {std::nanf(""), 0}}) {
        EXPECT_EQ(In<LSFF32>(std::bit_cast<std::uint32_t>(value)), sample) << value;
        EXPECT_EQ(In<LSFF32>(std::bit_cast<std::uint32_t>(-value)), -sample) << value;
    }
    EXPECT_EQ(In<LSFFRE32>(0x0000807F), 2147483520);  // +infinity, reversed
}

// Whatever the processor offers gives the bits of the plain loops, for blocks of any length and on
// samples far outside.
template <typename Stored>
void ExpectKernelsAgree(void (*LSampleKernels::*out)(const int*, Stored*, int),
                        void (*LSampleKernels::*in)(const Stored*, int*, int)) {
    std::vector<int> samples = {INT_MIN, INT_MIN + 1, INT_MAX, 0, -1, 1, 63, 64, -64};
    std::uint32_t state = 99;
    for (int i = 0; i < 40000; ++i) {
        state = state * 1664525 + 1013904223;
        samples.push_back(static_cast<std::int32_t>(state) >> (i % 20));
    }
    const LSampleKernels* const both[] = {&SampleKernels(), &kPlainSampleKernels};
    for (const int count : {0, 1, 2, 3, 7, 8, 9, 17, 511, 513, 40009}) {
        std::vector<Stored> stored[2];
        std::vector<int> back[2];
        for (std::size_t k = 0; k < 2; ++k) {
            stored[k].assign(samples.size() + 1, Stored{0x5A});
            back[k].assign(samples.size() + 1, 77);
            (both[k]->*out)(samples.data(), stored[k].data(), count);
            if (in != nullptr)  // any bits at all, as in a file
                (both[k]->*in)(reinterpret_cast<const Stored*>(samples.data()), back[k].data(),
                               count);
            EXPECT_EQ(stored[k][static_cast<std::size_t>(count)].bits, 0x5A);
            EXPECT_EQ(back[k][static_cast<std::size_t>(count)], 77);
        }
        for (std::size_t i = 0; i < samples.size(); ++i)
            ASSERT_EQ(stored[0][i].bits, stored[1][i].bits) << samples[i];
        ASSERT_EQ(back[0], back[1]);
    }
}

TEST(SampleFormats, EveryKernelGivesTheSameBits) {
    using K = LSampleKernels;
    ExpectKernelsAgree<LSF16>(&K::out16, &K::in16);
    ExpectKernelsAgree<LSFBE16>(&K::outBE16, &K::inBE16);
    ExpectKernelsAgree<LSFS8>(&K::outS8, &K::inS8);
    ExpectKernelsAgree<LSFU8>(&K::outU8, &K::inU8);
    ExpectKernelsAgree<LSFF32>(&K::outF32, &K::inF32);
    ExpectKernelsAgree<LSFFRE32>(&K::outRE32, &K::inRE32);
    ExpectKernelsAgree<LSFULAW>(&K::outMuLaw, nullptr);
    ExpectKernelsAgree<LSFALAW>(&K::outALaw, nullptr);
}

}  // namespace
