#include "tools/sound_info.h"

#include <cstdio>

#include "formats/dictation_header.h"
#include "formats/file_io.h"
#include "formats/wave_codec_names.h"
#include "formats/wave_file.h"
#include "sound/sound_time.h"

namespace {

// Tags under which the codecs of files without a format tag stand in the table of names.
constexpr std::uint16_t kTagFloat = 3;
constexpr std::uint16_t kTagDialogicAdpcm = 0x17;

std::uint16_t TagOf(SampleEncoding encoding) {
    switch (encoding) {
        case SampleEncoding::MuLaw:
            return kWaveTagMuLaw;
        case SampleEncoding::ALaw:
            return kWaveTagALaw;
        case SampleEncoding::Float:
        case SampleEncoding::FloatBigEndian:
            return kTagFloat;
        case SampleEncoding::Adpcm:
            return kTagDialogicAdpcm;
        case SampleEncoding::Gsm:
            return kWaveTagGsm610;
        default:
            return kWaveTagPcm;
    }
}

// The encoding word of an AU header as a format tag.
std::uint16_t TagOfAu(const std::string& path) {
    HeaderReader reader(OpenFileForReading(path.c_str()));
    std::uint8_t header[24];
    if (!reader.IsOpen() || !reader.Read(header, sizeof header))
        return 0;
    const std::uint32_t encoding = LoadBE32(header + 12);
    if (encoding == 1)
        return kWaveTagMuLaw;
    return encoding == 27 ? kWaveTagALaw : kWaveTagPcm;
}

std::string CodecOf(const std::string& path, const SoundInput& input) {
    char name[kWaveCodecNameSize];
    switch (input.type) {
        case SoundType::Wav:
            LGetWaveFileCodecName(name, path.c_str());
            return name;
        case SoundType::Au:
            return WaveCodecName(TagOfAu(path));
        case SoundType::Aiff:
            return WaveCodecName(kWaveTagPcm);
        default:
            return WaveCodecName(TagOf(input.encoding));
    }
}

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
        input.type == SoundType::Wav && input.source->Status() == SoundStatus::kUnsupported;
    if (!input.error.empty() && !isUnsupportedWave)
        return input.error;
    std::printf("%s:\n  Type: %s\n  Codec: %s\n", path.c_str(), NameOf(input.type),
                CodecOf(path, input).c_str());
    if (isUnsupportedWave)
        return PrintUnsupportedWave(path) ? "" : input.error;
    PrintSource(*input.source);
    if (input.missingFrames > 0)
        std::printf("  Missing: %d frames at the end\n", input.missingFrames);
    return "";
}
