#include "tools/sound_output.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "sound/convert.h"
#include "tools/sound_input.h"
#include "tools/tool_texts.h"

namespace {

constexpr int kTelephoneRate = 8000;
constexpr long long kLargestSizeField = 0xFFFFFFFFLL - 64;  // less the largest header
constexpr double kLargestSpeedError = 0.005;
constexpr long long kMostFrames = std::numeric_limits<std::int32_t>::max();

SampleEncoding EncodingOf(const OutputChoice& choice) {
    return choice.encoding.value_or(RowOf(choice.type).encodings[0]);
}

// Nothing but a rate and a length.
class LengthSource final : public LSoundSourceBase {
public:
    LengthSource(int rate, int frames) : LSoundSourceBase(rate, 1, 0), frames_(frames) {}
    void Read(int* buffer, int frames) override { std::fill_n(buffer, frames, 0); }
    int GetPositionSample() const override { return 0; }
    int GetEndSample() const override { return frames_; }

private:
    int frames_;
};

// How far the speed is off after a conversion, as a part of the whole: converters meet simple
// ratios exactly and others nearly.
double SpeedError(int inputRate, int outputRate) {
    const double ratio = static_cast<double>(outputRate) / inputRate;
    const int frames = static_cast<int>(1e9 / std::max(ratio, 1.0));
    const LSoundSource converted =
        LSPConvertRate(outputRate).OpenSource(LSoundSource(new LengthSource(inputRate, frames)));
    return std::abs(converted->GetEndSample() / (frames * ratio) - 1);
}

// What the user can do about it.
std::string Explained(const std::string& problem) {
    return problem == WholeFile::kExists ? problem + " (-f overwrites it)" : problem;
}

}  // namespace

std::string ProblemWith(const OutputChoice& choice) {
    const std::string type = NameOf(choice.type);
    const EncodingRow& encoding = RowOf(EncodingOf(choice));
    if (!RowOf(choice.type).CanBeWritten())
        return type + " files can be read but not written";
    if (choice.type == SoundType::kMp3 && choice.encoding)
        return "the encoding of mp3 files is set in Lectora's options, not by -e";
    if (!RowOf(choice.type).CanHold(encoding.encoding))
        return type + " files cannot hold " + encoding.name;
    if (encoding.isMono && choice.channels.value_or(1) != 1)
        return std::string(encoding.name) + " sound is always mono";
    if (encoding.fixedRate != 0 && choice.rate.value_or(encoding.fixedRate) != encoding.fixedRate)
        return type + " files always have a rate of " + std::to_string(encoding.fixedRate);
    return "";
}

SoundOutput::SoundOutput(const std::string& path, bool overwrite, const OutputChoice& choice)
    : file_(path, overwrite ? WholeFile::Existing::kReplace : WholeFile::Existing::kRefuse),
      choice_(choice),
      error_(Explained(file_.Problem())) {}

bool SoundOutput::Fail(const std::string& error) {
    if (error_.empty())
        error_ = error;
    return false;
}

long long SoundOutput::ExpectedSize(long long frames) const {
    const EncodingRow& encoding = RowOf(EncodingOf(choice_));
    const long long samples = frames * sink_->Channels();
    const long long groups = (samples + encoding.groupSamples - 1) / encoding.groupSamples;
    return RowOf(choice_.type).headerBytes + groups * encoding.groupBytes;
}

bool SoundOutput::OpenSink(const LSoundSource& source) {
    const EncodingRow& encoding = RowOf(EncodingOf(choice_));
    const int rate = choice_.rate.value_or(encoding.isMono ? kTelephoneRate : source->SampleRate());
    const int channels = choice_.channels.value_or(encoding.isMono ? 1 : source->Channels());
    const LRawSettings format{rate, static_cast<unsigned char>(channels), encoding.rawCodec};
    sink_ = RowOf(choice_.type).openSink(file_.WritePath().c_str(), format, encoding);
    isOpen_ = true;
    if ((sink_->Status() & 1) == 0)
        return true;
    if (sink_->WriteError() != 0)
        return Fail(ErrorText(sink_->WriteError()));
    const char* const encoder = RowOf(choice_.type).encoder;
    return Fail(encoder != nullptr ? std::string("the ") + encoder + " is not installed"
                                   : "cannot be written");
}

