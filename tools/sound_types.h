// The file types and sample encodings that the programs know by name.
#pragma once

#include <optional>
#include <string>
#include <string_view>

enum class SoundType { Wav, Au, Aiff, Gsm, Vox, Raw, MuLaw, ALaw, Mp3 };

enum class SampleEncoding {
    Pcm16,
    Pcm8,
    MuLaw,
    ALaw,
    Pcm16BigEndian,
    Pcm8Signed,
    Float,
    FloatBigEndian,
    Adpcm,
    Gsm
};

// By extension without its dot, whatever its case.
std::optional<SoundType> SoundTypeFromName(std::string_view name);
std::optional<SoundType> SoundTypeOfPath(std::string_view path);
const char* NameOf(SoundType type);

std::optional<SampleEncoding> SampleEncodingFromName(std::string_view name);
const char* NameOf(SampleEncoding encoding);

// What a file of the type holds when nothing is said; nothing for MP3, whose encoding is the
// encoder's business.
std::optional<SampleEncoding> DefaultEncoding(SoundType type);
bool CanHold(SoundType type, SampleEncoding encoding);

// Position in LRawCodec; for encodings of headerless files only, so not for GSM.
int RawCodecOf(SampleEncoding encoding);

// For messages and --help: every name, separated by blanks.
std::string AllSoundTypeNames();
std::string AllSampleEncodingNames();
