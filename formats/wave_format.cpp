#include "formats/wave_format.h"

#include <strings.h>

#include <string>

#include "formats/file_io.h"
#include "formats/whole_file.h"
#include "foundation/files/file_mask.h"
#include "foundation/files/machine_root.h"
#include "foundation/log/log.h"

LWaveFileFormat::LWaveFileFormat(int rate, unsigned char channelCount, const char* name)
    : tag(kWaveTagPcm), channels(channelCount), bitsPerSample(16) {
    struct Named {
        const char* name;
        std::uint16_t tag;
    };
    constexpr Named kEightBit[] = {{"PCM8", kWaveTagPcm},
                                   {"ALAW", kWaveTagALaw},
                                   {"ULAW", kWaveTagMuLaw},
                                   {"MULAW", kWaveTagMuLaw}};
    for (const Named& format : kEightBit) {
        if (strcasecmp(name, format.name) == 0) {
            tag = format.tag;
            bitsPerSample = 8;
        }
    }
    samplesPerSecond = static_cast<std::uint32_t>(rate);
    blockAlign = static_cast<std::uint16_t>((channels * bitsPerSample + 7) / 8);
    averageBytesPerSecond = channels * samplesPerSecond * bitsPerSample / 8;
}

namespace {

std::string DefaultFormatPath(bool makeFolders) {
    std::string folder = HomeFolder();
    for (const char* part : {"/.quillon", "/lectora"}) {
        folder += part;
        if (makeFolders)
            MakeFolder(folder.c_str());
    }
    return folder + "/WavCodec.wff";
}

// The file is anybody's: a rate of two thousand million would fill the disk. Another tag than PCM
// passes, so that saving fails and says so, as the options dialog lets users choose it.
bool IsWritable(const LWaveFileFormat& format) {
    return format.channels >= 1 && format.channels <= 2 &&
           format.samplesPerSecond >= kLowestWrittenRate &&
           format.samplesPerSecond <= kHighestRate && format.bitsPerSample >= 1 &&
           format.bitsPerSample <= 16;
}

}  // namespace

void LoadDefaultWaveFormat(LWaveFileFormat& format) {
    const std::string path = DefaultFormatPath(false);
    const UniqueFd file = OpenFileForReading(path.c_str());
    if (!file.IsOpen())
        return;
    LWaveFileFormat stored = format;
    ReadFully(file.Get(), &stored, sizeof(stored));
    if (IsWritable(stored))
        format = stored;
    else
        gLLog.Log("Not a format that can be written, so not used: ", path.c_str(), kLogWarning);
}

bool SaveDefaultWaveFormat(const LWaveFileFormat& format) {
    WholeFile output(DefaultFormatPath(true), WholeFile::Existing::kReplace);
    if (!output.Problem().empty())
        return false;
    int error = 0;
    UniqueFd file = OpenFileForWriting(output.WritePath().c_str(), &error);
    return file.IsOpen() && WriteFully(file.Get(), &format, sizeof(format)) == 0 &&
           CloseFile(file) == 0 && output.Commit().empty();
}
