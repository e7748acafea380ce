// Apple AIFF files of uncompressed samples. Fields below hold the file's big-endian numbers as the
// machine has them.
#pragma once

#include <cstdint>

#include "formats/file_io.h"
#include "formats/raw_file_data.h"

constexpr int kAiffHeaderBytes = 54;  // as written

struct AiffCHUNKHeader {
    char id[4];
    std::uint32_t size;  // bytes that follow
};

struct AiffCOMMHeader {
    AiffCHUNKHeader chunk;
    std::uint16_t channels;
    std::uint32_t frames;
    std::uint16_t sampleSize;  // bits
    std::uint8_t rate[10];     // 80-bit extended
};

struct AiffSSNDHeader {
    AiffCHUNKHeader chunk;
    std::uint32_t offset;  // not applied when reading
    std::uint32_t blockSize;
};

class LAifFile {
public:
    // Status 3 (malformed, AIFF-C included), 4 (cannot be opened) or 5 (more than 16 bits).
    static LSoundSource OpenSource(const char* path);
    // Always 16 bits. Status 1 when the file cannot be opened.
    static LSoundSink OpenSinkPCM16(const char* path, int rate, unsigned char channels);
};

LSoundSink OpenAIFFSink(const char* path, int rate, unsigned char channels);

// Writes kAiffHeaderBytes and returns that number.
int WriteHeaderAIFF(LRawFileDataSoundSinkBase& sink, bool final);

// Reads chunk headers until one has the identifier, which leaves the file behind it. False when the
// file ends first or a chunk on the way has 2 GiB or more. Chunks are not padded to even sizes
// here.
bool AIFFFindChunk(HeaderReader& file, AiffCHUNKHeader& header, const char* id);

// Leaves the file at the first sample. 0, or the status for an error source.
std::uint8_t AIFFOpenHeader(HeaderReader& file, AiffCOMMHeader& comm, AiffSSNDHeader& ssnd);

// Positive whole rates only. What is outside 32 bits, infinity and not-a-number come back as 0.
void convert32to80(std::uint32_t rate, std::uint8_t (&out)[10]);
std::uint32_t convert80to32(const std::uint8_t (&in)[10]);
