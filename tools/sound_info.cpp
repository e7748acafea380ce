#include "tools/sound_info.h"

#include <cstdio>

#include "formats/dictation_header.h"
#include "formats/sndfile_file.h"
#include "formats/wave_codec_names.h"
#include "formats/wave_file.h"
#include "sound/sound_time.h"

namespace {

void PrintSource(const LSoundSourceBase& source) {
    const int frames = source.GetEndSample();
    // Hours beyond the range of a clock time are told in frames only.
    const long long milliseconds = static_cast<long long>(frames) * 1000 / source.SampleRate();
    std::printf("  Rate: %d\n  Channels: %d\n  Frames: %d\n", source.SampleRate(),
                source.Channels(), frames);
    if (milliseconds <= INT32_MAX) {
        char time[kSoundTimeTextSize];
        LSoundTime(static_cast<std::int32_t>(milliseconds))._GetText(time);
        std::printf("  Time: %s\n", time);
    }
}

// Of a WAV file in a codec that is not read here, what its header tells.
bool PrintUnsupportedWave(const std::string& path) {
    WAVEFORMATEX* format = nullptr;
    if (!LGetWaveFormatEx(path.c_str(), &format))
        return false;
    std::printf("  Rate: %u\n  Channels: %u\n", static_cast<unsigned>(format->nSamplesPerSec),
                static_cast<unsigned>(format->nChannels));
    FreeWaveFormatEx(format);
    return true;
}

std::string CodecOf(const std::string& path, const SoundInput& input) {
    if (const auto* foreign = dynamic_cast<const LSndfileSource*>(input.source.Get()))
        return foreign->FormatName();
    const SoundTypeRow& row = RowOf(input.type);
    return WaveCodecName(row.waveTagOf != nullptr ? row.waveTagOf(path.c_str())
                                                  : RowOf(input.encoding).waveTag);
}

bool PrintDictation(const std::string& path) {
    LStringLongTemplate<char> text;
    if (!ReadDCTHeader(path.c_str(), text, false))
        return false;
    std::printf("%s:\n  Type: dictation\n", path.c_str());
    std::string line;
    for (const char character : text.View()) {
        if (character == '\n') {
            std::printf("%s%s\n", line.empty() ? "" : "  ", line.c_str());
            line.clear();
        } else if (character != '\r') {
            // Notes come from strangers: nothing in them may steer the terminal.
            line +=
                static_cast<unsigned char>(character) < 32 || character == 127 ? '?' : character;
        }
    }
    return true;
}

}  // namespace

std::string PrintSoundInfo(const std::string& path, const RawReading& raw) {
    if (!SoundTypeOfPath(path) && !raw.IsAsked() && PrintDictation(path))
        return "";
    const SoundInput input = OpenSoundInput(path, raw);
    const bool isUnsupportedWave =
        input.type == SoundType::kWav && input.source->Status() == SoundStatus::kUnsupported;
    if (!input.error.empty() && !isUnsupportedWave)
        return input.error;
    const SoundTypeRow& row = RowOf(input.type);
    std::printf("%s:\n  Type: %s\n  Codec: %s\n", path.c_str(), row.name,
                CodecOf(path, input).c_str());
    if (isUnsupportedWave)
        return PrintUnsupportedWave(path) ? "" : input.error;
    PrintSource(*input.source);
    if (input.missingFrames > 0)
        std::printf("  Missing: %d frames at the end\n", input.missingFrames);
    if (input.isUnannounced)
        std::printf("  Header: says that there is no sound\n");
    return "";
}
