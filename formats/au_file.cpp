#include "formats/au_file.h"

#include <cstring>

#include "formats/file_io.h"

namespace {

bool IsAuHeader(const std::uint8_t* header) {
    return std::memcmp(header, ".snd", 4) == 0;
}

template <typename Stored>
LSoundSource AuSourceOf(HeaderReader& file, std::uint32_t rate, std::uint32_t channels,
                        std::uint32_t dataBytes) {
    return LSoundSource(new LRawFileDataSoundSource<Stored>(
        file.Finish(), static_cast<int>(rate), static_cast<unsigned char>(channels), dataBytes));
}

template <typename Stored>
LSoundSink AuSinkOf(const char* path, int rate, unsigned char channels, LHeaderWriter writeHeader) {
    return LSoundSink(new LRawFileDataSoundSink<Stored>(path, rate, channels, 0, writeHeader));
}

}  // namespace

LSoundSource LAuFile::OpenSource(const char* path) {
    HeaderReader file(OpenFileForReading(path));
    if (!file.IsOpen())
        return FailedSource(SoundStatus::kCannotOpen);
    // The header-size field is not looked at: samples are taken from offset 24 on, so that an
    // annotation is heard, and the lengths and positions shown for such files depend on it.
    std::uint8_t header[kAuHeaderBytes];
    if (!file.Read(header, sizeof(header)) || !IsAuHeader(header))
        return FailedSource(SoundStatus::kInvalidFormat);
    const std::uint32_t dataBytes = LoadBE32(header + 8);
    const std::uint32_t encoding = LoadBE32(header + 12);
    const std::uint32_t rate = LoadBE32(header + 16);
    const std::uint32_t channels = LoadBE32(header + 20);
    if (rate < 1 || rate > INT32_MAX || channels < 1 || channels > 255)
        return FailedSource(SoundStatus::kInvalidFormat);
    switch (encoding) {
        case kAuEncodingMuLaw:
            return AuSourceOf<LSFULAW>(file, rate, channels, dataBytes);
        case kAuEncodingLinear8:
            return AuSourceOf<LSFS8>(file, rate, channels, dataBytes);
        case kAuEncodingLinear16:
            return AuSourceOf<LSFBE16>(file, rate, channels, dataBytes);
        case kAuEncodingALaw:
            return AuSourceOf<LSFALAW>(file, rate, channels, dataBytes);
        default:
            return FailedSource(SoundStatus::kUnsupported);
    }
}

LSoundSink OpenAuSink(const char* path, LAuSettings& settings) {
    const int rate = settings.sampleRate;
    const unsigned char channels = settings.channels;
    switch (settings.codec) {
        case kAuPcm16:
            return AuSinkOf<LSFBE16>(path, rate, channels, WriteHeaderAU_16PCM);
        case kAuPcm8:
            return AuSinkOf<LSFS8>(path, rate, channels, WriteHeaderAU_8PCM);
        case kAuALaw:
            return AuSinkOf<LSFALAW>(path, rate, channels, WriteHeaderAU_ALAW);
        case kAuMuLaw:
            return AuSinkOf<LSFULAW>(path, rate, channels, WriteHeaderAU_ULAW);
        default:
            return AuSinkOf<LSFBE16>(path, 44100, 2, WriteHeaderAU_16PCM);
    }
}

std::uint32_t AuEncodingOf(const char* path) {
    HeaderReader file(OpenFileForReading(path));
    std::uint8_t header[kAuHeaderBytes];
    const bool isAu = file.IsOpen() && file.Read(header, sizeof(header)) && IsAuHeader(header);
    return isAu ? LoadBE32(header + 12) : 0;
}

int WriteHeaderAU(LRawFileDataSoundSinkBase& sink, bool final, std::uint32_t encoding) {
    std::uint8_t header[kAuHeaderBytes];
    StoreId(header, ".snd");
    StoreBE32(header + 4, kAuHeaderBytes);
    StoreBE32(header + 8, final ? sink.DataBytes(0) : kUnknownBytes);
    StoreBE32(header + 12, encoding);
    StoreBE32(header + 16, static_cast<std::uint32_t>(sink.SampleRate()));
    StoreBE32(header + 20, sink.Channels());
    sink.WriteHeaderBytes(header, sizeof(header));
    return static_cast<int>(sizeof(header));
}

int WriteHeaderAU_16PCM(LRawFileDataSoundSinkBase& sink, bool final) {
    return WriteHeaderAU(sink, final, kAuEncodingLinear16);
}

int WriteHeaderAU_8PCM(LRawFileDataSoundSinkBase& sink, bool final) {
    return WriteHeaderAU(sink, final, kAuEncodingLinear8);
}

int WriteHeaderAU_ALAW(LRawFileDataSoundSinkBase& sink, bool final) {
    return WriteHeaderAU(sink, final, kAuEncodingALaw);
}

int WriteHeaderAU_ULAW(LRawFileDataSoundSinkBase& sink, bool final) {
    return WriteHeaderAU(sink, final, kAuEncodingMuLaw);
}
