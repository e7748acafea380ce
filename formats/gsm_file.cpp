#include "formats/gsm_file.h"

#include <errno.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "formats/file_io.h"
#include "formats/frame_file.h"

using gsm::kFrameSamples;

namespace {

int FramesInFile(int fd) {
    const std::int64_t coded = FileSize(fd) / static_cast<std::int64_t>(kGsmNormalBytes);
    return ClampFrames(coded * kFrameSamples) / kFrameSamples * kFrameSamples;
}

}  // namespace

LGSMFileSink::LGSMFileSink(const char* path) : LSoundSinkBase(kGsmRate, 1) {
    int error = 0;
    file_ = OpenFileForWriting(path, &error);
    if (!file_.IsOpen()) {
        status_ |= 1;
        NoteWriteError(error);
        return;
    }
    struct stat info;
    if (::fstat(file_.Get(), &info) == 0 && S_ISREG(info.st_mode) &&
        ::ftruncate(file_.Get(), 0) != 0)
        NoteWriteError(errno);
}

LGSMFileSink::~LGSMFileSink() {
    Complete();
}

void LGSMFileSink::Complete() {
    if (pendingCount_ > 0) {
        std::fill(pending_ + pendingCount_, pending_ + kFrameSamples, 0);
        WriteFrame(pending_);
        pendingCount_ = 0;
    }
    NoteWriteError(CloseFile(file_));
}

void LGSMFileSink::Put(const unsigned char* bytes, std::size_t size) {
    if (file_.IsOpen() && WriteError() == 0)
        NoteWriteError(WriteFully(file_.Get(), bytes, size));
}

void LGSMFileSink::WriteFrame(const int* samples) {
    unsigned char coded[kGsmNormalBytes];
    encoder_.EncodeNormal(samples, coded);
    Put(coded, sizeof coded);
}

const int* LGSMFileSink::EncodeWholeFrames(const int* buffer, int count) {
    constexpr int kBatch = kMaxBlockFrames / kFrameSamples;
    unsigned char coded[kBatch * kGsmNormalBytes];
    while (count > 0) {
        const int batch = std::min(count, kBatch);
        for (int i = 0; i < batch; i++, buffer += kFrameSamples)
            encoder_.EncodeNormal(buffer, coded + static_cast<std::size_t>(i) * kGsmNormalBytes);
        Put(coded, static_cast<std::size_t>(batch) * kGsmNormalBytes);
        count -= batch;
    }
    return buffer;
}

void LGSMFileSink::Write(const int* buffer, int frames) {
    framesWritten_ = AddFrames(framesWritten_, frames);
    if (pendingCount_ > 0) {
        const int part = std::min(frames, kFrameSamples - pendingCount_);
        std::copy_n(buffer, part, pending_ + pendingCount_);
        pendingCount_ += part;
        buffer += part;
        frames -= part;
        if (pendingCount_ < kFrameSamples)
            return;
        WriteFrame(pending_);
        pendingCount_ = 0;
    }
    buffer = EncodeWholeFrames(buffer, frames / kFrameSamples);
    pendingCount_ = frames % kFrameSamples;
    std::copy_n(buffer, pendingCount_, pending_);
}

LGSMFileSource::LGSMFileSource(UniqueFd file)
    : LSoundSourceBase(kGsmRate, 1, kGsmPeak),
      file_(std::move(file)),
      length_(FramesInFile(file_.Get())),
      input_(std::make_unique<unsigned char[]>(kInputBytes)) {}

const unsigned char* LGSMFileSource::NextCodedFrame() {
    const int left = length_ / kFrameSamples - nextCodedFrame_;
    if (left <= 0)
        return nullptr;
    if (inputAt_ == inputEnd_) {
        const std::size_t wanted =
            std::min(kInputBytes, static_cast<std::size_t>(left) * kGsmNormalBytes);
        const std::int64_t offset =
            std::int64_t{nextCodedFrame_} * static_cast<std::int64_t>(kGsmNormalBytes);
        int error = 0;
        const std::size_t got = ReadFullyAt(file_.Get(), input_.get(), wanted, offset, &error);
        NoteReadError(error);
        inputAt_ = 0;
        inputEnd_ = got - got % kGsmNormalBytes;
        if (inputEnd_ == 0)
            return nullptr;
    }
    const unsigned char* coded = input_.get() + inputAt_;
    inputAt_ += kGsmNormalBytes;
    nextCodedFrame_++;
    return coded;
}

void LGSMFileSource::Read(int* buffer, int frames) {
    position_ =
        static_cast<int>(std::min<std::int64_t>(std::int64_t{position_} + frames, INT32_MAX));
    while (frames > 0) {
        if (decodedAt_ < kFrameSamples) {
            const int part = std::min(frames, kFrameSamples - decodedAt_);
            std::copy_n(decoded_ + decodedAt_, part, buffer);
            decodedAt_ += part;
            buffer += part;
            frames -= part;
            continue;
        }
        const unsigned char* coded = NextCodedFrame();
        if (coded == nullptr)
            break;
        if (frames >= kFrameSamples) {
            decoder_.DecodeFrameNormal(coded, buffer);
            buffer += kFrameSamples;
            frames -= kFrameSamples;
        } else {
            decoder_.DecodeFrameNormal(coded, decoded_);
            decodedAt_ = 0;
        }
    }
    std::fill_n(buffer, frames, 0);
}

void LGSMFileSource::Seek(int frame) {
    decoder_.Reset();
    DropInput();
    position_ = frame;
    decodedAt_ = kFrameSamples;
    nextCodedFrame_ = std::clamp(frame, 0, length_) / kFrameSamples;
    if (frame < 1 || frame > length_)
        return;
    const unsigned char* coded = NextCodedFrame();
    if (coded != nullptr) {
        decoder_.DecodeFrameNormal(coded, decoded_);
        decodedAt_ = frame % kFrameSamples;
    }
}

LSoundSource LGSMFile::OpenSource(const char* path) {
    UniqueFd file = OpenFileForReading(path);
    if (!file.IsOpen())
        return FailedSource(SoundStatus::kCannotOpen);
    return LSoundSource(new LGSMFileSource(std::move(file)));
}

LSoundSink LGSMFile::OpenSink(const char* path) {
    return LSoundSink(new LGSMFileSink(path));
}
