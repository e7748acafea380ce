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

// Independent statement of both laws, in 14-bit (mu) and 13-bit (A) steps as the recommendation
// gives them.
int ReferenceMuLaw(int byte, bool segment5Lowered) {
    const int x = ~byte & 0xFF;
    const int segment = x >> 4 & 7;
    int magnitude = ((2 * (x & 15) + 33) << segment) - 33;
    if (segment5Lowered && segment == 5)
        --magnitude;
    return (x & 0x80) != 0 ? -magnitude * 64 : magnitude * 64;
}

int ReferenceALaw(int byte) {
    const int x = byte ^ 0x55;
    const int segment = x >> 4 & 7;
    const int mantissa = x & 15;
    const int magnitude = segment == 0 ? 2 * mantissa + 1 : (2 * mantissa + 33) << (segment - 1);
    return (x & 0x80) != 0 ? magnitude * 128 : -magnitude * 128;
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
    EXPECT_EQ(Out<LSFULAW>(0), 0xFFU);
    EXPECT_EQ(Out<LSFALAW>(0), 0xD5U);
}

TEST(SampleFormats, GoldenValuesIn) {
    EXPECT_EQ(In<LSF16>(0x8000), -524288);
    EXPECT_EQ(In<LSF16>(0x7FFF), 524272);
    EXPECT_EQ(In<LSFBE16>(0x0080), -524288);
    EXPECT_EQ(In<LSFBE16>(0x0100), 16);
    EXPECT_EQ(In<LSFS8>(0x80), -524288);
    EXPECT_EQ(In<LSFS8>(0x7F), 127 * 4096);
    EXPECT_EQ(In<LSFU8>(0), -524288);
    EXPECT_EQ(In<LSFU8>(255), 127 * 4096);
    EXPECT_EQ(In<LSFF32>(std::bit_cast<std::uint32_t>(1.0F)), 524288);
    EXPECT_EQ(In<LSFFRE32>(0x0000803F), 524272);
    EXPECT_EQ(In<LSFF32>(std::bit_cast<std::uint32_t>(-1.9F / 524288)), -1);  // toward zero
    EXPECT_EQ(In<LSFULAW>(0xFF), 0);
    EXPECT_EQ(In<LSFULAW>(0x00), -513984);
    EXPECT_EQ(In<LSFALAW>(0xD5), 128);
}

TEST(SampleFormats, FloatsThatAreNoSamplesStayDefined) {
    const float infinity = std::numeric_limits<float>::infinity();
    for (const float value : {infinity, 1e30F, 5000.0F})
        for (const float sign : {1.0F, -1.0F}) {
            const int sample = In<LSFF32>(std::bit_cast<std::uint32_t>(sign * value));
            EXPECT_EQ(sample, sign > 0 ? 2147483520 : -2147483520) << sign * value;
        }
    EXPECT_EQ(In<LSFF32>(std::bit_cast<std::uint32_t>(std::nanf(""))), 0);
    EXPECT_EQ(In<LSFF32>(std::bit_cast<std::uint32_t>(-std::nanf(""))), 0);
    EXPECT_EQ(In<LSFFRE32>(0x0000807F), 2147483520);  // +infinity, reversed
}

TEST(SampleFormats, G711DecodesAsTheRecommendation) {
    int lowered = 0;
    for (int byte = 0; byte < 256; ++byte) {
        const auto bits = static_cast<std::uint32_t>(byte);
        EXPECT_EQ(In<LSFALAW>(bits), ReferenceALaw(byte)) << byte;
        EXPECT_EQ(In<LSFULAW>(bits), ReferenceMuLaw(byte, true)) << byte;
        lowered += In<LSFULAW>(bits) != ReferenceMuLaw(byte, false) ? 1 : 0;
    }
    EXPECT_EQ(lowered, 32);  // segment 5, both signs, one 14-bit step low
}

// The recommendation's decision values lie half way between decoded neighbours (up to the lowered
// segment).
TEST(SampleFormats, G711EncodesEverySampleToTheStatedByte) {
    constexpr int kMuBase[] = {0, 1984, 6080, 14272, 30656, 63360, 128960, 260032};
    constexpr int kABase[] = {0, 4096, 8192, 16384, 32768, 65536, 131072, 262144};
    std::vector<int> samples;
    for (int s = -600000; s <= 600000; ++s)
        samples.push_back(s);
    for (const int s : {INT_MIN, INT_MIN + 1, INT_MAX, -2097152, 2097152, 1 << 22, -(1 << 30)})
        samples.push_back(s);
    std::vector<LSFULAW> mu(samples.size());
    std::vector<LSFALAW> a(samples.size());
    ConvertSamplesOut(samples.data(), mu.data(), static_cast<int>(samples.size()));
    ConvertSamplesOut(samples.data(), a.data(), static_cast<int>(samples.size()));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const int s = samples[i];
        const std::int64_t magnitude = std::abs(static_cast<std::int64_t>(s));
        int segment = 7;
        while (magnitude < kMuBase[segment])
            --segment;
        const std::int64_t muMantissa =
            std::min<std::int64_t>((magnitude - kMuBase[segment]) >> (segment + 7), 15);
        const auto muByte = ~((s < 0 ? 0x80 : 0) | segment << 4 | muMantissa) & 0xFF;
        ASSERT_EQ(mu[i].bits, muByte) << s;
        segment = 7;
        while (magnitude < kABase[segment])
            --segment;
        const std::int64_t aMantissa =
            std::min<std::int64_t>((magnitude - kABase[segment]) / LSFALAW::D[segment], 15);
        const auto aByte = ((s < 0 ? 0 : 0x80) | segment << 4 | aMantissa) ^ 0x55;
        ASSERT_EQ(a[i].bits, aByte) << s;
        LSFULAW oneMu;
        LSFALAW oneA;
        oneMu.Set(s);
        oneA.Set(s);
        ASSERT_EQ(oneMu.bits, mu[i].bits) << s;
        ASSERT_EQ(oneA.bits, a[i].bits) << s;
    }
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        const auto bits = static_cast<std::uint8_t>(byte);
        EXPECT_EQ(LSFULAW{bits}.Get(), In<LSFULAW>(byte));
        EXPECT_EQ(LSFALAW{bits}.Get(), In<LSFALAW>(byte));
        EXPECT_EQ(Out<LSFALAW>(In<LSFALAW>(byte)), byte);
        const std::uint32_t expected = byte == 0x7F ? 0xFF : byte;  // minus zero becomes zero
        EXPECT_EQ(Out<LSFULAW>(In<LSFULAW>(byte)), expected);
    }
}

