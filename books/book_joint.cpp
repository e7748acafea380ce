#include "books/book_joint.h"

#include <ogg/ogg.h>
#include <opus.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <string_view>

#include "formats/sndfile_file.h"
#include "formats/wave_file.h"
#include "sound/source_to_sink.h"

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

FileHandle OpenPart(const std::string& path) {
    return FileHandle(std::fopen(path.c_str(), "rbe"));
}

constexpr const char* kDamaged = "a finished chapter is damaged";

// A frame of the codec as its header tells it; no bytes when it is none.
struct CodecFrame {
    int bytes = 0;
    int samples = 0;
    int rate = 0;
};

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

CodecFrame AdtsFrame(const unsigned char* header) {
    static constexpr std::array kRates = {96000, 88200, 64000, 48000, 44100, 32000, 24000, 22050,
                                          16000, 12000, 11025, 8000,  7350,  0,     0,     0};
    if (header[0] != 0xFF || (header[1] & 0xF6) != 0xF0)
        return {};
    const int bytes = (header[3] & 3) << 11 | header[4] << 3 | header[5] >> 5;
    return {bytes, 1024, kRates[header[2] >> 2 & 15]};
}

// LAME's frame without sound, which counts the frames of one file.
bool IsInfoFrame(std::string_view frame) {
    const std::string_view start = frame.substr(0, 64);
    return start.find("Info") != std::string_view::npos ||
           start.find("Xing") != std::string_view::npos;
}

void SkipId3(std::FILE* file) {
    unsigned char header[10];
    if (std::fread(header, 1, sizeof header, file) == sizeof header &&
        std::memcmp(header, "ID3", 3) == 0)
        std::fseek(file, (header[6] << 21 | header[7] << 14 | header[8] << 7 | header[9]) + 10,
                   SEEK_SET);
    else
        std::fseek(file, 0, SEEK_SET);
}

template <CodecFrame (*Frame)(const unsigned char*), std::size_t HeaderBytes>
void JoinFrames(const std::vector<std::string>& parts, std::FILE* out, LProgress& progress,
                BookJoint& joint) {
    constexpr int kFramesBetweenStops = 512;
    int written = 0;
    for (const std::string& path : parts) {
        const FileHandle part = OpenPart(path);
        if (!part) {
            joint.problem = std::strerror(errno);
            return;
        }
        SkipId3(part.get());
        std::int64_t frames = 0;
        bool isFirst = true;
        std::vector<unsigned char> bytes(HeaderBytes);
        while (std::fread(bytes.data(), 1, HeaderBytes, part.get()) == HeaderBytes) {
            const CodecFrame frame = Frame(bytes.data());
            if (frame.bytes <= static_cast<int>(HeaderBytes))
                break;
            const auto size = static_cast<std::size_t>(frame.bytes);
            bytes.resize(size);
            if (std::fread(bytes.data() + HeaderBytes, 1, size - HeaderBytes, part.get()) !=
                size - HeaderBytes)
                break;
            const std::string_view view(reinterpret_cast<const char*>(bytes.data()), size);
            if (!isFirst || !IsInfoFrame(view)) {
                joint.rate = frame.rate;
                frames += frame.samples;
                if (std::fwrite(bytes.data(), 1, size, out) != size) {
                    joint.problem = std::strerror(errno);
                    return;
                }
            }
            isFirst = false;
            if (++written % kFramesBetweenStops == 0 && progress.IsToStop()) {
                joint.isStopped = true;
                return;
            }
        }
        if (frames == 0)
            joint.problem = kDamaged;
        joint.frames.push_back(frames);
    }
}

// Takes packets out of one stream in Ogg and puts them into another.
class OpusJoiner {
public:
    OpusJoiner(std::FILE* out, LProgress& progress) : out_(out), progress_(progress) {
        ogg_stream_init(&stream_, 1);
    }
    ~OpusJoiner() { ogg_stream_clear(&stream_); }
    OpusJoiner(const OpusJoiner&) = delete;
    OpusJoiner& operator=(const OpusJoiner&) = delete;

