#include "tools/sound_output.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "formats/aiff_file.h"
#include "formats/au_file.h"
#include "formats/gsm_file.h"
#include "formats/mp3_sink.h"
#include "formats/raw_file.h"
#include "formats/wave_file.h"
#include "tools/sound_input.h"
#include "tools/tool_texts.h"

namespace {

constexpr int kTelephoneRate = 8000;
constexpr long long kLargestSizeField =
    0xFFFFFFFFLL - 64;  // of WAV, AU and AIFF headers, less the headers
constexpr long long kMostFrames = std::numeric_limits<std::int32_t>::max();

SampleEncoding EncodingOf(const OutputChoice& choice) {
    return choice.encoding.value_or(DefaultEncoding(choice.type).value_or(SampleEncoding::Pcm16));
}

bool IsVox(const OutputChoice& choice) {
    return choice.type != SoundType::Mp3 && EncodingOf(choice) == SampleEncoding::Adpcm;
}

bool IsMonoOnly(const OutputChoice& choice) {
    return choice.type == SoundType::Gsm || IsVox(choice);
}

bool HasSizeFields(SoundType type) {
    return type == SoundType::Wav || type == SoundType::Au || type == SoundType::Aiff;
}

int BytesPerSample(SampleEncoding encoding) {
    switch (encoding) {
        case SampleEncoding::Pcm16:
        case SampleEncoding::Pcm16BigEndian:
            return 2;
        case SampleEncoding::Float:
        case SampleEncoding::FloatBigEndian:
            return 4;
        default:
            return 1;
    }
}

std::int32_t AuCodecOf(SampleEncoding encoding) {
    switch (encoding) {
        case SampleEncoding::MuLaw:
            return kAuMuLaw;
        case SampleEncoding::ALaw:
            return kAuALaw;
        case SampleEncoding::Pcm8:
        case SampleEncoding::Pcm8Signed:
            return kAuPcm8;
        default:
            return kAuPcm16;
    }
}

LSoundSink OpenMp3(const char* path, int rate, unsigned char channels) {
    LMp3EncodeSettings settings = LoadMp3SettingsForSaving();
    return OpenMp3Sink(path, settings, rate, channels);
}

LSoundSink OpenSinkOf(const OutputChoice& choice, const char* path, int rate,
                      unsigned char channels) {
    const SampleEncoding encoding = EncodingOf(choice);
    switch (choice.type) {
        case SoundType::Wav: {
            const LWaveFileFormat format(rate, channels,
                                         encoding == SampleEncoding::Pcm8 ? "PCM8" : "PCM16");
            return LWaveFile::OpenSink(path, format);
        }
        case SoundType::Au: {
            LAuSettings settings{AuCodecOf(encoding), rate, channels};
            return OpenAuSink(path, settings);
        }
        case SoundType::Aiff:
            return OpenAIFFSink(path, rate, channels);
        case SoundType::Gsm:
            return LGSMFile::OpenSink(path);
        case SoundType::Mp3:
            return OpenMp3(path, rate, channels);
        default:
            return LRawFile::OpenSink(path, LRawSettings{rate, channels, RawCodecOf(encoding)});
    }
}

}  // namespace

std::string ProblemWith(const OutputChoice& choice) {
    const std::string type = NameOf(choice.type);
    if (choice.type == SoundType::Mp3 && choice.encoding)
        return "the encoding of mp3 files is set in Lectora's options, not by -e";
    if (choice.encoding && !CanHold(choice.type, *choice.encoding))
        return type + " files cannot hold " + NameOf(*choice.encoding);
    if (IsMonoOnly(choice) && choice.channels.value_or(1) != 1)
        return std::string(NameOf(EncodingOf(choice))) + " sound is always mono";
    if (choice.type == SoundType::Gsm && choice.rate.value_or(kTelephoneRate) != kTelephoneRate)
        return "gsm files always have a rate of 8000";
    return "";
}

SoundOutput::SoundOutput(const std::string& path, bool overwrite, const OutputChoice& choice)
    : file_(path, overwrite), choice_(choice), error_(file_.Error()) {}

bool SoundOutput::Fail(const std::string& error) {
    if (error_.empty())
        error_ = error;
    return false;
}

long long SoundOutput::ExpectedSize(long long frames) const {
    const SampleEncoding encoding = EncodingOf(choice_);
    const long long bytes = frames * sink_->Channels() * BytesPerSample(encoding);
    switch (choice_.type) {
        case SoundType::Wav:
            return bytes + 46;
        case SoundType::Au:
            return bytes + 24;
        case SoundType::Aiff:
            return bytes + 54;
        case SoundType::Gsm:
            return (frames + gsm::kFrameSamples - 1) / gsm::kFrameSamples *
                   static_cast<long long>(kGsmNormalBytes);
        case SoundType::Mp3:
            return frames > 0 ? 1 : 0;
        default:
            return encoding == SampleEncoding::Adpcm ? frames / 2 : bytes;
    }
}

bool SoundOutput::OpenSink(const LSoundSource& source) {
    const bool isTelephone = IsMonoOnly(choice_);
    const int rate = choice_.rate.value_or(isTelephone ? kTelephoneRate : source->SampleRate());
    const int channels = choice_.channels.value_or(isTelephone ? 1 : source->Channels());
    sink_ =
        OpenSinkOf(choice_, file_.WritePath().c_str(), rate, static_cast<unsigned char>(channels));
    isOpen_ = true;
    if ((sink_->Status() & 1) == 0)
        return true;
    if (sink_->WriteError() != 0)
        return Fail(ErrorText(sink_->WriteError()));
    return Fail(choice_.type == SoundType::Mp3 ? "the MP3 encoder component is not installed"
                                               : "cannot be written");
}

bool SoundOutput::FitsIntoFile(const LSoundSource& source) {
    const long long left =
        static_cast<long long>(source->GetEndSample()) - source->GetPositionSample();
    const long long more = left * sink_->SampleRate() / source->SampleRate();
    const long long frames = sink_->FramesWritten() + more;
    if (source->GetEndSample() == kMostFrames || frames >= kMostFrames)
        return Fail("the sound is too long: more than 2147483646 frames cannot be counted");
    if (HasSizeFields(choice_.type) && ExpectedSize(frames) > kLargestSizeField)
        return Fail(std::string("would pass the 4 GiB that a ") + NameOf(choice_.type) +
                    " file can hold");
    return true;
}

bool SoundOutput::Prepare(const LSoundSource& source, LPRSourceToSink& request) {
    if (!error_.empty() || (!isOpen_ && !OpenSink(source)) || !FitsIntoFile(source))
        return false;
    if (source->Channels() != sink_->Channels() &&
        std::max(source->Channels(), sink_->Channels()) > 2)
        return Fail("sound of " + std::to_string(source->Channels()) + " channels cannot become " +
                    std::to_string(sink_->Channels()));
    request.source = source;
    request.sink = sink_;
    if (IsVox(choice_)) {
        // An odd sample would wait in the sink for a byte's other half, so pieces that follow one
        // another are kept even.
        LSPConvertSourceRateChannels(sink_->SampleRate(), sink_->Channels(), request.source);
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
        return Fail(choice_.type == SoundType::Mp3 ? "the MP3 encoder failed" : ErrorText(error));
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
    return problem.empty() || Fail(problem);
}
