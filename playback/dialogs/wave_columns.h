// What a waveform view knows of the sound behind each of its pixel columns.
#pragma once

#include <array>
#include <cstdint>

#include "sound/sound_source.h"

struct LWaveFrame {
    std::int64_t first = 0;         // frame number at the left edge
    std::int32_t columnFrames = 1;  // frames in a pixel column
    int columns = 0;
    bool operator==(const LWaveFrame&) const = default;
    std::int64_t FirstOf(int column) const { return first + std::int64_t{column} * columnFrames; }
};

struct LWaveColumn {
    enum class State : std::uint8_t {
        kUnknown,  // to be scanned
        kOpen,     // scanned as far as the sound went; more of it may come
        kScanned,
        kPastEnd,  // no sound there, or none yet
    };
    std::uint8_t peak = 0;  // largest sample / 1024, 255 from about half of full scale up
    bool clips = false;
    State state = State::kUnknown;
    bool HasSound() const { return state == State::kOpen || state == State::kScanned; }
};

// Not locked: the owner sees to that.
class LWaveColumns {
public:
    static constexpr int kMost = 2048;

    const LWaveFrame& Frame() const { return frame_; }
    const LWaveColumn& At(int column) const { return columns_[static_cast<std::size_t>(column)]; }

    // Moves to another frame, which gets at most kMost columns; columns that merely scrolled are
    // kept.
    void ScrollFrame(const LWaveFrame& frame);
    void Forget();  // all columns, as for another source
    void Store(int column, const LWaveColumn& scanned) {
        columns_[static_cast<std::size_t>(column)] = scanned;
    }
    // The first column from `from` on that has to be scanned when the sound ends at `end`; the
    // number of columns when there is none.
    int NextToScan(int from, std::int64_t end) const;

private:
    LWaveFrame frame_;
    std::array<LWaveColumn, kMost> columns_;
};

// Reads one column of a source that nobody else uses meanwhile. `end` is the source's, `grows`
// whether it may move on.
LWaveColumn ScanWaveColumn(LSoundSourceBase& source, const LWaveFrame& frame, int column,
                           std::int64_t end, bool grows);
