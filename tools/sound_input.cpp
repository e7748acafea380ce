#include "tools/sound_input.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

#include "formats/sndfile_file.h"
#include "formats/wave_codec_names.h"
#include "formats/wave_source.h"
#include "tools/tool_texts.h"

namespace {

// Why a file cannot be opened, in words; empty when it can be.
std::string OpeningProblem(const std::string& path) {
    struct stat info;
    if (::stat(path.c_str(), &info) != 0)
        return ErrorText(errno);
    if (S_ISDIR(info.st_mode))
        return "is a folder";
    if (!S_ISREG(info.st_mode))
        return "is not a regular file";
    return ::access(path.c_str(), R_OK) == 0 ? "" : ErrorText(errno);
}

std::string StatusProblem(const SoundInput& input) {
    switch (input.source->Status()) {
        case SoundStatus::kGood:
            return "";
        case SoundStatus::kUnsupported:
            return std::string("holds ") + NameOf(input.type) +
                   " data in an encoding that cannot be read";
        case SoundStatus::kCannotOpen:
            return "cannot be opened";
        default:
            return std::string("is not a valid ") + NameOf(input.type) + " file";
    }
}

// The problem with a word on what the file holds, where that can be told.
std::string WithContent(const std::string& problem, const std::string& path, SoundType type) {
    if (problem.empty())
        return "";
    const SoundTypeRow& row = RowOf(type);
    const std::uint16_t tag = row.waveTagOf != nullptr ? row.waveTagOf(path.c_str()) : 0;
    if (tag != 0)
        return problem + ": " + WaveCodecName(tag);
    const std::string content = ForeignSoundName(path.c_str());
    const bool isOther = !content.empty() && SoundTypeOfContent(path) != type;
    return isOther ? problem + "; it holds " + content : problem;
}

}  // namespace

SoundInput OpenSoundInput(const std::string& path, const RawReading& raw) {
    SoundInput input;
    input.error = OpeningProblem(path);
    if (!input.error.empty())
        return input;
    std::optional<SoundType> type = SoundTypeOfPath(path);
    if (!type && !raw.IsAsked())
        type = SoundTypeOfContent(path);
    if (!type && !raw.IsAsked()) {
        const std::string content = ForeignSoundName(path.c_str());
        input.error = content.empty()
                          ? "has no extension that names a sound type (" + AllSoundTypeNames() +
                                "); --raw-rate, --raw-channels and --raw-encoding say how to read "
                                "it"
                          : "holds " + content + ", which is not read here";
        return input;
    }
    input.type = type.value_or(SoundType::kRaw);
    const SoundTypeRow& row = RowOf(input.type);
    if (row.openSource == nullptr) {
        input.error = std::string("is ") + row.name + ", which can be written but not read";
        return input;
    }
    input.encoding = row.encodings[0];
    if (row.isHeaderless)
        input.encoding = raw.encoding.value_or(input.encoding);
    const LRawSettings reading{
        raw.rate.value_or(row.reading.sampleRate),
        static_cast<unsigned char>(raw.channels.value_or(row.reading.channels)),
        RowOf(input.encoding).rawCodec};
    input.source = row.openSource(path.c_str(), reading);
    input.error = WithContent(StatusProblem(input), path, input.type);
    if (!input.error.empty())
        return input;
    input.file = input.source;
    input.missingFrames = input.source->FramesMissing();
    if (auto* wave = dynamic_cast<LSRCPCMFileBase*>(input.source.Get()))
        input.isUnannounced = wave->TakeUnannouncedFrames();
    return input;
}

std::string RateProblem(const SoundInput& input) {
    const int rate = input.source->SampleRate();
    if (rate >= kLowestWrittenRate && rate <= kHighestRate)
        return "";
    return "has a rate of " + std::to_string(rate) + " Hz; rates from " +
           std::to_string(kLowestWrittenRate) + " to " + std::to_string(kHighestRate) +
           " are converted";
}

std::string ReadingProblem(const SoundInput& input) {
    if (input.file->ReadError() != 0)
        return ErrorText(input.file->ReadError());
    return input.file->FramesMissing() > input.missingFrames ? "was cut short while it was read"
                                                             : "";
}

SectionSource::SectionSource(const LSoundSource& inner, int start, int end)
    : LSoundProcessBase(inner), start_(start), end_(end) {}

int SectionSource::GetPositionSample() const {
    return inner_->GetPositionSample() - start_;
}

void SectionSource::Read(int* buffer, int frames) {
    const int left = std::clamp(end_ - inner_->GetPositionSample(), 0, frames);
    inner_->Read(buffer, frames);
    std::fill(buffer + left * Channels(), buffer + frames * Channels(), 0);
}

void CutInput(SoundInput& input, int start, int end) {
    const bool decodesInSequence =
        input.encoding == SampleEncoding::kGsm || input.encoding == SampleEncoding::kAdpcm;
    if (decodesInSequence) {
        std::vector<int> skipped(kMaxBlockFrames);
        for (int left = start; left > 0; left -= kMaxBlockFrames)
            input.source->Read(skipped.data(), std::min(left, kMaxBlockFrames));
    } else {
        input.source->Seek(start);
    }
    input.source = LSoundSource(new SectionSource(input.source, start, end));
}
