#include "formats/sound_types.h"

#include <glib.h>
#include <strings.h>

#include <algorithm>
#include <iterator>
#include <limits>

#include "formats/aac_sink.h"
#include "formats/aiff_file.h"
#include "formats/au_file.h"
#include "formats/gsm_file.h"
#include "formats/mp3_component.h"
#include "formats/mp3_sink.h"
#include "formats/opus_sink.h"
#include "formats/settings_keys.h"
#include "formats/sndfile_file.h"
#include "formats/wave_codec_names.h"
#include "formats/wave_file.h"
#include "formats/wave_sink.h"
#include "foundation/files/file_io.h"

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
constexpr SampleEncoding kEncoderHolds[] = {kNone};

// What the reader of ours does not know is tried by the library's.
template <LSoundSource (*Open)(const char*)>
LSoundSource Source(const char* path, const LRawSettings&) {
    const LSoundSource source = Open(path);
    if (source->Status() == SoundStatus::kGood || source->Status() == SoundStatus::kCannotOpen)
        return source;
    const LSoundSource foreign = OpenSndfileSource(path);
    return foreign->Status() == SoundStatus::kGood ? foreign : source;
}

LSoundSource ForeignSource(const char* path, const LRawSettings&) {
    return OpenSndfileSource(path);
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

LSoundSource OpenGsm(const char* path, const LRawSettings&) {
    return LGSMFile::OpenSource(path);
}

LSoundSink RawSink(const char* path, const LRawSettings& format, const EncodingRow&) {
    return LRawFile::OpenSink(path, format);
}

LSoundSink Mp3Sink(const char* path, const LRawSettings& format, const EncodingRow&) {
    LMp3EncodeSettings settings = LoadMp3SettingsForSaving();
    return OpenMp3Sink(path, settings, format.sampleRate, format.channels);
}

LSoundSink FlacSink(const char* path, const LRawSettings& format, const EncodingRow&) {
    return OpenFlacSink(path, format.sampleRate, format.channels);
}

LSoundSink OpusSink(const char* path, const LRawSettings& format, const EncodingRow&) {
    return OpenOpusSink(path, format.channels, 0);
}

LSoundSink M4bSink(const char* path, const LRawSettings& format, const EncodingRow&) {
    constexpr int kKilobitsAChannel = 64;
    return OpenAacSink(path, format.sampleRate, format.channels,
                       kKilobitsAChannel * format.channels, AacContainer::kMp4);
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
        case kAuEncodingLinear8:
        case kAuEncodingLinear16:
            return kWaveTagPcm;
        default:
            return 0;
    }
}

LSoundSink WavSinkAsSet(const char* path, const LRawSettings&) {
    LWaveFileFormat format(44100, 1, "PCM");
    LoadDefaultWaveFormat(format);
    return LWaveFile::OpenSink(path, format);
}

LSoundSink AuSinkAsSet(const char* path, const LRawSettings&) {
    LAuSettings settings{kAuCodecSetting.Get(), kAuRateSetting.Get(),
                         static_cast<std::uint8_t>(kAuChannelsSetting.Get())};
    return OpenAuSink(path, settings);
}

LSoundSink AiffSinkAsSet(const char* path, const LRawSettings&) {
    return OpenAIFFSink(path, kAiffRateSetting.Get(),
                        static_cast<unsigned char>(kAiffChannelsSetting.Get()));
}

LSoundSink RawSinkAsSet(const char* path, const LRawSettings&) {
    const LRawSettings settings{
        RawRateSetting(kRawSavingSection).Get(),
        static_cast<std::uint8_t>(RawChannelsSetting(kRawSavingSection).Get()),
        RawCodecSetting(kRawSavingSection).Get()};
    return LRawFile::OpenSink(path, settings);
}

LSoundSink Mp3SinkAsSet(const char* path, const LRawSettings& asked) {
    LMp3EncodeSettings settings = LoadMp3SettingsForSaving();
    return OpenMp3Sink(path, settings, asked.sampleRate, asked.channels);
}

LSoundSink FlacSinkAsSet(const char* path, const LRawSettings& asked) {
    return OpenFlacSink(path, asked.sampleRate, asked.channels);
}

LSoundSink OpusSinkAsSet(const char* path, const LRawSettings& asked) {
    return OpenOpusSink(path, asked.channels, 0);
}

LSoundSink GsmSinkAsSet(const char* path, const LRawSettings&) {
    return LGSMFile::OpenSink(path);
}

// Types without settings: as telephones have them.
template <LRawCodec Codec>
LSoundSink TelephoneSink(const char* path, const LRawSettings&) {
    return LRawFile::OpenSink(path, {8000, 1, Codec});
}

constexpr LRawSettings kTelephone{8000, 1, 0};
constexpr LRawSettings kStudio{44100, 2, 0};

struct Opening {
    decltype(SoundTypeRow::openSource) source;
    decltype(SoundTypeRow::openSink) sink;
    decltype(SoundTypeRow::openSinkAsSet) sinkAsSet;
    decltype(SoundTypeRow::waveTagOf) waveTagOf = nullptr;
};

struct Names {
    const char* first;
    const char* other;
    const char* title;
};

template <std::size_t N>
constexpr SoundTypeRow Row(SoundType type, Names names, const SampleEncoding (&encodings)[N],
                           int headerBytes, const Opening& open, const char* component = nullptr,
                           const char* encoder = nullptr) {
    return {type,
            names.first,
            names.other,
            names.title,
            encodings,
            N,
            false,
            headerBytes,
            headerBytes > 0,
            {},
            open.source,
            open.sink,
            open.waveTagOf,
            open.sinkAsSet,
            component,
            encoder,
            encodings[0] == kNone};
}

