#include "formats/wave_source.h"

#include <errno.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <limits>

#include "formats/file_io.h"

namespace {

// True when chunks with readable identifiers fill the file exactly from there to its end.
bool HoldsChunks(int file, std::int64_t offset) {
    const std::int64_t size = FileSize(file);
    std::uint8_t head[8];
    while (offset < size) {
        if (ReadFullyAt(file, head, sizeof(head), offset) < sizeof(head) ||
            !std::all_of(head, head + 4, [](std::uint8_t c) { return c >= ' ' && c <= '~'; }))
            return false;
        const std::int64_t bytes = LoadLE32(head + 4);
        offset += 8 + bytes;
        if (offset < size)
            offset += bytes % 2;
    }
    return offset == size;
}

}  // namespace

LSRCPCMFileBase::LSRCPCMFileBase(UniqueFd file, int rate, unsigned char channels,
                                 int bytesPerSample, std::uint32_t dataBytes,
                                 LSignalObjectRef interrupt)
    : LSoundSourceBase(rate, channels, kMaxPcm16Peak),
      reader_(std::move(file), channels_ * bytesPerSample, dataBytes),
      interrupt_(interrupt) {
    if (IsStreaming())
        growth_.emplace(reader_.Descriptor());
}

bool LSRCPCMFileBase::LearnLength() const {
    std::uint8_t field[8];
    const std::size_t got =
        ReadFullyAt(reader_.Descriptor(), field, sizeof(field), reader_.DataStart() - 8);
    if (got < sizeof(field) || std::memcmp(field, "data", 4) != 0) {
        reader_.NoteReadError(ESTALE);
        reader_.SetFrames(reader_.FramesInFile());
        return true;
    }
    reader_.SetLength(LoadLE32(field + 4));
    if (IsStreaming())
        return false;
    if (const int present = reader_.FramesInFile(); present < reader_.Length()) {
        reader_.NoteReadError(ESTALE);
        reader_.SetFrames(present);
    }
    return true;
}

void LSRCPCMFileBase::SettleLength() const {
    if (LearnLength() || !growth_->IsOver(FileSize(reader_.Descriptor())))
        return;
    // A writer fills in the size just before it goes.
    if (!LearnLength())
        reader_.SetFrames(reader_.FramesInFile());
}

bool LSRCPCMFileBase::TakeUnannouncedFrames() {
    if (reader_.Length() != 0 || HoldsChunks(reader_.Descriptor(), reader_.DataStart()))
        return false;
    reader_.SetFrames(reader_.FramesInFile());
    return reader_.Length() > 0;
}

int LSRCPCMFileBase::GetEndSample() const {
    if (IsStreaming())
        SettleLength();
    toldEnd_ = IsStreaming() ? reader_.FramesInFile() : reader_.Length();
    return toldEnd_;
}

void LSRCPCMFileBase::WaitForStreamingData(int milliseconds) {
    using Clock = std::chrono::steady_clock;
    constexpr int kLookAgain = 500;  // a writer that is killed on another machine tells nobody
    const auto deadline = Clock::now() + std::chrono::milliseconds(milliseconds);
    const int told = toldEnd_;
    if (IsStreaming())
        growth_->Watch();
    while (IsStreaming() && GetEndSample() == told && IsStreaming()) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        if (left < 1 ||
            !growth_->Wait(static_cast<int>(std::min<long>(left, kLookAgain)), interrupt_))
            return;
    }
}

void LSRCPCMFileBase::Seek(int frame) {
    // Of a file that grows, the place behind the present end is where its frames will be.
    const int end = GetEndSample();
    reader_.Seek(frame, IsStreaming() ? std::numeric_limits<int>::max() : end);
}
