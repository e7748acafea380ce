#include "formats/frame_file.h"

#include <errno.h>
#include <unistd.h>

#include <limits>

#include "formats/file_io.h"

namespace {

std::unique_ptr<std::byte[]> MakeBlockBuffer(std::size_t bytesPerFrame) {
    return std::make_unique<std::byte[]>(bytesPerFrame * kMaxBlockFrames);
}

}  // namespace

int ClampFrames(std::int64_t frames) {
    return static_cast<int>(
        std::clamp<std::int64_t>(frames, 0, std::numeric_limits<std::int32_t>::max()));
}

FrameReader::FrameReader(UniqueFd file, int bytesPerFrame, std::uint32_t dataBytes)
    : file_(std::move(file)),
      dataStart_(std::max<std::int64_t>(0, ::lseek(file_.Get(), 0, SEEK_CUR))),
      bytesPerFrame_(bytesPerFrame),
      capacity_(static_cast<std::size_t>(bytesPerFrame) * kMaxBlockFrames),
      buffer_(MakeBlockBuffer(static_cast<std::size_t>(bytesPerFrame))) {
    SetLength(dataBytes);
}

void FrameReader::SetLength(std::uint32_t dataBytes) {
    length_ = dataBytes == kUnknownBytes
                  ? kUnknownLength
                  : ClampFrames(static_cast<std::int64_t>(dataBytes) / bytesPerFrame_);
}

FrameReader::Request FrameReader::Advance(int frames) {
    constexpr std::int64_t kLast = std::numeric_limits<std::int32_t>::max();
    const std::int64_t start = position_;
    const std::int64_t end = start + frames;
    position_ = static_cast<int>(std::min(end, kLast));
    if (end <= 0)
        return {frames, 0};
    const std::int64_t last =
        length_ == kUnknownLength ? end : std::min<std::int64_t>(end, length_);
    const std::int64_t first = std::max<std::int64_t>(start, 0);
    return {static_cast<int>(first - start),
            static_cast<int>(std::max<std::int64_t>(0, last - first))};
}

FrameReader::Run FrameReader::Take(int frames) {
    const auto frameBytes = static_cast<std::size_t>(bytesPerFrame_);
    if (used_ == filled_) {
        used_ = 0;
        filled_ = ReadFully(file_.Get(), buffer_.get(), capacity_, &readError_);
        // A file that grows may end inside a frame for now, of which the rest comes with the next
        // look. Whoever asks for the torn frame itself gets what there is, and what follows keeps
        // its channels.
        if (const std::size_t torn = filled_ % frameBytes; filled_ > frameBytes && torn != 0) {
            filled_ -= torn;
            ::lseek(file_.Get(), -static_cast<off_t>(torn), SEEK_CUR);
        } else if (torn != 0) {
            ::lseek(file_.Get(), static_cast<off_t>(frameBytes - torn), SEEK_CUR);
        }
    }
    const std::size_t wanted = static_cast<std::size_t>(frames) * frameBytes;
    const std::size_t bytes = std::min(wanted, filled_ - used_);
    const std::byte* const data = buffer_.get() + used_;
    used_ += bytes;
    return {data, bytes, static_cast<int>((bytes + frameBytes - 1) / frameBytes)};
}

void FrameReader::Seek(int frame, int end) {
    position_ = frame;
    used_ = filled_ = 0;
    const std::int64_t target = std::max(0, std::min(frame, end));
    ::lseek(file_.Get(), dataStart_ + target * bytesPerFrame_, SEEK_SET);
}

int FrameReader::FramesInFile() const {
    return ClampFrames((FileSize(file_.Get()) - dataStart_) / bytesPerFrame_);
}

int FrameReader::FramesMissing() const {
    return length_ == kUnknownLength ? 0 : std::max(length_ - FramesInFile(), 0);
}

FrameWriter::FrameWriter(const char* path, std::size_t bytesPerFrame)
    : file_(OpenFileForWriting(path, &openError_)),
      bytesPerFrame_(bytesPerFrame),
      buffer_(MakeBlockBuffer(bytesPerFrame)) {}

const int* FrameWriter::Clipped(const int* buffer, int samples) {
    constexpr int kTop = 127 * 4096 + 2047;  // rounds to the highest value
    clipped_.assign(buffer, buffer + samples);
    for (int& sample : clipped_)
        sample = std::min(sample, kTop);
    return clipped_.data();
}

void FrameWriter::Put(const void* data, std::size_t size) {
    if (file_.IsOpen() && failed_ == 0)
        failed_ = WriteFully(file_.Get(), data, size);
}

int FrameWriter::WriteHeader(const void* header, std::size_t size) {
    const int error = file_.IsOpen() ? WriteFully(file_.Get(), header, size) : 0;
    if (error != 0)
        failed_ = error;
    return error;
}

int FrameWriter::Truncate(std::int64_t bytes) {
    if (!file_.IsOpen())
        return 0;
    SeekTo(bytes);
    // Devices have no length to cut; what matters on them is whether writing works.
    return ::ftruncate(file_.Get(), bytes) == 0 || errno == EINVAL ? 0 : errno;
}

void FrameWriter::SeekForward(std::int64_t headerLength, int frame) {
    const std::int64_t target = headerLength + frame * static_cast<std::int64_t>(bytesPerFrame_);
    SeekTo(std::min(target, FileSize(file_.Get())));
}

void FrameWriter::SeekTo(std::int64_t offset) {
    ::lseek(file_.Get(), offset, SEEK_SET);
}

int FrameWriter::Close() {
    return CloseFile(file_);
}

std::int64_t FrameWriter::Offset() const {
    return ::lseek(file_.Get(), 0, SEEK_CUR);
}

std::uint32_t DataSizeField(int frames, std::size_t bytesPerFrame, std::uint32_t overhead) {
    const std::uint64_t bytes = static_cast<std::uint64_t>(frames) * bytesPerFrame;
    const bool counted = frames < std::numeric_limits<std::int32_t>::max();
    return counted && bytes + overhead < kUnknownBytes ? static_cast<std::uint32_t>(bytes)
                                                       : kUnknownBytes;
}

int AddFrames(int written, int frames) {
    return ClampFrames(static_cast<std::int64_t>(written) + std::max(frames, 0));
}