bool SoundOutput::FitsIntoFile(const LSoundSource& source) {
    const long long left =
        static_cast<long long>(source->GetEndSample()) - source->GetPositionSample();
    const long long more = left * sink_->SampleRate() / source->SampleRate();
    const long long frames = sink_->FramesWritten() + more;
    if (source->GetEndSample() == kMostFrames || frames >= kMostFrames)
        return Fail("the sound is too long: more than 2147483646 frames cannot be counted");
    if (RowOf(choice_.type).hasSizeField && ExpectedSize(frames) > kLargestSizeField)
        return Fail(std::string("would pass the 4 GiB that a ") + NameOf(choice_.type) +
                    " file can hold");
    return true;
}

LProcessResult SoundOutput::Append(LProgress& progress, const char* title,
                                   const LSoundSource& source) {
    LPRSourceToSink request;
    if (!Prepare(source, request))
        return kProcessFailed;
    request.title = title;
    return Judge(Process(progress, request));
}

bool SoundOutput::Prepare(const LSoundSource& source, LPRSourceToSink& request) {
    if (!error_.empty() || (!isOpen_ && !OpenSink(source)) || !FitsIntoFile(source))
        return false;
    if (source->Channels() != sink_->Channels() &&
        std::max(source->Channels(), sink_->Channels()) > 2)
        return Fail("sound of " + std::to_string(source->Channels()) + " channels cannot become " +
                    std::to_string(sink_->Channels()));
    request.quality = choice_.quality;
    if (choice_.quality == RateQuality::kFast &&
        SpeedError(source->SampleRate(), sink_->SampleRate()) > kLargestSpeedError)
        return Fail("sound of " + std::to_string(source->SampleRate()) + " Hz can become " +
                    std::to_string(sink_->SampleRate()) +
                    " Hz only at a speed more than 0.5 % off; choose another rate or --quality "
                    "fine");
    request.source = source;
    request.sink = sink_;
    if (EncodingOf(choice_) == SampleEncoding::kAdpcm) {
        // An odd sample would wait in the sink for a byte's other half, so pieces that follow one
        // another are kept even.
        LSPConvertSourceRateChannels(sink_->SampleRate(), sink_->Channels(), request.source,
                                     choice_.quality);
        const int start = request.source->GetPositionSample();
        const int end = request.source->GetEndSample();
        request.source =
            LSoundSource(new SectionSource(request.source, start, end - (end - start) % 2));
    }
    return true;
}

LProcessResult SoundOutput::Judge(LProcessResult result) {
    if (sink_->WriteError() != 0) {
        Fail(ErrorText(sink_->WriteError()));
        return kProcessFailed;
    }
    if (result == kProcessStopped)
        Fail("stopped");
    if (result == kProcessFailed)
        Fail("the sound cannot be converted");
    return result;
}

bool SoundOutput::FinishSink() {
    const long long expected = ExpectedSize(sink_->FramesWritten());
    const int error = sink_->Finish();
    sink_.Close();
    if (error != 0)
        return Fail(RowOf(choice_.type).encoder != nullptr
                        ? std::string("the ") + RowOf(choice_.type).encoder + " failed"
                        : ErrorText(error));
    if (!file_.IsDevice() && file_.Size() < expected)
        return Fail("could not be written whole");
    return true;
}

bool SoundOutput::Commit() {
    if (!isOpen_)
        Fail("there is no sound to write");
    if (!error_.empty() || !FinishSink())
        return false;
    const std::string problem = file_.Commit();
    return problem.empty() || Fail(Explained(problem));
}