    // 48 kHz frames of the part, or -1.
    std::int64_t Add(std::FILE* part, bool isLast) {
        ogg_sync_state sync;
        ogg_stream_state in;
        ogg_sync_init(&sync);
        ogg_stream_init(&in, 0);
        const std::int64_t before = granule_;
        isWhole_ = false;
        std::int64_t number = 0;
        ogg_page page;
        while (!isStopped_ && NextPage(part, sync, page)) {
            isStopped_ = progress_.IsToStop();
            if (ogg_page_bos(&page) != 0)
                ogg_stream_reset_serialno(&in, ogg_page_serialno(&page));
            ogg_stream_pagein(&in, &page);
            for (ogg_packet packet; ogg_stream_packetout(&in, &packet) == 1; ++number)
                Put(packet, number, isLast);
        }
        ogg_stream_clear(&in);
        ogg_sync_clear(&sync);
        return isWhole_ ? granule_ - before : -1;
    }
    bool HasWritten() const { return hasWritten_; }
    bool IsStopped() const { return isStopped_; }

private:
    static bool NextPage(std::FILE* part, ogg_sync_state& sync, ogg_page& page) {
        constexpr long kBlock = 65536;
        while (ogg_sync_pageout(&sync, &page) != 1) {
            char* const block = ogg_sync_buffer(&sync, kBlock);
            const std::size_t got = std::fread(block, 1, kBlock, part);
            if (got == 0)
                return false;
            ogg_sync_wrote(&sync, static_cast<long>(got));
        }
        return true;
    }
    void Put(ogg_packet& packet, std::int64_t number, bool isLast) {
        constexpr std::int64_t kHeaders = 2;
        if (number < kHeaders && packets_ >= kHeaders)
            return;
        if (number >= kHeaders)
            granule_ += std::max(0, opus_packet_get_nb_samples(
                                        packet.packet, static_cast<int>(packet.bytes), 48000));
        isWhole_ = packet.e_o_s != 0;
        packet.granulepos = granule_;
        packet.packetno = packets_++;
        packet.e_o_s = isWhole_ && isLast ? 1 : 0;
        ogg_stream_packetin(&stream_, &packet);
        ogg_page page;
        while ((packets_ <= kHeaders || packet.e_o_s != 0
                    ? ogg_stream_flush(&stream_, &page)
                    : ogg_stream_pageout(&stream_, &page)) != 0)
            Write(page);
    }
    void Write(const ogg_page& page) {
        const auto header = static_cast<std::size_t>(page.header_len);
        const auto body = static_cast<std::size_t>(page.body_len);
        hasWritten_ = hasWritten_ && std::fwrite(page.header, 1, header, out_) == header &&
                      std::fwrite(page.body, 1, body, out_) == body;
    }

    std::FILE* out_;
    LProgress& progress_;
    bool isStopped_ = false;
    ogg_stream_state stream_;
    std::int64_t packets_ = 0;
    std::int64_t granule_ = 0;
    bool isWhole_ = false;
    bool hasWritten_ = true;
};

void JoinOpus(const std::vector<std::string>& parts, std::FILE* out, LProgress& progress,
              BookJoint& joint) {
    OpusJoiner joiner(out, progress);
    joint.rate = 48000;
    for (const std::string& path : parts) {
        const FileHandle part = OpenPart(path);
        const std::int64_t frames = part ? joiner.Add(part.get(), &path == &parts.back()) : -1;
        joint.isStopped = joiner.IsStopped();
        if (joint.isStopped)
            return;
        if (frames < 0)
            joint.problem = kDamaged;
        else if (!joiner.HasWritten())
            joint.problem = std::strerror(errno);
        if (!joint.problem.empty())
            return;
        joint.frames.push_back(frames);
    }
}

std::int64_t FramesOf(const std::vector<std::string>& parts) {
    std::int64_t frames = 0;
    for (const std::string& part : parts)
        frames += OpenSndfileSource(part.c_str())->GetEndSample();
    return frames;
}

// Shows nothing, and is stopped with the whole.
class JoiningPart final : public LSilentProgress {
public:
    explicit JoiningPart(LProgress& whole) : whole_(whole) {}
    bool IsToStop() override { return whole_.IsToStop(); }

private:
    LProgress& whole_;
};

// FLAC and WAV lose nothing when they are decoded.
void JoinSamples(SoundType type, const std::vector<std::string>& parts, const std::string& path,
                 LProgress& progress, BookJoint& joint) {
    if (FramesOf(parts) > MostFrames(type)) {
        joint.problem = kBookTooLong;
        return;
    }
    LSoundSink sink;
    for (const std::string& part : parts) {
        const LSoundSource source = OpenSndfileSource(part.c_str());
        if (source->Status() != SoundStatus::kGood) {
            joint.problem = kDamaged;
            return;
        }
        joint.rate = source->SampleRate();
        if (joint.frames.empty())
            sink =
                type == SoundType::kFlac
                    ? OpenFlacSink(path.c_str(), joint.rate, source->Channels())
                    : LWaveFile::OpenSinkPCM(path.c_str(), joint.rate, source->Channels(), 16, 0);
        joint.frames.push_back(source->GetEndSample());
        LPRSourceToSink request{"", source, sink};
        JoiningPart unseen(progress);
        joint.isStopped = Process(unseen, request) == kProcessStopped;
        if (joint.isStopped)
            return;
    }
    if (const int error = sink->Finish(); error != 0)
        joint.problem = std::strerror(error);
}

}  // namespace

std::int64_t MostFrames(SoundType type) {
    // Sinks count frames in 32 bits, WAV files bytes.
    constexpr std::int64_t kMost = 0x7FFFFF00;
    return type == SoundType::kWav || type == SoundType::kFlac
               ? kMost
               : std::numeric_limits<std::int64_t>::max();
}

BookJoint JoinBook(SoundType type, const std::vector<std::string>& parts, const std::string& path,
                   LProgress& progress) {
    BookJoint joint;
    if (type == SoundType::kFlac || type == SoundType::kWav) {
        JoinSamples(type, parts, path, progress, joint);
        return joint;
    }
    FileHandle out(std::fopen(path.c_str(), "wbe"));
    if (!out) {
        joint.problem = std::strerror(errno);
        return joint;
    }
    if (type == SoundType::kMp3)
        JoinFrames<Mp3Frame, 4>(parts, out.get(), progress, joint);
    else if (type == SoundType::kOpus)
        JoinOpus(parts, out.get(), progress, joint);
    else
        JoinFrames<AdtsFrame, 7>(parts, out.get(), progress, joint);
    errno = 0;
    if (std::fclose(out.release()) != 0 && joint.problem.empty())
        joint.problem = std::strerror(errno);
    return joint;
}
