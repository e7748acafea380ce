#include "formats/raw_file_data.h"

LRawFileDataSoundSourceBase::LRawFileDataSoundSourceBase(UniqueFd file, int rate,
                                                         unsigned char channels, int peakMagnitude,
                                                         int bytesPerSample,
                                                         std::uint32_t dataBytes)
    : LSoundSourceBase(rate, channels, peakMagnitude),
      reader_(std::move(file), channels_ * bytesPerSample, dataBytes) {}

int LRawFileDataSoundSourceBase::GetEndSample() const {
    return reader_.Length() == kUnknownLength ? reader_.FramesInFile() : reader_.Length();
}

void LRawFileDataSoundSourceBase::Seek(int frame) {
    reader_.Seek(frame, GetEndSample());
}

int WriteHeaderRAW(LRawFileDataSoundSinkBase&, bool) {
    return 0;
}

LRawFileDataSoundSinkBase::LRawFileDataSoundSinkBase(const char* path, int rate,
                                                     unsigned char channels, int startFrame,
                                                     unsigned bytesPerSample,
                                                     LHeaderWriter writeHeader)
    : LSoundSinkBase(rate, channels),
      writer_(path, static_cast<std::size_t>(bytesPerSample) * channels_),
      writeHeader_(writeHeader) {
    if (!writer_.IsOpen())
        status_ |= 1;
    NoteWriteError(writer_.OpenError());
    NoteWriteError(writer_.Truncate(0));
    headerLength_ = writeHeader_(*this, false);
    framesWritten_ = std::max(startFrame, 0);
    if (writer_.IsOpen() && framesWritten_ > 0)
        writer_.SeekForward(headerLength_, framesWritten_);
}

LRawFileDataSoundSinkBase::~LRawFileDataSoundSinkBase() {
    LRawFileDataSoundSinkBase::Complete();
}

void LRawFileDataSoundSinkBase::Complete() {
    if (!writer_.IsOpen())
        return;
    writer_.SeekTo(0);
    writeHeader_(*this, true);
    NoteWriteError(writer_.Close());
}

void LRawFileDataSoundSinkBase::Seek(int frame) {
    if (frame > framesWritten_)
        return;
    framesWritten_ = std::max(frame, 0);
    const auto frameBytes = static_cast<std::int64_t>(writer_.BytesPerFrame());
    NoteWriteError(writer_.Truncate(headerLength_ + framesWritten_ * frameBytes));
}

void LRawFileDataSoundSinkBase::WriteHeaderBytes(const void* header, std::size_t size) {
    NoteWriteError(writer_.WriteHeader(header, size));
}

std::uint32_t LRawFileDataSoundSinkBase::DataBytes(std::uint32_t overhead) const {
    // A file that could not be written whole must not look whole.
    if (WriteError() != 0)
        return kUnknownBytes;
    return DataSizeField(framesWritten_, writer_.BytesPerFrame(), overhead);
}
