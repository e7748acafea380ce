#include "formats/aiff_file.h"

#include <bit>
#include <cstring>

namespace {

constexpr std::uint32_t kAroundData = kAiffHeaderBytes - 8;
constexpr std::uint32_t kCommBytes = 18;
constexpr std::uint32_t kSsndFieldBytes = 8;

// A file whose writer has not finished says 0xFFFFFFFF: its end is that of the file.
std::uint32_t SampleBytes(std::uint32_t ssndSize) {
    if (ssndSize == kUnknownBytes)
        return kUnknownBytes;
    return ssndSize > kSsndFieldBytes ? ssndSize - kSsndFieldBytes : 0;
}

bool ReadComm(HeaderReader& file, AiffCOMMHeader& comm) {
    std::uint8_t fields[kCommBytes];
    if (comm.chunk.size < kCommBytes || !file.Read(fields, sizeof(fields)))
        return false;
    comm.channels = LoadBE16(fields);
    comm.frames = LoadBE32(fields + 2);
    comm.sampleSize = LoadBE16(fields + 6);
    std::memcpy(comm.rate, fields + 8, sizeof(comm.rate));
    return file.Skip(comm.chunk.size - kCommBytes);
}

}  // namespace

LSoundSource LAifFile::OpenSource(const char* path) {
    HeaderReader file(OpenFileForReading(path));
    AiffCOMMHeader comm;
    AiffSSNDHeader ssnd;
    if (const std::uint8_t status = AIFFOpenHeader(file, comm, ssnd); status != SoundStatus::kGood)
        return FailedSource(status);
    const std::uint32_t rate = convert80to32(comm.rate);
    if (rate < 1 || rate > INT32_MAX || comm.channels < 1 || comm.channels > 255 ||
        comm.sampleSize < 1)
        return FailedSource(SoundStatus::kInvalidFormat);
    if (comm.sampleSize > 16)
        return FailedSource(SoundStatus::kUnsupported);
    const std::uint32_t bytes = SampleBytes(ssnd.chunk.size);
    const auto channels = static_cast<unsigned char>(comm.channels);
    if (comm.sampleSize <= 8)
        return LSoundSource(new LRawFileDataSoundSource<LSFS8>(
            file.Finish(), static_cast<int>(rate), channels, bytes));
    return LSoundSource(new LRawFileDataSoundSource<LSFBE16>(file.Finish(), static_cast<int>(rate),
                                                             channels, bytes));
}

LSoundSink LAifFile::OpenSinkPCM16(const char* path, int rate, unsigned char channels) {
    return LSoundSink(new LRawFileDataSoundSink<LSFBE16>(path, rate, channels, 0, WriteHeaderAIFF));
}

LSoundSink OpenAIFFSink(const char* path, int rate, unsigned char channels) {
    return LAifFile::OpenSinkPCM16(path, rate, channels);
}

int WriteHeaderAIFF(LRawFileDataSoundSinkBase& sink, bool final) {
    const std::uint32_t dataBytes = sink.DataBytes(kAroundData);
    std::uint8_t header[kAiffHeaderBytes] = {};
    StoreId(header, "FORM");
    StoreBE32(header + 4, dataBytes == kUnknownBytes ? kUnknownBytes : dataBytes + kAroundData);
    StoreId(header + 8, "AIFF");
    StoreId(header + 12, "COMM");
    StoreBE32(header + 16, kCommBytes);
    StoreBE16(header + 20, sink.Channels());
    StoreBE32(header + 22, static_cast<std::uint32_t>(sink.FramesWritten()));
    StoreBE16(header + 26, 16);
    std::uint8_t rate[10];
    convert32to80(static_cast<std::uint32_t>(sink.SampleRate()), rate);
    std::memcpy(header + 28, rate, sizeof(rate));
    StoreId(header + 38, "SSND");
    // The size leaves out the 8 bytes of the two fields after it, so readers lose the last 8 bytes:
    // existing files and their lengths depend on it.
    StoreBE32(header + 42, final ? dataBytes : kUnknownBytes);
    sink.WriteHeaderBytes(header, sizeof(header));
    return static_cast<int>(sizeof(header));
}

bool AIFFFindChunk(HeaderReader& file, AiffCHUNKHeader& header, const char* id) {
    std::uint8_t bytes[8];
    while (file.Read(bytes, sizeof(bytes))) {
        std::memcpy(header.id, bytes, sizeof(header.id));
        header.size = LoadBE32(bytes + 4);
        if (std::memcmp(header.id, id, sizeof(header.id)) == 0)
            return true;
        if (header.size > INT32_MAX || !file.Skip(header.size))
            return false;
    }
    return false;
}

std::uint8_t AIFFOpenHeader(HeaderReader& file, AiffCOMMHeader& comm, AiffSSNDHeader& ssnd) {
    if (!file.IsOpen())
        return SoundStatus::kCannotOpen;
    std::uint8_t form[12];
    if (!file.Read(form, sizeof(form)) || std::memcmp(form, "FORM", 4) != 0 ||
        std::memcmp(form + 8, "AIFF", 4) != 0)
        return SoundStatus::kInvalidFormat;
    std::uint8_t fields[kSsndFieldBytes];
    if (!AIFFFindChunk(file, comm.chunk, "COMM") || !ReadComm(file, comm) ||
        !AIFFFindChunk(file, ssnd.chunk, "SSND") || !file.Read(fields, sizeof(fields)))
        return SoundStatus::kInvalidFormat;
    ssnd.offset = LoadBE32(fields);
    ssnd.blockSize = LoadBE32(fields + 4);
    return SoundStatus::kGood;
}

void convert32to80(std::uint32_t rate, std::uint8_t (&out)[10]) {
    std::memset(out, 0, sizeof(out));
    if (rate == 0)
        return;
    const int log2 = static_cast<int>(std::bit_width(rate)) - 1;
    out[0] = 0x40;
    // Below 2 the biased exponent is 16383, whose high byte is 0x3F; nobody records at 1 Hz, and
    // the byte is not read.
    out[1] = static_cast<std::uint8_t>(log2 - 1);
    StoreBE32(out + 2, rate << (31 - log2));
}

std::uint32_t convert80to32(const std::uint8_t (&in)[10]) {
    const std::uint32_t mantissa = LoadBE32(in + 2);
    const int shift = 30 - in[1];
    if (shift == 0)
        return mantissa;
    if (shift < 0 || shift > 32)
        return 0;
    // The last bit shifted out rounds up. 64 bits, since the sum of a full mantissa does not fit
    // in 32.
    return static_cast<std::uint32_t>(
        (static_cast<std::uint64_t>(mantissa) + (1ULL << (shift - 1))) >> shift);
}