template <std::size_t N>
constexpr SoundTypeRow HeaderlessRow(SoundType type, Names names,
                                     const SampleEncoding (&encodings)[N], LRawSettings reading,
                                     decltype(SoundTypeRow::openSinkAsSet) sinkAsSet) {
    SoundTypeRow row = Row(type, names, encodings, 0, {RawSource, RawSink, sinkAsSet});
    row.isHeaderless = true;
    row.reading = reading;
    return row;
}

// In the order of --help.
constexpr SoundTypeRow kTypes[] = {
    Row(SoundType::kWav, {"wav", nullptr, "Wav Files"}, kWavHolds, kWaveHeaderBytes,
        {Source<LWaveFile::OpenSource>, WavSink, WavSinkAsSet, WavTag}),
    Row(SoundType::kAu, {"au", "snd", "Au Files"}, kAuHolds, kAuHeaderBytes,
        {Source<LAuFile::OpenSource>, AuSink, AuSinkAsSet, AuTag}),
    Row(SoundType::kAiff, {"aiff", "aif", "Aiff Files"}, kAiffHolds, kAiffHeaderBytes,
        {Source<LAifFile::OpenSource>, AiffSink, AiffSinkAsSet}),
    Row(SoundType::kGsm, {"gsm", nullptr, "GSM Files"}, kGsmHolds, 0,
        {OpenGsm, GsmSink, GsmSinkAsSet}),
    HeaderlessRow(SoundType::kVox, {"vox", nullptr, "Vox Files"}, kVoxHolds, kTelephone,
                  TelephoneSink<kRawDialogicAdpcm>),
    HeaderlessRow(SoundType::kRaw, {"raw", nullptr, "Raw Files"}, kRawHolds, kStudio, RawSinkAsSet),
    HeaderlessRow(SoundType::kMuLaw, {"ul", nullptr, "uLaw Files"}, kMuLawHolds, kTelephone,
                  TelephoneSink<kRawMuLaw>),
    HeaderlessRow(SoundType::kALaw, {"al", nullptr, "aLaw Files"}, kALawHolds, kTelephone,
                  TelephoneSink<kRawALaw>),
    Row(SoundType::kMp3, {"mp3", nullptr, "Mp3 Files"}, kEncoderHolds, 0,
        {nullptr, Mp3Sink, Mp3SinkAsSet}, "mp3el", "MP3 encoder component"),
    Row(SoundType::kFlac, {"flac", nullptr, "Flac Files"}, kEncoderHolds, 0,
        {ForeignSource, FlacSink, FlacSinkAsSet}),
    Row(SoundType::kOgg, {"ogg", "oga", "Ogg Files"}, kEncoderHolds, 0,
        {ForeignSource, nullptr, nullptr}),
    Row(SoundType::kOpus, {"opus", nullptr, "Opus Files"}, kEncoderHolds, 0,
        {ForeignSource, OpusSink, OpusSinkAsSet}),
    Row(SoundType::kM4b, {"m4b", "m4a", "Audiobook Files"}, kEncoderHolds, 0,
        {nullptr, M4bSink, nullptr}, nullptr, "program ffmpeg"),
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

bool SoundTypeRow::HasName(std::string_view ending) const {
    return IsSameWord(ending, name) || IsSameWord(ending, otherName);
}

std::vector<SoundType> WritableSoundTypes() {
    std::vector<SoundType> types = {SoundType::kWav, SoundType::kMp3};
    for (const SoundTypeRow& row : kTypes)
        if (row.openSinkAsSet != nullptr && std::ranges::find(types, row.type) == types.end())
            types.push_back(row.type);
    return types;
}

std::string ChooserFilter(SoundType type) {
    const SoundTypeRow& row = RowOf(type);
    std::string patterns;
    for (const char* name : {row.name, row.otherName}) {
        std::string capitals = name == nullptr ? "" : name;
        std::ranges::transform(capitals, capitals.begin(), g_ascii_toupper);
        if (name != nullptr)
            patterns.append(patterns.empty() ? "*." : ";*.").append(name).append(";*." + capitals);
    }
    return row.title + std::string(1, '\0') + patterns + '\0';
}

std::optional<SoundType> SoundTypeFromName(std::string_view name) {
    for (const SoundTypeRow& row : kTypes) {
        if (row.HasName(name))
            return row.type;
    }
    return std::nullopt;
}

std::optional<SoundType> SoundTypeOfPath(std::string_view path) {
    const std::string_view file = path.substr(path.rfind('/') + 1);
    const std::size_t dot = file.rfind('.');
    return dot == std::string_view::npos ? std::nullopt : SoundTypeFromName(file.substr(dot + 1));
}

std::optional<SoundType> SoundTypeOfContent(const std::string& path) {
    static constexpr std::pair<std::string_view, SoundType> kMarks[] = {
        {"RIFF", SoundType::kWav},  {"RF64", SoundType::kWav},  {".snd", SoundType::kAu},
        {"FORM", SoundType::kAiff}, {"fLaC", SoundType::kFlac}, {"OggS", SoundType::kOgg}};
    char start[4] = {};
    const UniqueFd file = OpenFileForReading(path.c_str());
    const std::string_view bytes(start,
                                 file.IsOpen() ? ReadFully(file.Get(), start, sizeof start) : 0);
    for (const auto& [mark, type] : kMarks)
        if (bytes == mark)
            return type;
    return std::nullopt;
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
