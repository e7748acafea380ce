#include "tools/sound_types.h"

#include <strings.h>

#include <algorithm>
#include <array>

#include "formats/raw_file.h"

namespace {

struct TypeName {
    std::string_view name;
    SoundType type;
};
constexpr std::array<TypeName, 11> kTypeNames = {{{"wav", SoundType::Wav},
                                                  {"au", SoundType::Au},
                                                  {"snd", SoundType::Au},
                                                  {"aiff", SoundType::Aiff},
                                                  {"aif", SoundType::Aiff},
                                                  {"gsm", SoundType::Gsm},
                                                  {"vox", SoundType::Vox},
                                                  {"raw", SoundType::Raw},
                                                  {"ul", SoundType::MuLaw},
                                                  {"al", SoundType::ALaw},
                                                  {"mp3", SoundType::Mp3}}};

struct EncodingName {
    std::string_view name;
    SampleEncoding encoding;
    int rawCodec;
};
constexpr std::array<EncodingName, 10> kEncodingNames = {{
    {"pcm16", SampleEncoding::Pcm16, kRawPcm16},
    {"pcm8", SampleEncoding::Pcm8, kRawUnsigned8},
    {"ulaw", SampleEncoding::MuLaw, kRawMuLaw},
    {"alaw", SampleEncoding::ALaw, kRawALaw},
    {"pcm16be", SampleEncoding::Pcm16BigEndian, kRawPcm16BigEndian},
    {"pcm8s", SampleEncoding::Pcm8Signed, kRawSigned8},
    {"float", SampleEncoding::Float, kRawFloat},
    {"floatbe", SampleEncoding::FloatBigEndian, kRawFloatBigEndian},
    {"adpcm", SampleEncoding::Adpcm, kRawDialogicAdpcm},
    {"gsm", SampleEncoding::Gsm, -1},
}};

bool IsSameWord(std::string_view a, std::string_view b) {
    return a.size() == b.size() && ::strncasecmp(a.data(), b.data(), a.size()) == 0;
}

const EncodingName& EntryOf(SampleEncoding encoding) {
    return *std::find_if(
        kEncodingNames.begin(), kEncodingNames.end(),
        [encoding](const EncodingName& entry) { return entry.encoding == encoding; });
}

template <typename Table>
std::string AllNames(const Table& table) {
    std::string names;
    for (const auto& entry : table)
        names.append(names.empty() ? "" : " ").append(entry.name);
    return names;
}

}  // namespace

std::optional<SoundType> SoundTypeFromName(std::string_view name) {
    for (const TypeName& entry : kTypeNames) {
        if (IsSameWord(entry.name, name))
            return entry.type;
    }
    return std::nullopt;
}

std::optional<SoundType> SoundTypeOfPath(std::string_view path) {
    const std::string_view file = path.substr(path.rfind('/') + 1);
    const std::size_t dot = file.rfind('.');
    return dot == std::string_view::npos ? std::nullopt : SoundTypeFromName(file.substr(dot + 1));
}

const char* NameOf(SoundType type) {
    const auto entry = std::find_if(kTypeNames.begin(), kTypeNames.end(),
                                    [type](const TypeName& one) { return one.type == type; });
    return entry->name.data();
}

std::optional<SampleEncoding> SampleEncodingFromName(std::string_view name) {
    for (const EncodingName& entry : kEncodingNames) {
        if (IsSameWord(entry.name, name))
            return entry.encoding;
    }
    return std::nullopt;
}

const char* NameOf(SampleEncoding encoding) {
    return EntryOf(encoding).name.data();
}

std::optional<SampleEncoding> DefaultEncoding(SoundType type) {
    switch (type) {
        case SoundType::Wav:
        case SoundType::Au:
        case SoundType::Aiff:
        case SoundType::Raw:
            return SampleEncoding::Pcm16;
        case SoundType::MuLaw:
            return SampleEncoding::MuLaw;
        case SoundType::ALaw:
            return SampleEncoding::ALaw;
        case SoundType::Vox:
            return SampleEncoding::Adpcm;
        case SoundType::Gsm:
            return SampleEncoding::Gsm;
        case SoundType::Mp3:
            break;
    }
    return std::nullopt;
}

bool CanHold(SoundType type, SampleEncoding encoding) {
    switch (type) {
        case SoundType::Wav:
            return encoding == SampleEncoding::Pcm16 || encoding == SampleEncoding::Pcm8;
        case SoundType::Au:
            return encoding == SampleEncoding::Pcm16 ||
                   encoding == SampleEncoding::Pcm16BigEndian || encoding == SampleEncoding::Pcm8 ||
                   encoding == SampleEncoding::Pcm8Signed || encoding == SampleEncoding::MuLaw ||
                   encoding == SampleEncoding::ALaw;
        case SoundType::Aiff:
            return encoding == SampleEncoding::Pcm16 || encoding == SampleEncoding::Pcm16BigEndian;
        case SoundType::Raw:
            return encoding != SampleEncoding::Gsm;
        default:
            return DefaultEncoding(type) == encoding;
    }
}

int RawCodecOf(SampleEncoding encoding) {
    return EntryOf(encoding).rawCodec;
}

std::string AllSoundTypeNames() {
    return AllNames(kTypeNames);
}
std::string AllSampleEncodingNames() {
    return AllNames(kEncodingNames);
}
