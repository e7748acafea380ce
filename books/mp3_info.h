// The frame without sound at the beginning of an MP3 file, in which LAME tells players how long the
// file is and what to leave out at its ends.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

bool IsInfoFrame(std::string_view frame);

// Of what follows that frame. One thread.
class Mp3Info {
public:
    // Of the file's first frame, which may be one already.
    explicit Mp3Info(std::string_view first);

    void Add(std::string_view frame);
    // The whole frame, of a file made of so many samples of sound, of which a frame holds so many.
    std::string Frame(std::int64_t samples, int samplesInFrame) const;

private:
    std::string frame_;
    std::uint32_t frames_ = 0;
    std::uint64_t bytes_ = 0;
    std::uint16_t checksum_ = 0;
};
