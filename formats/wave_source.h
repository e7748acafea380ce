// Sources on the sample data of an open PCM WAVE file.
#pragma once

#include "formats/frame_file.h"

class LSRCPCMFileBase : public LSoundSourceBase {
public:
    // file stands at the first sample; dataBytes is the data chunk's size field, 0xFFFFFFFF while
    // the file is being written.
    LSRCPCMFileBase(UniqueFd file, int rate, unsigned char channels, int bytesPerSample,
                    std::uint32_t dataBytes);

    int GetPositionSample() const override { return reader_.Position(); }
    // Of a file still being written: looks at the size field again, and goes by the file's size
    // until it is filled in.
    int GetEndSample() const override;
    void Seek(int frame) override;
    int ReadError() const override { return reader_.ReadError(); }
    int FramesInFile() const { return reader_.FramesInFile(); }  // that are really there by now
    bool IsStreaming() const override { return reader_.Length() == kUnknownLength; }

protected:
    mutable FrameReader reader_;  // its length is learned late, also through const questions
};

template <typename Stored>
class LSRCPCMFile final : public LSRCPCMFileBase {
public:
    LSRCPCMFile(UniqueFd file, int rate, unsigned char channels, std::uint32_t dataBytes)
        : LSRCPCMFileBase(std::move(file), rate, channels, sizeof(Stored), dataBytes) {}

    void Read(int* buffer, int frames) override { reader_.Read<Stored>(buffer, frames, channels_); }
};
