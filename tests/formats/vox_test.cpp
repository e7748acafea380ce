#include "formats/vox_file.h"

#include "formats/raw_file.h"
#include "tests/formats/format_files.h"

namespace {

class Vox : public FormatTest {};

TEST_F(Vox, CodecKeepsItsBitsOnEverySignal) {
    std::uint64_t sum = 14695981039346656037U;
    const auto add = [&sum](std::uint32_t value) { sum = (sum ^ value) * 1099511628211U; };
    std::uint32_t state = 7;
    const auto random = [&] { return state = state * 1664525 + 1013904223, state >> 4; };
    for (const int span : {1, 30, 400, 6000, 90000, 524288, 8000000, INT32_MAX}) {
        LVox encoder;
        for (int i = 0; i < 20000; ++i) {
            int sample = static_cast<int>(random() % (2 * static_cast<unsigned>(span))) - span;
            if (i % 1000 > 700)  // hold a level, so that the smallest steps are met too
                sample = span / 3;
            if (i % 997 == 0)
                sample = i % 2 != 0 ? INT32_MAX : INT32_MIN;
            add(encoder.EncodeSample(sample));
        }
        LVox decoder;
        for (int i = 0; i < 20000; ++i) {
            const unsigned code = i % 100 < 50 ? random() % 16 : static_cast<unsigned>(span) % 16;
            add(static_cast<std::uint32_t>(decoder.DecodeCode(code)));
        }
    }
    // Also of a codec that makes each step a tenth larger than the one before, divides and clamps.
    EXPECT_EQ(sum, 9843599072822349178U);
}

// A nibble left over from an odd block takes the next block's first sample, drops its second, and
// the block ends one sample past its end, where the last one counts again.
TEST_F(Vox, OddBlocksSkipASample) {
    const int a[] = {16000, -32000, 48000};
    const int b[] = {64000, 99, -80000};
    const std::string path = Path("o.vox");
    LSoundSink sink = LRawFile::OpenSink(path.c_str(), {8000, 1, kRawDialogicAdpcm});
    sink->Write(a, 3);
    sink->Write(b, 3);
    sink->Write(b, 1);
    EXPECT_EQ(Load(path).size(), 3U);  // the last is pending
    sink->Write(b, 2);                 // completes it, skips, keeps the value past the end
    sink->Write(b, 1);
    EXPECT_EQ(sink->FramesWritten(), 10);
    sink->Write(a, 1);
    sink.Close();
    LVox codec;
    Bytes expected;
    const int taken[] = {a[0], a[1], a[2], b[0], b[2], b[2], b[0], b[0], b[1], b[0]};
    for (int i = 0; i < 10; i += 2) {
        const unsigned high = codec.EncodeSample(taken[i]);
        expected.U8(high << 4 | codec.EncodeSample(taken[i + 1]));
    }
    EXPECT_EQ(Load(path), expected.Str());
}

TEST_F(Vox, SeeksLandOnTheNibbleAndKeepTheState) {
    const std::string path = Store("k.vox", std::string(1000, '\x3C'));
    const LSoundSource source = LRawFile::OpenSource(path.c_str(), {6000, 2, kRawDialogicAdpcm});
    EXPECT_EQ(source->GetEndSample(), 2000);
    EXPECT_EQ(source->Channels(), 1);
    EXPECT_EQ(source->SampleRate(), 6000);
    EXPECT_EQ(source->PeakMagnitude(), 2097152);
    LVox codec;
    const auto decoded = [&codec](std::initializer_list<unsigned> codes) {
        std::vector<int> samples;
        for (const unsigned code : codes)
            samples.push_back(codec.DecodeCode(code));
        return samples;
    };
    EXPECT_EQ(Next(source, 5), decoded({3, 12, 3, 12, 3}));
    source->Seek(3);
    EXPECT_EQ(source->GetPositionSample(), 3);
    EXPECT_EQ(Next(source, 2), decoded({12, 3}));  // the low nibble of byte 1, in the state reached
    source->Seek(-2);
    EXPECT_EQ(Next(source, 2), std::vector<int>(2, 0));
    EXPECT_EQ(Next(source, 1), decoded({3}));
    for (const int frame : {1999, 2000, 2001, 5000, INT32_MAX}) {
        source->Seek(frame);
        const std::vector<int> end = Next(source, 2);
        EXPECT_TRUE((end[0] != 0) == (frame == 1999) && end[1] == 0) << frame;
    }
}

}  // namespace
