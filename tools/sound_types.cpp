#include "tools/sound_types.h"

#include <strings.h>

#include <algorithm>
#include <iterator>
#include <limits>

#include "formats/aiff_file.h"
#include "formats/au_file.h"
#include "formats/gsm_file.h"
#include "formats/mp3_sink.h"
#include "formats/wave_codec_names.h"
#include "formats/wave_file.h"
#include "formats/wave_sink.h"

namespace {

using enum SampleEncoding;

// Tags under which the codecs of files without a format tag stand in the table of names.
constexpr std::uint16_t kTagFloat = 3;
constexpr std::uint16_t kTagDialogicAdpcm = 0x17;
constexpr int kNoRawCodec = -1;
constexpr int kGsmBytes = static_cast<int>(kGsmNormalBytes);

// In the order of --help.
constexpr EncodingRow kEncodings[] = {
    {kPcm16, "pcm16", 1, 2, false, 0, kRawPcm16, kAuPcm16, kWaveTagPcm},
    {kPcm8, "pcm8", 1, 1, false, 0, kRawUnsigned8, kAuPcm8, kWaveTagPcm},
    {kMuLaw, "ulaw", 1, 1, false, 0, kRawMuLaw, kAuMuLaw, kWaveTagMuLaw},
    {kALaw, "alaw", 1, 1, false, 0, kRawALaw, kAuALaw, kWaveTagALaw},
    {kPcm16BigEndian, "pcm16be", 1, 2, false, 0, kRawPcm16BigEndian, kAuPcm16, kWaveTagPcm},
    {kPcm8Signed, "pcm8s", 1, 1, false, 0, kRawSigned8, kAuPcm8, kWaveTagPcm},
    {kFloat, "float", 1, 4, false, 0, kRawFloat, kAuPcm16, kTagFloat},
    {kFloatBigEndian, "floatbe", 1, 4, false, 0, kRawFloatBigEndian, kAuPcm16, kTagFloat},
    {kAdpcm, "adpcm", 2, 1, true, 0, kRawDialogicAdpcm, kAuPcm16, kTagDialogicAdpcm},
    {kGsm, "gsm", gsm::kFrameSamples, kGsmBytes, true, kGsmRate, kNoRawCodec, kAuPcm16,
     kWaveTagGsm610},
};
// An encoder makes of the sound what it likes, but something.
constexpr EncodingRow kEncodersBusiness = {
    kNone, "mp3", std::numeric_limits<int>::max(), 1, false, 0, kNoRawCodec, kAuPcm16, 0};

constexpr SampleEncoding kWavHolds[] = {kPcm16, kPcm8};
constexpr SampleEncoding kAuHolds[] = {kPcm16, kPcm16BigEndian, kPcm8, kPcm8Signed, kMuLaw, kALaw};
constexpr SampleEncoding kAiffHolds[] = {kPcm16, kPcm16BigEndian};
constexpr SampleEncoding kRawHolds[] = {
    kPcm16, kPcm8, kMuLaw, kALaw, kPcm16BigEndian, kPcm8Signed, kFloat, kFloatBigEndian, kAdpcm};
constexpr SampleEncoding kGsmHolds[] = {kGsm};
constexpr SampleEncoding kVoxHolds[] = {kAdpcm};
constexpr SampleEncoding kMuLawHolds[] = {kMuLaw};
constexpr SampleEncoding kALawHolds[] = {kALaw};
constexpr SampleEncoding kMp3Holds[] = {kNone};

template <LSoundSource (*Open)(const char*)>
LSoundSource Source(const char* path, const LRawSettings&) {
    return Open(path);
}

LSoundSink WavSink(const char* path, const LRawSettings& format, const EncodingRow& encoding) {
    return LWaveFile::OpenSinkPCM(path, format.sampleRate, format.channels,
                                  static_cast<unsigned short>(encoding.groupBytes * 8), 0);
}

LSoundSink AuSink(const char* path, const LRawSettings& format, const EncodingRow& encoding) {
    LAuSettings settings{encoding.auCodec, format.sampleRate, format.channels};
    return OpenAuSink(path, settings);
}

LSoundSink AiffSink(const char* path, const LRawSettings& format, const EncodingRow&) {
    return OpenAIFFSink(path, format.sampleRate, format.channels);
}

LSoundSink GsmSink(const char* path, const LRawSettings&, const EncodingRow&) {
    return LGSMFile::OpenSink(path);
}

LSoundSink RawSink(const char* path, const LRawSettings& format, const EncodingRow&) {
    return LRawFile::OpenSink(path, format);
}

LSoundSink Mp3Sink(const char* path, const LRawSettings& format, const EncodingRow&) {
    LMp3EncodeSettings settings = LoadMp3SettingsForSaving();
    return OpenMp3Sink(path, settings, format.sampleRate, format.channels);
}

// A headerless file that is told to hold GSM frames.
LSoundSource RawSource(const char* path, const LRawSettings& reading) {
    return reading.codec == kNoRawCodec ? LGSMFile::OpenSource(path)
                                        : LRawFile::OpenSource(path, reading);
}

std::uint16_t WavTag(const char* path) {
    WAVEFORMATEX* format = nullptr;
    if (!LGetWaveFormatEx(path, &format))
        return 0;
    const std::uint16_t tag = format->wFormatTag;
    FreeWaveFormatEx(format);
    return tag;
}

std::uint16_t AuTag(const char* path) {
    switch (AuEncodingOf(path)) {
        case kAuEncodingMuLaw:
            return kWaveTagMuLaw;
        case kAuEncodingALaw:
            return kWaveTagALaw;
        default:
            return kWaveTagPcm;
    }
}

template <std::size_t N>
constexpr SoundTypeRow Row(SoundType type, const char* name, const char* otherName,
                           const SampleEncoding (&encodings)[N], bool isHeaderless, int headerBytes,
                           LRawSettings reading, decltype(SoundTypeRow::openSource) openSource,
                           decltype(SoundTypeRow::openSink) openSink,
                           decltype(SoundTypeRow::waveTagOf) waveTagOf = nullptr) {
    return {type,         name,        otherName,       encodings, static_cast<int>(N),
            isHeaderless, headerBytes, headerBytes > 0, reading,   openSource,
            openSink,     waveTagOf};
}

constexpr LRawSettings kTelephone{8000, 1, 0};
constexpr LRawSettings kStudio{44100, 2, 0};

// In the order of --help.
constexpr SoundTypeRow kTypes[] = {
    Row(SoundType::kWav, "wav", nullptr, kWavHolds, false, kWaveHeaderBytes, {},
        Source<LWaveFile::OpenSource>, WavSink, WavTag),
    Row(SoundType::kAu, "au", "snd", kAuHolds, false, kAuHeaderBytes, {},
        Source<LAuFile::OpenSource>, AuSink, AuTag),
    Row(SoundType::kAiff, "aiff", "aif", kAiffHolds, false, kAiffHeaderBytes, {},
        Source<LAifFile::OpenSource>, AiffSink),
    Row(SoundType::kGsm, "gsm", nullptr, kGsmHolds, false, 0, {}, Source<LGSMFile::OpenSource>,
        GsmSink),
    Row(SoundType::kVox, "vox", nullptr, kVoxHolds, true, 0, kTelephone, RawSource, RawSink),
    Row(SoundType::kRaw, "raw", nullptr, kRawHolds, true, 0, kStudio, RawSource, RawSink),
    Row(SoundType::kMuLaw, "ul", nullptr, kMuLawHolds, true, 0, kTelephone, RawSource, RawSink),
    Row(SoundType::kALaw, "al", nullptr, kALawHolds, true, 0, kTelephone, RawSource, RawSink),
    Row(SoundType::kMp3, "mp3", nullptr, kMp3Holds, false, 0, {}, nullptr, Mp3Sink),
};

bool IsSameWord(std::string_view a, const char* b) {
    return b != nullptr && a.size() == std::string_view(b).size() &&
           ::strncasecmp(a.data(), b, a.size()) == 0;
}

void AppendName(std::string& names, const char* name) {
    if (name != nullptr)
        names.append(names.empty() ? "" : " ").append(name);
}

}  // namespace

