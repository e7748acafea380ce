#include "tools/say_stream.h"

#include <unistd.h>

#include <cstdint>
#include <vector>

#include "formats/file_io.h"
#include "formats/sample_formats.h"
#include "formats/wave_format.h"

WaveStreamSink::WaveStreamSink(int rate, unsigned char channels) : LSoundSinkBase(rate, channels) {
    constexpr std::uint32_t kUnknown = 0xFFFFFFFF;
    const auto frameBytes = static_cast<std::uint16_t>(2 * channels_);
    std::uint8_t header[44];
    StoreId(header, "RIFF");
    StoreLE32(header + 4, kUnknown);
    StoreId(header + 8, "WAVE");
    StoreId(header + 12, "fmt ");
    StoreLE32(header + 16, 16);
    StoreLE16(header + 20, kWaveTagPcm);
    StoreLE16(header + 22, channels_);
    StoreLE32(header + 24, static_cast<std::uint32_t>(rate));
    StoreLE32(header + 28, static_cast<std::uint32_t>(rate) * frameBytes);
    StoreLE16(header + 32, frameBytes);
    StoreLE16(header + 34, 16);
    StoreId(header + 36, "data");
    StoreLE32(header + 40, kUnknown);
    Put(header, sizeof header);
}

void WaveStreamSink::Write(const int* buffer, int frames) {
    std::vector<LSF16> samples(static_cast<std::size_t>(frames) * channels_);
    ConvertSamplesOut(buffer, samples.data(), frames * channels_);
    Put(samples.data(), samples.size() * sizeof(LSF16));
    framesWritten_ += frames;
}

void WaveStreamSink::Put(const void* data, std::size_t size) {
    if (WriteError() == 0)
        NoteWriteError(WriteFully(STDOUT_FILENO, data, size));
}
