// Sources and sinks of plain rows of frames, with or without a header in front: raw, AU and AIFF
// files.
#pragma once

#include <type_traits>

#include "formats/frame_file.h"
#include "sound/sound_sink.h"

class LRawFileDataSoundSourceBase : public LSoundSourceBase {
public:
    // file stands at the first frame. Without a known size (kUnknownBytes) the end is wherever the
    // file ends at the moment, so a file that grows is followed.
    LRawFileDataSoundSourceBase(UniqueFd file, int rate, unsigned char channels, int peakMagnitude,
                                int bytesPerSample, std::uint32_t dataBytes);

    int GetPositionSample() const override { return reader_.Position(); }
    int GetEndSample() const override;
    void Seek(int frame) override;
    int ReadError() const override { return reader_.ReadError(); }
    int FramesMissing() const override { return reader_.FramesMissing(); }

protected:
    FrameReader reader_;
};

template <typename Stored>
class LRawFileDataSoundSource final : public LRawFileDataSoundSourceBase {
public:
    LRawFileDataSoundSource(UniqueFd file, int rate, unsigned char channels,
                            std::uint32_t dataBytes = kUnknownBytes)
        : LRawFileDataSoundSourceBase(std::move(file), rate, channels, kPeakOf<Stored>,
                                      sizeof(Stored), dataBytes) {}

    void Read(int* buffer, int frames) override { reader_.Read<Stored>(buffer, frames, channels_); }
};

class LRawFileDataSoundSinkBase;

// Writes a file's header at the current position and returns its length in bytes. Called when the
// sink opens its file and, with final set, from offset 0 when the sink is finished.
using LHeaderWriter = int (*)(LRawFileDataSoundSinkBase& sink, bool final);

int WriteHeaderRAW(LRawFileDataSoundSinkBase& sink, bool final);  // no header at all

class LRawFileDataSoundSinkBase : public LSoundSinkBase {
public:
    // Creates or empties the file. A failed open gives status 1.
    LRawFileDataSoundSinkBase(const char* path, int rate, unsigned char channels, int startFrame,
                              unsigned bytesPerSample, LHeaderWriter writeHeader);
    ~LRawFileDataSoundSinkBase() override;

    // Backwards only: drops the frames from there on. A forward seek is ignored.
    void Seek(int frame) override;

    // For header writers.
    void WriteHeaderBytes(const void* header, std::size_t size);
    // What the file's size field is to say, kUnknownBytes when size + overhead does not fit.
    std::uint32_t DataBytes(std::uint32_t overhead) const;

protected:
    void Complete() override;

    FrameWriter writer_;

private:
    LHeaderWriter writeHeader_;
    int headerLength_;
};

template <typename Stored>
class LRawFileDataSoundSink final : public LRawFileDataSoundSinkBase {
public:
    LRawFileDataSoundSink(const char* path, int rate, unsigned char channels, int startFrame,
                          LHeaderWriter writeHeader)
        : LRawFileDataSoundSinkBase(path, rate, channels, startFrame, sizeof(Stored), writeHeader) {
    }

    bool KeepsSixteenBits() const override {
        return std::is_same_v<Stored, LSF16> || std::is_same_v<Stored, LSFBE16>;
    }

    void Write(const int* buffer, int frames) override {
        framesWritten_ = AddFrames(framesWritten_, frames);
        NoteWriteError(writer_.Write<Stored>(buffer, frames, channels_));
    }
};
