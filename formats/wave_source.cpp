#include "formats/wave_source.h"

#include <unistd.h>

#include "formats/file_io.h"

LSRCPCMFileBase::LSRCPCMFileBase(UniqueFd file, int rate, unsigned char channels,
                                 int bytesPerSample, std::uint32_t dataBytes)
    : LSoundSourceBase(rate, channels, kMaxPcm16Peak),
      reader_(std::move(file), channels_ * bytesPerSample, dataBytes) {}

int LSRCPCMFileBase::GetEndSample() const {
    if (reader_.Length() != kUnknownLength)
        return reader_.Length();
    std::uint8_t field[4];
    const ssize_t got =
        ::pread(reader_.Descriptor(), field, sizeof(field), reader_.DataStart() - 4);
    if (got == sizeof(field))
        reader_.SetLength(LoadLE32(field));
    return IsStreaming() ? reader_.FramesInFile() : reader_.Length();
}

void LSRCPCMFileBase::Seek(int frame) {
    reader_.Seek(frame, GetEndSample());
}
