#include "formats/wave_file.h"

#include <algorithm>
#include <cstring>

#include "formats/file_io.h"
#include "formats/wave_codec_names.h"
#include "formats/wave_sink.h"
#include "formats/wave_source.h"

namespace {

constexpr std::uint32_t kMinFmtBytes = 16;
constexpr std::uint32_t kMaxFmtBytes = 8192;

struct FmtChunk {
    std::uint32_t size;
    std::uint8_t bytes[kMaxFmtBytes];
};

bool HasId(const std::uint8_t* chunk, const char* id) {
    return std::memcmp(chunk, id, 4) == 0;
}

// Sizes are signed 32-bit values here, so one of 2 GiB or more ends the walk and 0xFFFFFFFF rounds
// up to nothing.
std::int32_t RoundUpToEven(std::uint32_t size) {
    return static_cast<std::int32_t>((size + 1) & ~std::uint32_t{1});
}

// Foreign top-level chunks may stand before the RIFF header.
bool FindRiff(HeaderReader& file) {
    std::uint8_t head[12];
    while (file.Read(head, sizeof(head))) {
        if (HasId(head, "RIFF") && HasId(head + 8, "WAVE"))
            return true;
        const std::int32_t skip = RoundUpToEven(LoadLE32(head + 4));
        if (skip < 5 || !file.Skip(skip - 4))
            return false;
    }
    return false;
}

// Leaves the file behind the header of the next chunk called id.
bool FindChunk(HeaderReader& file, const char* id, std::uint32_t* size) {
    std::uint8_t head[8];
    while (file.Read(head, sizeof(head))) {
        *size = LoadLE32(head + 4);
        if (HasId(head, id))
            return true;
        if (!file.Skip(RoundUpToEven(*size)))
            return false;
    }
    return false;
}

bool ReadFmt(HeaderReader& file, FmtChunk& fmt) {
    if (!FindRiff(file) || !FindChunk(file, "fmt ", &fmt.size) || fmt.size < kMinFmtBytes ||
        fmt.size > kMaxFmtBytes)
        return false;
    std::memset(fmt.bytes, 0, kWaveFormatExBytes);  // a fmt chunk of 16 bytes has no cbSize: 0
    return file.Read(fmt.bytes, fmt.size) && file.Skip(fmt.size % 2);
}

void DecodeFmt(const std::uint8_t* bytes, WAVEFORMATEX& format) {
    format.wFormatTag = LoadLE16(bytes);
    format.nChannels = LoadLE16(bytes + 2);
    format.nSamplesPerSec = LoadLE32(bytes + 4);
    format.nAvgBytesPerSec = LoadLE32(bytes + 8);
    format.nBlockAlign = LoadLE16(bytes + 12);
    format.wBitsPerSample = LoadLE16(bytes + 14);
    format.cbSize = LoadLE16(bytes + 16);
}

std::uint8_t CheckFormat(const WAVEFORMATEX& format) {
    if (format.nChannels < 1 || format.nChannels > 255)
        return SoundStatus::kInvalidFormat;
    if (format.nSamplesPerSec < 1 || format.nSamplesPerSec > kHighestRate)
        return SoundStatus::kInvalidFormat;
    if (format.wFormatTag != kWaveTagPcm || format.wBitsPerSample > 16)
        return SoundStatus::kUnsupported;
    return format.wBitsPerSample > 0 ? SoundStatus::kGood : SoundStatus::kInvalidFormat;
}

bool ReadFmtOf(const char* path, FmtChunk& fmt) {
    HeaderReader file(OpenFileForReading(path));
    return file.IsOpen() && ReadFmt(file, fmt);
}

}  // namespace

LSoundSource LWaveFile::OpenSource(const char* path) {
    return OpenFollowingSource(path, LSignalObjectRef());
}

LSoundSource LWaveFile::OpenFollowingSource(const char* path, LSignalObjectRef interrupt) {
    HeaderReader file(OpenFileForReading(path));
    if (!file.IsOpen())
        return FailedSource(SoundStatus::kCannotOpen);
    FmtChunk fmt;
    std::uint32_t dataBytes = 0;
    if (!ReadFmt(file, fmt) || !FindChunk(file, "data", &dataBytes))
        return FailedSource(SoundStatus::kInvalidFormat);
    WAVEFORMATEX format;
    DecodeFmt(fmt.bytes, format);
    if (const std::uint8_t status = CheckFormat(format); status != SoundStatus::kGood)
        return FailedSource(status);
    const auto rate = static_cast<int>(format.nSamplesPerSec);
    const auto channels = static_cast<unsigned char>(format.nChannels);
    if (format.wBitsPerSample <= 8)
        return LSoundSource(
            new LSRCPCMFile<LSFU8>(file.Finish(), rate, channels, dataBytes, interrupt));
    return LSoundSource(
        new LSRCPCMFile<LSF16>(file.Finish(), rate, channels, dataBytes, interrupt));
}

LSoundSink LWaveFile::OpenSink(const char* path, const LWaveFileFormat& format) {
    if (format.tag != kWaveTagPcm || format.channels > 255)
        return LSoundSink(new LSoundSinkError());
    return OpenSinkPCM(path, static_cast<int>(format.samplesPerSecond),
                       static_cast<unsigned char>(format.channels), format.bitsPerSample, 0);
}

LSoundSink LWaveFile::OpenSinkPCM(const char* path, int rate, unsigned char channels,
                                  unsigned short bitsPerSample, int startFrame) {
    if (bitsPerSample > 16)
        return LSoundSink(new LSoundSinkError());
    if (bitsPerSample <= 8)
        return LSoundSink(new LSNKPCMFile<LSFU8>(path, rate, channels, startFrame));
    return LSoundSink(new LSNKPCMFile<LSF16>(path, rate, channels, startFrame));
}

bool LWaveFile::TestPCM(const char* path) {
    FmtChunk fmt;
    return ReadFmtOf(path, fmt) && LoadLE16(fmt.bytes) == kWaveTagPcm;
}

bool LGetWaveFormatEx(const char* path, WAVEFORMATEX** format) {
    FmtChunk fmt;
    if (!ReadFmtOf(path, fmt))
        return false;
    const std::size_t size = std::max<std::size_t>(fmt.size, sizeof(WAVEFORMATEX));
    auto* copy = new std::byte[size]();
    *format = new (copy) WAVEFORMATEX;
    DecodeFmt(fmt.bytes, **format);
    const auto extra = fmt.size > kWaveFormatExBytes ? fmt.size - kWaveFormatExBytes : 0;
    (*format)->cbSize = static_cast<std::uint16_t>(std::min<std::size_t>((*format)->cbSize, extra));
    if (extra > 0)
        std::memcpy(copy + kWaveFormatExBytes, fmt.bytes + kWaveFormatExBytes,
                    fmt.size - kWaveFormatExBytes);
    return true;
}

void FreeWaveFormatEx(WAVEFORMATEX* format) {
    delete[] reinterpret_cast<std::byte*>(format);
}

void LGetWaveFileCodecName(char* name, const char* path) {
    FmtChunk fmt;
    const bool known = ReadFmtOf(path, fmt);
    std::strcpy(name, WaveCodecName(known ? LoadLE16(fmt.bytes) : std::uint16_t{0}));
}
