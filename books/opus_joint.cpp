#include <ogg/ogg.h>
#include <opus.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>

#include "books/part_file.h"
#include "formats/opus_sink.h"

namespace {

// Takes packets out of one stream in Ogg and puts them into another.
class OpusJoiner {
public:
    OpusJoiner(std::FILE* out, LProgress& progress) : out_(out), progress_(progress) {
        ogg_stream_init(&stream_, 1);
    }
    ~OpusJoiner() { ogg_stream_clear(&stream_); }
    OpusJoiner(const OpusJoiner&) = delete;
    OpusJoiner& operator=(const OpusJoiner&) = delete;

    // False: the part is damaged.
    bool Add(std::FILE* file, const BookPart& part, bool isLast) {
        ogg_sync_state sync;
        ogg_stream_state in;
        ogg_sync_init(&sync);
        ogg_stream_init(&in, 0);
        const std::int64_t end =
            part.taken == BookPart::kToTheEnd ? INT64_MAX : part.skipped + part.taken;
        bool isWhole = false;
        std::int64_t number = -kHeaders;
        ogg_page page;
        while (!isWhole && !isStopped_ && NextPage(file, sync, page)) {
            isStopped_ = progress_.IsToStop();
            if (ogg_page_bos(&page) != 0)
                ogg_stream_reset_serialno(&in, ogg_page_serialno(&page));
            ogg_stream_pagein(&in, &page);
            for (ogg_packet packet; !isWhole && ogg_stream_packetout(&in, &packet) == 1; ++number) {
                isWhole =
                    number + 1 >= end || (packet.e_o_s != 0 && part.taken == BookPart::kToTheEnd);
                if (number < 0 ? packets_ < kHeaders : number >= part.skipped)
                    Put(packet, part, isWhole && isLast);
            }
        }
        ogg_stream_clear(&in);
        ogg_sync_clear(&sync);
        return isWhole || isStopped_;
    }
    bool HasWritten() const { return hasWritten_; }
    bool IsStopped() const { return isStopped_; }

private:
    static constexpr std::int64_t kHeaders = 2;         // packets
    static constexpr std::int64_t kPacketFrames = 960;  // as libopusenc makes them

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
    // The last packet's own time says where the sound ends within it.
    void Put(ogg_packet& packet, const BookPart& part, bool isLast) {
        if (packets_ >= kHeaders)
            granule_ += std::max(0, opus_packet_get_nb_samples(
                                        packet.packet, static_cast<int>(packet.bytes), kOpusRate));
        if (isLast && packet.granulepos >= 0)
            granule_ =
                std::min<std::int64_t>(granule_, part.before * kPacketFrames + packet.granulepos);
        packet.granulepos = granule_;
        packet.packetno = packets_++;
        packet.e_o_s = isLast ? 1 : 0;
        ogg_stream_packetin(&stream_, &packet);
        ogg_page page;
        while ((packets_ <= kHeaders || isLast ? ogg_stream_flush(&stream_, &page)
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
    bool hasWritten_ = true;
};

}  // namespace

void JoinOpus(const std::vector<BookPart>& parts, std::FILE* out, LProgress& progress,
              BookJoint& joint) {
    OpusJoiner joiner(out, progress);
    for (const BookPart& part : parts) {
        if (part.taken == 0)
            continue;
        const FileHandle file(std::fopen(part.path.c_str(), "rbe"));
        const bool isWhole = file && joiner.Add(file.get(), part, &part == &parts.back());
        joint.isStopped = joiner.IsStopped();
        if (joint.isStopped)
            return;
        if (!isWhole)
            NoteDamage(part, joint);
        else if (!joiner.HasWritten())
            joint.problem = std::strerror(errno);
        if (!joint.problem.empty())
            return;
    }
}