const EncodingRow& RowOf(SampleEncoding encoding) {
    const auto* const row =
        std::find_if(std::begin(kEncodings), std::end(kEncodings),
                     [encoding](const EncodingRow& one) { return one.encoding == encoding; });
    return row != std::end(kEncodings) ? *row : kEncodersBusiness;
}

const SoundTypeRow& RowOf(SoundType type) {
    return *std::find_if(std::begin(kTypes), std::end(kTypes),
                         [type](const SoundTypeRow& one) { return one.type == type; });
}

bool SoundTypeRow::CanHold(SampleEncoding encoding) const {
    return std::find(encodings, encodings + encodingCount, encoding) != encodings + encodingCount;
}

std::optional<SoundType> SoundTypeFromName(std::string_view name) {
    for (const SoundTypeRow& row : kTypes) {
        if (IsSameWord(name, row.name) || IsSameWord(name, row.otherName))
            return row.type;
    }
    return std::nullopt;
}

std::optional<SoundType> SoundTypeOfPath(std::string_view path) {
    const std::string_view file = path.substr(path.rfind('/') + 1);
    const std::size_t dot = file.rfind('.');
    return dot == std::string_view::npos ? std::nullopt : SoundTypeFromName(file.substr(dot + 1));
}

std::optional<SampleEncoding> SampleEncodingFromName(std::string_view name) {
    for (const EncodingRow& row : kEncodings) {
        if (IsSameWord(name, row.name))
            return row.encoding;
    }
    return std::nullopt;
}

std::string AllSoundTypeNames() {
    std::string names;
    for (const SoundTypeRow& row : kTypes) {
        AppendName(names, row.name);
        AppendName(names, row.otherName);
    }
    return names;
}

std::string AllSampleEncodingNames() {
    std::string names;
    for (const EncodingRow& row : kEncodings)
        AppendName(names, row.name);
    return names;
}
