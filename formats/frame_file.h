// The frames of an open sound file: what WAV, raw, AU and AIFF sources and sinks have in common.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <vector>

#include "formats/sample_formats.h"
#include "foundation/files/unique_fd.h"
#include "sound/sound_source.h"

constexpr int kUnknownLength = -1;                   // frames
constexpr std::uint32_t kUnknownBytes = 0xFFFFFFFF;  // in size fields

// Frame counts are signed 32-bit throughout; longer files are cut there.
int ClampFrames(std::int64_t frames);

// Reads frames one after the other from a file that may grow or shrink meanwhile. Frames before 0
// and after the end are silence.
class FrameReader {
public:
    // The descriptor stands at the first frame; dataBytes may be kUnknownBytes. bytesPerFrame is at
    // least 1.
    FrameReader(UniqueFd file, int bytesPerFrame, std::uint32_t dataBytes);

    template <typename Stored>
    void Read(int* buffer, int frames, int channels) {
        const Request request = Advance(frames);
        int* const end = buffer + static_cast<std::ptrdiff_t>(frames) * channels;
        int* out = std::fill_n(buffer, request.leadIn * channels, 0);
        for (int wanted = request.inFile; wanted > 0;) {
            const Run run = Take(wanted);
            if (run.frames == 0)
                break;
            const int samples = static_cast<int>(run.bytes / sizeof(Stored));
            ConvertSamplesIn(reinterpret_cast<const Stored*>(run.data), out, samples);
            // Of a frame that the file holds only in part, the rest is silence.
            std::fill(out + samples, out + run.frames * channels, 0);
            out += run.frames * channels;
            wanted -= run.frames;
        }
        std::fill(out, end, 0);
    }

    // Keeps the position given, negative or past the end; places the file within [0, end].
    void Seek(int frame, int end);
    int Position() const { return position_; }
    int Length() const { return length_; }
    void SetLength(std::uint32_t dataBytes);
    void SetFrames(int frames) { length_ = frames; }
    int FramesInFile() const;                     // whole frames behind the first one now
    int FramesMissing() const;                    // of the length
    int ReadError() const { return readError_; }  // errno of the last read that failed, else 0
    void NoteReadError(int error) { readError_ = error; }
    int Descriptor() const { return file_.Get(); }
    std::int64_t DataStart() const { return dataStart_; }

private:
    struct Request {
        int leadIn;  // silent frames before frame 0
        int inFile;  // then as many from the file, the rest is past the end
    };
    struct Run {
        const std::byte* data;
        std::size_t bytes;
        int frames;  // a torn last one included; 0 at the end of the file
    };
    Request Advance(int frames);  // moves the position by the whole request
    Run Take(int frames);         // the next frames in the buffer, which is filled when empty

    UniqueFd file_;
    std::int64_t dataStart_;
    int bytesPerFrame_;
    int position_ = 0;
    int length_;
    // What was read ahead. A file that is being written shows its new data once the buffer is used
    // up, since a read at the end of the file leaves the buffer short, not waiting.
    std::size_t capacity_;
    std::size_t used_ = 0;
    std::size_t filled_ = 0;
    int readError_ = 0;
    std::unique_ptr<std::byte[]> buffer_;
};

// Writes frames behind a header. After the first error nothing more is written, so the file stays a
// clean prefix.
class FrameWriter {
public:
    // Opens or creates path without truncating it. When that fails nothing is ever written, and
    // every operation is harmless. bytesPerFrame is at least 1.
    FrameWriter(const char* path, std::size_t bytesPerFrame);

    // These return 0 or an errno.
    int WriteHeader(const void* header, std::size_t size);  // at the current position
    template <typename Stored>
    int Write(const int* buffer, int frames, int channels) {
        while (frames > 0 && failed_ == 0) {
            const int block = std::min(frames, kMaxBlockFrames);
            const bool has8Bits = std::is_same_v<Stored, LSFS8> || std::is_same_v<Stored, LSFU8>;
            const int* const samples = has8Bits ? Clipped(buffer, block * channels) : buffer;
            ConvertSamplesOut(samples, reinterpret_cast<Stored*>(buffer_.get()), block * channels);
            Put(buffer_.get(), static_cast<std::size_t>(block) * bytesPerFrame_);
            buffer += block * channels;
            frames -= block;
        }
        return failed_;
    }
    int Truncate(std::int64_t bytes);  // and continue there

    // Moves to frame behind headerLength bytes, but not past the end of the file.
    void SeekForward(std::int64_t headerLength, int frame);
    void SeekTo(std::int64_t offset);
    int Close();  // nothing is written from here on
    std::int64_t Offset() const;
    bool IsOpen() const { return file_.IsOpen(); }
    int OpenError() const { return openError_; }  // errno, 0 when open
    std::size_t BytesPerFrame() const { return bytesPerFrame_; }

private:
    void Put(const void* data, std::size_t size);

    // The integers of 8 bits wrap where they round up past their top, which is less than what 16
    // bits hold: a click. What is above it, 0.4 % at most, is clipped.
    const int* Clipped(const int* buffer, int samples);

    std::vector<int> clipped_;
    int openError_ = 0;
    UniqueFd file_;
    std::size_t bytesPerFrame_;
    int failed_ = 0;
    std::unique_ptr<std::byte[]> buffer_;
};

// frames * bytesPerFrame as a 32-bit size field with room for `overhead` more, or kUnknownBytes
// when it does not fit: readers then go by the file's size.
std::uint32_t DataSizeField(int frames, std::size_t bytesPerFrame, std::uint32_t overhead);

// The sinks' frame counter; stays at the largest count once there.
int AddFrames(int written, int frames);
