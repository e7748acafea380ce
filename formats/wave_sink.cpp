#include "formats/wave_sink.h"

#include "formats/file_io.h"
#include "formats/wave_format.h"

LSNKPCMFileBase::LSNKPCMFileBase(const char* path, int rate, unsigned char channels,
                                 unsigned bytesPerSample, int startFrame)
    : LSoundSinkBase(rate, channels),
      writer_(path, static_cast<std::size_t>(bytesPerSample) * channels_),
      bytesPerSample_(bytesPerSample) {
    if (!writer_.IsOpen())
        status_ |= 1;
    NoteWriteError(writer_.OpenError());
    framesWritten_ = std::max(startFrame, 0);
    WriteRIFF(false);
    if (!writer_.IsOpen())
        return;
    // A file shorter than startFrame is continued at its end, yet the counter stays at startFrame:
    // callers resume there.
    writer_.SeekForward(kWaveHeaderBytes, framesWritten_);
    NoteWriteError(writer_.Truncate(writer_.Offset()));
}

LSNKPCMFileBase::~LSNKPCMFileBase() {
    LSNKPCMFileBase::Complete();
}

void LSNKPCMFileBase::Complete() {
    if (!writer_.IsOpen())
        return;
    writer_.SeekTo(0);
    WriteRIFF(true);
    NoteWriteError(writer_.Close());
}

void LSNKPCMFileBase::Seek(int frame) {
    if (frame > framesWritten_)
        return;
    framesWritten_ = std::max(frame, 0);
    const auto frameBytes = static_cast<std::int64_t>(writer_.BytesPerFrame());
    NoteWriteError(writer_.Truncate(kWaveHeaderBytes + framesWritten_ * frameBytes));
}

void LSNKPCMFileBase::WriteRIFF(bool final) {
    constexpr std::uint32_t kAroundData = kWaveHeaderBytes - 8;
    const auto blockAlign = static_cast<std::uint32_t>(writer_.BytesPerFrame());
    const std::uint32_t dataBytes = final && WriteError() == 0
                                        ? DataSizeField(framesWritten_, blockAlign, kAroundData)
                                        : kUnknownBytes;
    const auto rate = static_cast<std::uint32_t>(sampleRate_);
    std::uint8_t header[kWaveHeaderBytes] = {};
    StoreId(header, "RIFF");
    StoreLE32(header + 4, dataBytes == kUnknownBytes ? kUnknownBytes : dataBytes + kAroundData);
    StoreId(header + 8, "WAVE");
    StoreId(header + 12, "fmt ");
    StoreLE32(header + 16, kWaveFormatExBytes);
    StoreLE16(header + 20, kWaveTagPcm);
    StoreLE16(header + 22, channels_);
    StoreLE32(header + 24, rate);
    StoreLE32(header + 28, rate * blockAlign);
    StoreLE16(header + 32, blockAlign);
    StoreLE16(header + 34, bytesPerSample_ * 8);
    StoreId(header + 38, "data");
    StoreLE32(header + 42, dataBytes);
    NoteWriteError(writer_.WriteHeader(header, sizeof(header)));
}
