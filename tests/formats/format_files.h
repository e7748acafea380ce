// Byte builders and whole-file helpers for the format tests.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "sound/sound_sink.h"
#include "sound/sound_source.h"
#include "tests/support/scratch_folder.h"

// Builds a file's bytes field by field.
class Bytes {
public:
    Bytes& Text(const std::string& text) {
        data_ += text;
        return *this;
    }
    Bytes& LE16(std::uint32_t v) { return Little(v, 2); }
    Bytes& LE32(std::uint32_t v) { return Little(v, 4); }
    Bytes& BE16(std::uint32_t v) { return Big(v, 2); }
    Bytes& BE32(std::uint32_t v) { return Big(v, 4); }
    Bytes& U8(std::uint32_t v) { return Little(v, 1); }
    Bytes& Fill(std::size_t count, char value = 0) {
        data_.append(count, value);
        return *this;
    }
    const std::string& Str() const { return data_; }

private:
    Bytes& Little(std::uint32_t v, int bytes) {
        for (int i = 0; i < bytes; ++i)
            data_ += static_cast<char>(v >> (8 * i));
        return *this;
    }
    Bytes& Big(std::uint32_t v, int bytes) {
        for (int i = bytes; i-- > 0;)
            data_ += static_cast<char>(v >> (8 * i));
        return *this;
    }
    std::string data_;
};

// A test with a folder of its own.
class FormatTest : public ::testing::Test {
protected:
    std::string Path(const std::string& name) const { return folder_ / name; }
    std::string Store(const std::string& name, const std::string& bytes) const {
        folder_.Write(name, bytes);
        return Path(name);
    }
    static std::string Load(const std::string& path) { return ScratchFolder::ReadFile(path); }

    const ScratchFolder folder_;
};

// The samples of the next frames.
inline std::vector<int> Next(const LSoundSource& source, int frames) {
    std::vector<int> block(static_cast<std::size_t>(frames) * source->Channels(), 0x5A5A5A5A);
    source->Read(block.data(), frames);
    return block;
}

// Reads the whole source by requests of `step` frames and checks that what follows the end is
// silence.
inline std::vector<int> ReadAll(const LSoundSource& source, int step = kMaxBlockFrames) {
    const int end = source->GetEndSample();
    std::vector<int> all;
    for (int at = 0; at <= end; at += step) {
        const std::vector<int> block = Next(source, step);
        all.insert(all.end(), block.begin(), block.end());
    }
    const std::size_t samples = static_cast<std::size_t>(end) * source->Channels();
    EXPECT_TRUE(std::all_of(all.begin() + static_cast<std::ptrdiff_t>(samples), all.end(),
                            [](int s) { return s == 0; }));
    all.resize(samples);
    return all;
}

inline void WriteAll(const LSoundSink& sink, const std::vector<int>& samples,
                     int step = kMaxBlockFrames) {
    const int frames = static_cast<int>(samples.size()) / sink->Channels();
    for (int at = 0; at < frames; at += step)
        sink->Write(samples.data() + at * sink->Channels(), std::min(step, frames - at));
}

// A signal that visits the whole 16-bit range and both ends of it, never repeating within a block.
inline std::vector<int> TestSignal(std::size_t samples) {
    std::vector<int> signal(samples);
    std::uint32_t state = 12345;
    for (std::size_t i = 0; i < samples; ++i) {
        state = state * 1664525 + 1013904223;
        signal[i] = static_cast<std::int16_t>(state >> 16) * 16;
    }
    if (samples > 2) {
        signal[0] = -524288;
        signal[1] = 524272;
    }
    return signal;
}
