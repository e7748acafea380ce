// Sinks that write PCM WAVE files. The 46-byte header says "unknown" in both size fields until the
// sink is finished, so a file can be played while it grows.
#pragma once

#include "formats/frame_file.h"
#include "sound/sound_sink.h"

constexpr int kWaveHeaderBytes = 46;

class LSNKPCMFileBase : public LSoundSinkBase {
public:
    // bytesPerSample 1 or 2. An existing file keeps its first startFrame frames and loses
    // everything after them.
    LSNKPCMFileBase(const char* path, int rate, unsigned char channels, unsigned bytesPerSample,
                    int startFrame);
    ~LSNKPCMFileBase() override;

    // Backwards only: drops the frames from there on. A forward seek is ignored.
    void Seek(int frame) override;

    bool KeepsSixteenBits() const override { return bytesPerSample_ == 2; }

    // Writes the header at the file's current position, with the sizes as they now are when final.
    void WriteRIFF(bool final);

protected:
    void Complete() override;

    FrameWriter writer_;

private:
    unsigned bytesPerSample_;
};

template <typename Stored>
class LSNKPCMFile final : public LSNKPCMFileBase {
public:
    LSNKPCMFile(const char* path, int rate, unsigned char channels, int startFrame)
        : LSNKPCMFileBase(path, rate, channels, sizeof(Stored), startFrame) {}

    void Write(const int* buffer, int frames) override {
        framesWritten_ = AddFrames(framesWritten_, frames);
        NoteWriteError(writer_.Write<Stored>(buffer, frames, channels_));
    }
};
