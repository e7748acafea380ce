#include "playback/dialogs/wave_columns.h"

#include <algorithm>
#include <vector>

#include "sound/level.h"

void LWaveColumns::ScrollFrame(const LWaveFrame& frame) {
    LWaveFrame next = frame;
    next.columns = std::clamp(next.columns, 0, kMost);
    next.columnFrames = std::max(next.columnFrames, 1);
    const std::int64_t moved = next.first - frame_.first;
    const bool scrolls = next.columnFrames == frame_.columnFrames && moved % next.columnFrames == 0;
    const std::int64_t shift = scrolls ? moved / next.columnFrames : kMost;
    const int old = frame_.columns;
    const auto kept = [&](std::int64_t column) {
        const std::int64_t from = column + shift;
        return from >= 0 && from < old ? columns_[static_cast<std::size_t>(from)] : LWaveColumn{};
    };
    if (shift >= 0) {
        for (int column = 0; column < next.columns; ++column)
            Store(column, kept(column));
    } else {
        for (int column = next.columns - 1; column >= 0; --column)
            Store(column, kept(column));
    }
    frame_ = next;
}

void LWaveColumns::Forget() {
    columns_.fill({});
}

int LWaveColumns::NextToScan(int from, std::int64_t end) const {
    using State = LWaveColumn::State;
    for (int column = from; column < frame_.columns; ++column) {
        const State state = At(column).state;
        if (state == State::kUnknown || state == State::kOpen ||
            (state == State::kPastEnd && frame_.FirstOf(column) < end))
            return column;
    }
    return frame_.columns;
}

LWaveColumn ScanWaveColumn(LSoundSourceBase& source, const LWaveFrame& frame, int column,
                           std::int64_t end, bool grows) {
    const std::int64_t first = std::max<std::int64_t>(0, frame.FirstOf(column));
    const std::int64_t next = frame.FirstOf(column + 1);
    LWaveColumn scanned;
    scanned.state = LWaveColumn::State::kPastEnd;
    const std::int64_t last = std::min(next, end);
    if (first >= last)
        return scanned;
    if (source.GetPositionSample() != first)
        source.Seek(static_cast<int>(first));
    const auto most =
        static_cast<std::size_t>(std::min<std::int64_t>(kMaxBlockFrames, last - first));
    std::vector<int> block(most * source.Channels());
    int peak = 0;
    for (std::int64_t at = first; at < last;) {
        const int frames = static_cast<int>(std::min<std::int64_t>(kMaxBlockFrames, last - at));
        source.Read(block.data(), frames);
        peak = std::max(peak, GetBufferPeak(block.data(), frames, source.Channels()));
        at += frames;
    }
    scanned.peak = static_cast<std::uint8_t>(std::min(peak >> 10, 255));
    scanned.clips = peak >= kMaxPcm16Peak;
    scanned.state = grows && next > end ? LWaveColumn::State::kOpen : LWaveColumn::State::kScanned;
    return scanned;
}
