#include "books/codec_frames.h"

#include <array>
#include <cstring>

namespace {

constexpr std::size_t kHeaderBytes = 7;  // of ADTS, the longer one

void SkipId3(std::FILE* file) {
    unsigned char header[10];
    if (std::fread(header, 1, sizeof header, file) == sizeof header &&
        std::memcmp(header, "ID3", 3) == 0)
        std::fseek(file, (header[6] << 21 | header[7] << 14 | header[8] << 7 | header[9]) + 10,
                   SEEK_SET);
    else
        std::fseek(file, 0, SEEK_SET);
}

}  // namespace

CodecFrame Mp3Frame(const unsigned char* header) {
    static constexpr std::array kRates = {44100, 48000, 32000, 0};
    static constexpr std::array kKilobitsOf1 = {0,   32,  40,  48,  56,  64,  80,  96,
                                                112, 128, 160, 192, 224, 256, 320, 0};
    static constexpr std::array kKilobitsOf2 = {0,  8,  16, 24,  32,  40,  48,  56,
                                                64, 80, 96, 112, 128, 144, 160, 0};
    const int version = header[1] >> 3 & 3;  // 3: MPEG-1, 2: MPEG-2, 0: MPEG-2.5
    if (header[0] != 0xFF || (header[1] & 0xE6) != 0xE2 || version == 1)
        return {};
    const auto at = static_cast<std::size_t>(header[2] >> 4);
    const int kilobits = version == 3 ? kKilobitsOf1[at] : kKilobitsOf2[at];
    const int divisor = version == 3 ? 1 : version == 2 ? 2 : 4;
    const int rate = kRates[header[2] >> 2 & 3] / divisor;
    if (kilobits == 0 || rate == 0)
        return {};
    const int samples = version == 3 ? 1152 : 576;
    return {samples / 8 * kilobits * 1000 / rate + (header[2] >> 1 & 1), samples, rate};
}

std::size_t Mp3BodyAt(std::string_view frame) {
    const bool isMono = static_cast<unsigned char>(frame[3]) >> 6 == 3;
    const bool isMpeg1 = (static_cast<unsigned char>(frame[1]) >> 3 & 3) == 3;
    return kMp3HeaderBytes + (isMpeg1 ? (isMono ? 17 : 32) : (isMono ? 9 : 17));
}

constexpr std::array kAdtsRates = {96000, 88200, 64000, 48000, 44100, 32000, 24000, 22050,
                                   16000, 12000, 11025, 8000,  7350,  0,     0,     0};

int AacRate(int rate) {
    int next = kAdtsRates.front();
    for (const int known : kAdtsRates)
        next = known >= rate ? known : next;
    return next;
}

CodecFrame AdtsFrame(const unsigned char* header) {
    if (header[0] != 0xFF || (header[1] & 0xF6) != 0xF0)
        return {};
    const int bytes = (header[3] & 3) << 11 | header[4] << 3 | header[5] >> 5;
    return {bytes, 1024, kAdtsRates[header[2] >> 2 & 15]};
}

CodecFrames::CodecFrames(std::FILE* file, Header header) : file_(file), header_(header) {
    SkipId3(file_);
}

bool CodecFrames::Next() {
    bytes_.resize(kHeaderBytes);
    const std::size_t got = std::fread(bytes_.data(), 1, kHeaderBytes, file_);
    isCut_ = got > 0 && got < kHeaderBytes;
    if (got != kHeaderBytes)
        return false;
    frame_ = header_(reinterpret_cast<const unsigned char*>(bytes_.data()));
    if (frame_.bytes <= static_cast<int>(kHeaderBytes))
        return false;
    const auto size = static_cast<std::size_t>(frame_.bytes);
    bytes_.resize(size);
    const std::size_t left = size - kHeaderBytes;
    isCut_ = std::fread(bytes_.data() + kHeaderBytes, 1, left, file_) != left;
    return !isCut_;
}