template <typename Stored>
void ExpectOddLengthsMatchSingles() {
    std::vector<int> samples;
    for (int i = 0; i < 1100; ++i)
        samples.push_back((i * 7919 % 65536 - 32768) * 16 + i % 16);
    for (const int count : {0, 1, 2, 3, 7, 8, 9, 17, 511, 513, 1031}) {
        std::vector<Stored> stored(1100, Stored{0x5A});
        ConvertSamplesOut(samples.data(), stored.data(), count);
        std::vector<int> back(1100, 77);
        ConvertSamplesIn(stored.data(), back.data(), count);
        for (int i = 0; i < count; ++i) {
            ASSERT_EQ(stored[static_cast<std::size_t>(i)].bits,
                      Out<Stored>(samples[static_cast<std::size_t>(i)]));
            ASSERT_EQ(back[static_cast<std::size_t>(i)],
                      In<Stored>(stored[static_cast<std::size_t>(i)].bits));
        }
        EXPECT_EQ(stored[static_cast<std::size_t>(count)].bits, 0x5A);
        EXPECT_EQ(back[static_cast<std::size_t>(count)], 77);
    }
}

TEST(SampleFormats, BlocksOfAnyLengthConvertLikeSingleSamples) {
    ExpectOddLengthsMatchSingles<LSF16>();
    ExpectOddLengthsMatchSingles<LSFBE16>();
    ExpectOddLengthsMatchSingles<LSFS8>();
    ExpectOddLengthsMatchSingles<LSFU8>();
    ExpectOddLengthsMatchSingles<LSFF32>();
    ExpectOddLengthsMatchSingles<LSFFRE32>();
    ExpectOddLengthsMatchSingles<LSFULAW>();
    ExpectOddLengthsMatchSingles<LSFALAW>();
}

// Whatever the processor offers gives the bits of the plain loops, also on samples far outside.
TEST(SampleFormats, EveryKernelGivesTheSameBits) {
    std::vector<int> samples;
    std::uint32_t state = 99;
    for (int i = 0; i < 40000; ++i) {
        state = state * 1664525 + 1013904223;
        samples.push_back(static_cast<std::int32_t>(state) >> (i % 20));
    }
    samples.insert(samples.end(), {INT_MIN, INT_MIN + 1, INT_MAX, 0, -1, 1, 63, 64, -64});
    const LSampleKernels& fast = SampleKernels();
    const LSampleKernels& plain = kPlainSampleKernels;
    const int count = static_cast<int>(samples.size());
    const auto compare = [&]<typename Stored>(auto out, auto in, Stored) {
        std::vector<Stored> a(samples.size());
        std::vector<Stored> b(samples.size());
        (fast.*out)(samples.data(), a.data(), count);
        (plain.*out)(samples.data(), b.data(), count);
        for (std::size_t i = 0; i < samples.size(); ++i)
            ASSERT_EQ(a[i].bits, b[i].bits) << samples[i];
        if constexpr (!std::is_same_v<decltype(in), std::nullptr_t>) {
            for (std::size_t i = 0; i < samples.size(); ++i)  // any bits at all, as in a file
                a[i].bits = static_cast<decltype(Stored::bits)>(samples[i]);
            std::vector<int> c(samples.size());
            std::vector<int> d(samples.size());
            (fast.*in)(a.data(), c.data(), count);
            (plain.*in)(a.data(), d.data(), count);
            ASSERT_EQ(c, d);
        }
    };
    using K = LSampleKernels;
    compare(&K::out16, &K::in16, LSF16{});
    compare(&K::outBE16, &K::inBE16, LSFBE16{});
    compare(&K::outS8, &K::inS8, LSFS8{});
    compare(&K::outU8, &K::inU8, LSFU8{});
    compare(&K::outF32, &K::inF32, LSFF32{});
    compare(&K::outRE32, &K::inRE32, LSFFRE32{});
    compare(&K::outMuLaw, nullptr, LSFULAW{});
    compare(&K::outALaw, nullptr, LSFALAW{});
}

}  // namespace
