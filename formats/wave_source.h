// Sources on the sample data of an open PCM WAVE file.
#pragma once

#include <optional>

#include "formats/file_growth.h"
#include "formats/frame_file.h"

class LSRCPCMFileBase : public LSoundSourceBase {
public:
    // file stands at the first sample; dataBytes is the data chunk's size field, 0xFFFFFFFF while
    // the file is being written. A signalled interrupt ends WaitForStreamingData early.
    LSRCPCMFileBase(UniqueFd file, int rate, unsigned char channels, int bytesPerSample,
                    std::uint32_t dataBytes, LSignalObjectRef interrupt);

    int GetPositionSample() const override { return reader_.Position(); }
    // Of a file still being written: looks at the size field again, and goes by the file's size
    // until it is filled in or the writer is gone; then the end is exact.
    int GetEndSample() const override;
    void Seek(int frame) override;
    // ESTALE also when the file turned out to be cut or rewritten while it was followed; what is
    // there of it then is the whole.
    int ReadError() const override { return reader_.ReadError(); }
    int FramesMissing() const override { return reader_.FramesMissing(); }
    // Of a file whose header says that it is empty, yet sound follows (its recorder crashed): makes
    // the rest of the file the length. False when there is nothing, or it is other chunks.
    bool TakeUnannouncedFrames();
    // Changes only within GetEndSample and WaitForStreamingData, so the two agree.
    bool IsStreaming() const override { return reader_.Length() == kUnknownLength; }
    // Until there is another end than GetEndSample told last. Sleeps until the file changes.
    void WaitForStreamingData(int milliseconds) override;

protected:
    mutable FrameReader reader_;  // its length is learned late, also through const questions

private:
    bool LearnLength() const;  // from the header; false: it does not say yet
    void SettleLength() const;

    LSignalObjectRef interrupt_;
    mutable std::optional<FileGrowth> growth_;  // of a streaming file
    mutable int toldEnd_ = 0;
};

template <typename Stored>
class LSRCPCMFile final : public LSRCPCMFileBase {
public:
    LSRCPCMFile(UniqueFd file, int rate, unsigned char channels, std::uint32_t dataBytes,
                LSignalObjectRef interrupt)
        : LSRCPCMFileBase(std::move(file), rate, channels, sizeof(Stored), dataBytes, interrupt) {}

    void Read(int* buffer, int frames) override { reader_.Read<Stored>(buffer, frames, channels_); }
};
