#include <algorithm>
#include <cerrno>
#include <cstring>
#include <deque>
#include <optional>
#include <string_view>
#include <utility>

#include "books/codec_frames.h"
#include "books/mp3_info.h"
#include "books/part_file.h"

namespace {

constexpr std::size_t kLongestReservoir = 511;

bool IsMpeg1(std::string_view frame) {
    return (static_cast<unsigned char>(frame[1]) >> 3 & 3) == 3;
}

// So many bytes before its own body, in the bodies of frames before it, its sound begins.
std::size_t ReservoirOf(std::string_view frame) {
    const auto first = static_cast<unsigned char>(frame[kMp3HeaderBytes]);
    const auto second = static_cast<unsigned char>(frame[kMp3HeaderBytes + 1]);
    return IsMpeg1(frame) ? std::size_t{first} << 1 | second >> 7 : first;
}

// To the first higher bit rate with so many bytes more, else the highest. How many it has more.
std::size_t Lengthen(std::string& frame, std::size_t wanted) {
    constexpr unsigned int kHighestRate = 14;
    const std::size_t size = frame.size();
    std::size_t longer = size;
    unsigned int rate = static_cast<unsigned char>(frame[2]) >> 4;
    while (longer < size + wanted && rate < kHighestRate) {
        frame[2] = static_cast<char>(++rate << 4 | (static_cast<unsigned char>(frame[2]) & 0x0FU));
        longer = static_cast<std::size_t>(
            Mp3Frame(reinterpret_cast<const unsigned char*>(frame.data())).bytes);
    }
    frame.resize(longer);
    return longer - size;
}

// The sound of a frame may begin in the bodies of earlier ones. At a joint these are another
// section's, whose last bytes there belong to frames that are dropped: what the new section's
// frames need is put in their place. Where that is more than there is room for, the frame before
// the joint is made longer. Only one of the highest bit rate cannot be, which hardly leans on
// others: then frames become empty ones until there is room.
class Mp3Joiner {
public:
    explicit Mp3Joiner(std::FILE* out) : out_(out) {}

    void BeginPart() {
        room_ = std::exchange(after_, 0);
        before_.clear();
        isNewPart_ = true;
    }
    void Skip(std::string_view frame) {
        before_ += frame.substr(Mp3BodyAt(frame));
        before_.erase(0, before_.size() - std::min(before_.size(), kLongestReservoir));
    }
    void Take(std::string frame);
    // The first one behind those that are taken of a part.
    void Follow(std::string_view frame) { after_ = ReservoirOf(frame); }
    bool Finish(const SoundLength& length, const CodecFrame& codec);
    void Begin(std::string_view first);  // a part; the file's first one tells of what kind it is
    bool HasWritten() const { return hasWritten_; }

private:
    void Transplant(std::size_t wanted);
    void Write(std::string_view bytes) {
        hasWritten_ =
            hasWritten_ && std::fwrite(bytes.data(), 1, bytes.size(), out_) == bytes.size();
    }
    void WriteFirst() {
        if (info_)
            info_->Add(held_.front());
        Write(held_.front());
        held_.pop_front();
    }

    std::FILE* out_;
    std::optional<Mp3Info> info_;
    std::deque<std::string> held_;  // frames whose bodies may still change
    std::string before_;            // the ends of the bodies that were skipped
    std::size_t room_ = 0;          // bytes before the next frame's body that its sound may take
    std::size_t after_ = 0;         // at the end of a part
    bool hasRoomForAll_ = false;
    bool isNewPart_ = false;
    bool hasWritten_ = true;
};

void Mp3Joiner::Begin(std::string_view first) {
    if (info_)
        return;
    info_.emplace(first);
    Write(info_->Frame(0, 1));
}

void Mp3Joiner::Transplant(std::size_t wanted) {
    if (wanted > room_ && !held_.empty())
        room_ += Lengthen(held_.back(), wanted - room_);
    room_ = std::min(room_, before_.size());
    std::string_view moved = std::string_view(before_).substr(before_.size() - room_);
    for (auto frame = held_.rbegin(); frame != held_.rend() && !moved.empty(); ++frame) {
        const std::size_t body = Mp3BodyAt(*frame);
        const std::size_t size = std::min(moved.size(), frame->size() - body);
        frame->replace(frame->size() - size, size, moved.substr(moved.size() - size));
        moved.remove_suffix(size);
    }
    hasRoomForAll_ = false;
}

void Mp3Joiner::Take(std::string frame) {
    if (std::exchange(isNewPart_, false))
        Transplant(ReservoirOf(frame));
    const std::size_t body = Mp3BodyAt(frame);
    if (!hasRoomForAll_ && ReservoirOf(frame) > room_)
        std::fill(frame.begin() + kMp3HeaderBytes,
                  frame.begin() + static_cast<std::ptrdiff_t>(body), '\0');
    room_ += frame.size() - body;
    hasRoomForAll_ = hasRoomForAll_ || room_ >= kLongestReservoir;
    held_.push_back(std::move(frame));
    constexpr std::size_t kMostHeld = 64;
    if (held_.size() > kMostHeld)
        WriteFirst();
}

bool Mp3Joiner::Finish(const SoundLength& length, const CodecFrame& codec) {
    while (!held_.empty())
        WriteFirst();
    if (!info_ || !hasWritten_)
        return hasWritten_;
    const std::int64_t samples = length.frames * codec.rate / length.rate;
    hasWritten_ = std::fseek(out_, 0, SEEK_SET) == 0;
    Write(info_->Frame(samples, codec.samples));
    return hasWritten_;
}

}  // namespace

void JoinMp3(const std::vector<BookPart>& parts, const SoundLength& length, std::FILE* out,
             LProgress& progress, BookJoint& joint) {
    constexpr int kFramesBetweenStops = 512;
    Mp3Joiner joiner(out);
    CodecFrame codec;
    int read = 0;
    std::int64_t taken = 0;
    for (const BookPart& part : parts) {
        if (part.taken == 0)
            continue;
        const FileHandle file(std::fopen(part.path.c_str(), "rbe"));
        if (!file) {
            joint.problem = std::strerror(errno);
            return;
        }
        CodecFrames frames(file.get(), Mp3Frame);
        std::int64_t left = part.taken;
        std::int64_t number = 0;
        joiner.BeginPart();
        for (bool isFirst = true; frames.Next(); isFirst = false) {
            if (++read % kFramesBetweenStops == 0 && progress.IsToStop()) {
                joint.isStopped = true;
                return;
            }
            if (isFirst)
                joiner.Begin(frames.Bytes());
            if (isFirst && IsInfoFrame(frames.Bytes()))
                continue;
            if (number++ < part.skipped) {
                joiner.Skip(frames.Bytes());
                continue;
            }
            codec = frames.Frame();
            if (left-- == 0) {
                joiner.Follow(frames.Bytes());
                break;
            }
            joiner.Take(frames.Bytes());
            ++taken;
        }
        const bool isShort = &part == &parts.back() && !IsLongEnough(taken, codec, length);
        if (left > 0 || number == 0 || frames.IsCut() || isShort)
            NoteDamage(part, joint);
        else if (!joiner.HasWritten())
            joint.problem = std::strerror(errno);
        if (!joint.problem.empty())
            return;
    }
    if (!joiner.Finish(length, codec))
        joint.problem = std::strerror(errno);
}
