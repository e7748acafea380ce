#include "books/mp3_info.h"

#include <algorithm>
#include <array>

#include "books/codec_frames.h"

namespace {

// From the tag's first letter on.
constexpr std::size_t kFlagsAt = 4;
constexpr std::size_t kFramesAt = 8;
constexpr std::size_t kBytesAt = 12;
constexpr std::size_t kPlacesAt = 16;
constexpr std::size_t kPlaces = 100;
constexpr std::size_t kEncoderAt = 120;
constexpr std::size_t kMethodAt = 129;
constexpr std::size_t kDelayAt = 141;
constexpr std::size_t kMusicLengthAt = 148;
constexpr std::size_t kMusicChecksumAt = 152;
constexpr std::size_t kChecksumAt = 154;
constexpr std::size_t kTagSize = 156;
constexpr char kHasAll = 0x0F;
constexpr char kConstantRate = 0x01;
constexpr std::string_view kEncoder = "LAME3.100";  // players believe the delays behind it alone

std::size_t TagAt(std::string_view frame) {
    const std::string_view start = frame.substr(0, 64);
    return std::min(start.find("Info"), start.find("Xing"));
}

std::uint16_t InfoChecksum(std::string_view bytes, std::uint16_t checksum) {
    static const auto table = [] {
        std::array<std::uint16_t, 256> made{};
        for (unsigned int i = 0; i < made.size(); ++i) {
            unsigned int value = i;
            for (int bit = 0; bit < 8; ++bit)
                value = (value & 1U) != 0 ? value >> 1 ^ 0xA001U : value >> 1;
            made[i] = static_cast<std::uint16_t>(value);
        }
        return made;
    }();
    for (const char byte : bytes)
        checksum = static_cast<std::uint16_t>(
            table[(checksum ^ static_cast<unsigned char>(byte)) & 0xFFU] ^ checksum >> 8);
    return checksum;
}

void Put(std::string& frame, std::size_t at, std::uint64_t value, int bytes) {
    for (int i = bytes - 1; i >= 0; --i, value >>= 8)
        frame[at + static_cast<std::size_t>(i)] = static_cast<char>(value & 0xFFU);
}

// LAME leaves it out where a frame of the file's bit rate is too short for it.
std::string MadeInfoFrame(std::string_view like) {
    constexpr std::size_t kLowestRate = 1;
    constexpr std::size_t kHighestRate = 14;
    constexpr std::uint64_t kDelay = 576;  // LAME's own
    for (std::size_t rate = kLowestRate; rate <= kHighestRate; ++rate) {
        std::string frame(like.substr(0, kMp3HeaderBytes));
        frame[2] = static_cast<char>(rate << 4 | (static_cast<unsigned char>(frame[2]) & 0x0CU));
        const int bytes = Mp3Frame(reinterpret_cast<const unsigned char*>(frame.data())).bytes;
        const std::size_t tag = Mp3BodyAt(frame);
        if (bytes < static_cast<int>(tag + kTagSize))
            continue;
        frame.resize(static_cast<std::size_t>(bytes));
        frame.replace(tag, 4, "Info");
        frame[tag + kFlagsAt + 3] = kHasAll;
        frame.replace(tag + kEncoderAt, kEncoder.size(), kEncoder);
        frame[tag + kMethodAt] = kConstantRate;
        Put(frame, tag + kDelayAt, kDelay << 12, 3);
        return frame;
    }
    return std::string(like);
}

}  // namespace

bool IsInfoFrame(std::string_view frame) {
    return TagAt(frame) != std::string_view::npos;
}

Mp3Info::Mp3Info(std::string_view first)
    : frame_(IsInfoFrame(first) ? std::string(first) : MadeInfoFrame(first)) {}

void Mp3Info::Add(std::string_view frame) {
    ++frames_;
    bytes_ += frame.size();
    checksum_ = InfoChecksum(frame, checksum_);
}

std::string Mp3Info::Frame(std::int64_t samples, int samplesInFrame) const {
    std::string frame = frame_;
    const std::size_t tag = TagAt(frame);
    if (frame.size() < tag + kTagSize || frame[tag + kFlagsAt + 3] != kHasAll)
        return frame;
    const std::uint64_t whole = bytes_ + frame.size();
    Put(frame, tag + kFramesAt, frames_, 4);
    Put(frame, tag + kBytesAt, whole, 4);
    for (std::size_t i = 0; i < kPlaces; ++i)  // of a constant bit rate
        Put(frame, tag + kPlacesAt + i, i * 256 / kPlaces, 1);
    const auto high = static_cast<unsigned char>(frame[tag + kDelayAt]);
    const auto middle = static_cast<unsigned char>(frame[tag + kDelayAt + 1]);
    const std::int64_t delay = high << 4 | middle >> 4;
    constexpr std::int64_t kMostPadding = 0xFFF;
    const std::int64_t padding = std::clamp<std::int64_t>(
        std::int64_t{frames_} * samplesInFrame - delay - samples, 0, kMostPadding);
    Put(frame, tag + kDelayAt, static_cast<std::uint64_t>(delay << 12 | padding), 3);
    Put(frame, tag + kMusicLengthAt, whole, 4);
    Put(frame, tag + kMusicChecksumAt, checksum_, 2);
    Put(frame, tag + kChecksumAt,
        InfoChecksum(std::string_view(frame).substr(0, tag + kChecksumAt), 0), 2);
    return frame;
}
