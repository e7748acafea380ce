#include "books/book_joint.h"

#include <cerrno>
#include <cstring>
#include <limits>

#include "books/codec_frames.h"
#include "books/part_file.h"
#include "books/unseen_progress.h"
#include "formats/sndfile_file.h"
#include "formats/wave_file.h"
#include "sound/source_to_sink.h"

namespace {

std::int64_t FramesOf(const std::vector<BookPart>& parts) {
    std::int64_t frames = 0;
    for (const BookPart& part : parts)
        frames += OpenSndfileSource(part.path.c_str())->GetEndSample();
    return frames;
}

// FLAC and WAV lose nothing when they are decoded.
void JoinSamples(SoundType type, const std::vector<BookPart>& parts, const std::string& path,
                 LProgress& progress, BookJoint& joint) {
    if (FramesOf(parts) > MostFrames(type)) {
        joint.problem = kBookTooLong;
        return;
    }
    LSoundSink sink;
    for (const BookPart& part : parts) {
        const LSoundSource source = OpenSndfileSource(part.path.c_str());
        if (source->Status() != SoundStatus::kGood) {
            NoteDamage(part, joint);
            return;
        }
        if (&part == &parts.front())
            sink = type == SoundType::kFlac
                       ? OpenFlacSink(path.c_str(), source->SampleRate(), source->Channels())
                       : LWaveFile::OpenSinkPCM(path.c_str(), source->SampleRate(),
                                                source->Channels(), 16, 0);
        LPRSourceToSink request{"", source, sink};
        UnseenProgress unseen(progress);
        joint.isStopped = Process(unseen, request) == kProcessStopped;
        if (joint.isStopped)
            return;
        if (source->FramesMissing() > 0) {
            NoteDamage(part, joint);
            return;
        }
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

void NoteDamage(const BookPart& part, BookJoint& joint) {
    joint.problem = kDamagedPart;
    std::remove(part.path.c_str());
}

bool IsLongEnough(std::int64_t frames, const CodecFrame& codec, const SoundLength& length) {
    constexpr std::int64_t kDelay = 528;  // the shortest one, of decoders of MP3
    return frames * codec.samples >= length.frames * codec.rate / length.rate + kDelay;
}

// Its frames stand by themselves.
void JoinAdts(const std::vector<BookPart>& parts, const SoundLength& length, std::FILE* out,
              LProgress& progress, BookJoint& joint) {
    constexpr int kFramesBetweenStops = 512;
    int read = 0;
    std::int64_t taken = 0;
    for (const BookPart& part : parts) {
        const FileHandle file(std::fopen(part.path.c_str(), "rbe"));
        if (!file) {
            joint.problem = std::strerror(errno);
            return;
        }
        CodecFrames frames(file.get(), AdtsFrame);
        std::int64_t left = part.taken;
        for (std::int64_t number = 0; left != 0 && frames.Next(); ++number) {
            joint.isStopped = ++read % kFramesBetweenStops == 0 && progress.IsToStop();
            if (joint.isStopped)
                return;
            if (number < part.skipped)
                continue;
            --left;
            ++taken;
            const std::string& bytes = frames.Bytes();
            if (std::fwrite(bytes.data(), 1, bytes.size(), out) != bytes.size()) {
                joint.problem = std::strerror(errno);
                return;
            }
        }
        const bool isShort = &part == &parts.back() && !IsLongEnough(taken, frames.Frame(), length);
        if (left > 0 || left == BookPart::kToTheEnd || frames.IsCut() || isShort) {
            NoteDamage(part, joint);
            return;
        }
    }
}

BookJoint JoinBook(SoundType type, const std::vector<BookPart>& parts, const SoundLength& length,
                   const std::string& path, LProgress& progress) {
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
        JoinMp3(parts, length, out.get(), progress, joint);
    else if (type == SoundType::kOpus)
        JoinOpus(parts, out.get(), progress, joint);
    else
        JoinAdts(parts, length, out.get(), progress, joint);
    errno = 0;
    if (std::fclose(out.release()) != 0 && joint.problem.empty())
        joint.problem = std::strerror(errno);
    return joint;
}
