#include "formats/vox_file.h"

#include <errno.h>
#include <unistd.h>

#include <algorithm>

#include "formats/file_io.h"
#include "formats/frame_file.h"

namespace {

constexpr int kVoxPeak = 2097152;
constexpr int kBlockBytes = kMaxBlockFrames / 2 + 1;

std::uint8_t ByteOf(unsigned high, unsigned low) {
    return static_cast<std::uint8_t>(high << 4 | low);
}

}  // namespace

LSRCVOX::LSRCVOX(UniqueFd file, int rate)
    : LSoundSourceBase(rate, 1, kVoxPeak),
      file_(std::move(file)),
      bytes_(std::make_unique<std::uint8_t[]>(kBlockBytes)) {}

int LSRCVOX::GetEndSample() const {
    return ClampFrames(FileSize(file_.Get()) * 2);
}

void LSRCVOX::Seek(int frame) {
    position_ = frame;
    holding_ = false;
    const int inFile = std::max(frame, 0);
    ::lseek(file_.Get(), inFile / 2, SEEK_SET);
    if (inFile % 2 != 0)
        holding_ = ReadFully(file_.Get(), &held_, 1) == 1;
}

void LSRCVOX::Read(int* buffer, int frames) {
    while (frames > 0) {
        const int block = std::min(frames, kMaxBlockFrames);
        const int silent = position_ < 0 ? static_cast<int>(std::min<std::int64_t>(
                                               block, -static_cast<std::int64_t>(position_)))
                                         : 0;
        std::fill_n(buffer, silent, 0);
        ReadBlock(buffer + silent, block - silent);
        position_ = static_cast<int>(
            std::min<std::int64_t>(static_cast<std::int64_t>(position_) + block, INT32_MAX));
        buffer += block;
        frames -= block;
    }
}

int LSRCVOX::TakeHeldNibble(int* buffer) {
    if (!holding_)
        return 0;
    holding_ = false;
    *buffer = DecodeCode(held_ & 15U);
    return 1;
}

void LSRCVOX::ReadBlock(int* buffer, int frames) {
    if (frames == 0)
        return;
    int done = TakeHeldNibble(buffer);
    const auto wanted = static_cast<std::size_t>(frames - done + 1) / 2;
    int error = 0;
    const int got = static_cast<int>(ReadFully(file_.Get(), bytes_.get(), wanted, &error));
    NoteReadError(error);
    const int whole = std::min(got, (frames - done) / 2);
    DecodeBytes(bytes_.get(), whole, buffer + done);
    done += 2 * whole;
    if (got > whole) {
        held_ = bytes_[static_cast<std::size_t>(whole)];
        holding_ = true;
        buffer[done++] = DecodeCode(held_ >> 4U);
    }
    std::fill(buffer + done, buffer + frames, 0);
}

LSNKVOX::LSNKVOX(const char* path, int rate)
    : LSoundSinkBase(rate, 1), bytes_(std::make_unique<std::uint8_t[]>(kBlockBytes)) {
    int error = 0;
    file_ = OpenFileForWriting(path, &error);
    if (!file_.IsOpen())
        status_ |= 1;
    NoteWriteError(error);
    if (file_.IsOpen() && ::ftruncate(file_.Get(), 0) != 0 && errno != EINVAL)
        NoteWriteError(errno);
}

LSNKVOX::~LSNKVOX() {
    Complete();
}

void LSNKVOX::Complete() {
    NoteWriteError(CloseFile(file_));
}

void LSNKVOX::Write(const int* buffer, int frames) {
    framesWritten_ = AddFrames(framesWritten_, frames);
    while (frames > 0) {
        const int block = std::min(frames, kMaxBlockFrames);
        WriteBlock(buffer, block);
        buffer += block;
        frames -= block;
    }
}

void LSNKVOX::WriteBlock(const int* buffer, int frames) {
    int bytes = 0;
    int at = 0;
    int left = frames;
    if (holding_) {
        bytes_[0] = ByteOf(held_, EncodeSample(buffer[0]));
        holding_ = false;
        bytes = 1;
        // The sample after this one is skipped, and the call ends one past its last: files made in
        // odd blocks have that length. Past the end stands the last sample again.
        at = 2;
        --left;
    }
    const int inside = std::min(left, std::max(frames - at, 0)) / 2;
    if (inside > 0)
        EncodeBytes(buffer + at, bytes_.get() + bytes, inside);
    bytes += inside;
    at += 2 * inside;
    left -= 2 * inside;
    const auto sampleAt = [&](int index) { return buffer[std::min(index, frames - 1)]; };
    if (left >= 2) {
        const unsigned high = EncodeSample(sampleAt(at));
        bytes_[static_cast<std::size_t>(bytes++)] = ByteOf(high, EncodeSample(sampleAt(at + 1)));
        at += 2;
        left -= 2;
    }
    if (left == 1) {
        held_ = static_cast<std::uint8_t>(EncodeSample(sampleAt(at)));
        holding_ = true;
    }
    if (file_.IsOpen() && WriteError() == 0)
        NoteWriteError(WriteFully(file_.Get(), bytes_.get(), static_cast<std::size_t>(bytes)));
}
