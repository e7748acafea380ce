// The file types and sample encodings that the programs know: one row each, and all that the
// programs know about them. A row's settings dialog stands above, in dialogs/, named by its type.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/raw_file.h"

enum class SoundType {
    kWav,
    kAu,
    kAiff,
    kGsm,
    kVox,
    kRaw,
    kMuLaw,
    kALaw,
    kMp3,
    kFlac,
    kOgg,
    kOpus,
    kM4b
};

enum class SampleEncoding {
    kPcm16,
    kPcm8,
    kMuLaw,
    kALaw,
    kPcm16BigEndian,
    kPcm8Signed,
    kFloat,
    kFloatBigEndian,
    kAdpcm,
    kGsm,
    kNone  // the encoder's business
};

struct EncodingRow {
    SampleEncoding encoding;
    const char* name;
    // Samples come in groups that are written whole.
    int groupSamples;
    int groupBytes;
    bool isMono;            // always
    int fixedRate;          // 0 when any will do
    int rawCodec;           // an LRawCodec, or none
    int auCodec;            // an LAuCodec
    std::uint16_t waveTag;  // names the codec of a file that has no tag itself
};
const EncodingRow& RowOf(SampleEncoding encoding);

struct SoundTypeRow {
    SoundType type;
    const char* name;       // the extension, without its dot
    const char* otherName;  // null when there is none
    const char* title;      // in lists and choosers: "Wav Files"
    // What a file of the type may hold; the first when nothing is said.
    const SampleEncoding* encodings;
    int encodingCount;
    bool isHeaderless;
    int headerBytes;
    bool hasSizeField;     // of 32 bits
    LRawSettings reading;  // rate and channels to read a headerless file with when nothing is said
    LSoundSource (*openSource)(const char* path,
                               const LRawSettings& reading);  // null: only written
    LSoundSink (*openSink)(const char* path, const LRawSettings& format,
                           const EncodingRow& encoding);
    std::uint16_t (*waveTagOf)(const char* path);  // null: the encoding's
    // With what the user has set for files of this type; null: is not offered in choosers. Where
    // nothing is set there is `asked`, the rate and channels of the sound.
    LSoundSink (*openSinkAsSet)(const char* path, const LRawSettings& asked);
    // The component without which openSink fails (formats/mp3_component.h); null: needs none.
    const char* component;
    const char* encoder;  // for messages: without what openSink fails; null: with nothing
    bool takesAnyRate;    // openSinkAsSet heeds what is asked

    bool CanHold(SampleEncoding encoding) const;
    bool CanBeWritten() const { return openSink != nullptr; }
    bool HasName(std::string_view ending) const;  // either name, whatever its case
};
const SoundTypeRow& RowOf(SoundType type);

// By extension without its dot, whatever its case.
std::optional<SoundType> SoundTypeFromName(std::string_view name);
std::optional<SoundType> SoundTypeOfPath(std::string_view path);
// By the first bytes of the file; nothing for those without a header, and for what nobody reads.
std::optional<SoundType> SoundTypeOfContent(const std::string& path);
inline const char* NameOf(SoundType type) {
    return RowOf(type).name;
}

std::optional<SampleEncoding> SampleEncodingFromName(std::string_view name);
inline const char* NameOf(SampleEncoding encoding) {
    return RowOf(encoding).name;
}

// Those that can be written, in the order in which they are offered: WAV and MP3 first.
std::vector<SoundType> WritableSoundTypes();

// As choosers take it, with the zeros between and at its end: "Wav Files", "*.wav;*.WAV".
std::string ChooserFilter(SoundType type);

// For messages and --help: every name, separated by blanks.
std::string AllSoundTypeNames();
std::string AllSampleEncodingNames();
