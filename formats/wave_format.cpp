#include "formats/wave_format.h"

#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>

#include <string>

#include "formats/file_io.h"
#include "foundation/machine_root.h"

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

std::string DefaultFormatFolder(bool create) {
    std::string folder = HomeFolder();
    for (const char* part : {"/.quillon", "/lectora"}) {
        folder += part;
        if (create)
            ::mkdir(folder.c_str(), 0777);
    }
    return folder;
}

}  // namespace

void LoadDefaultWaveFormat(LWaveFileFormat& format) {
    const std::string path = DefaultFormatFolder(false) + "/WavCodec.wff";
    const UniqueFd file = OpenFileForReading(path.c_str());
    if (file.IsOpen())
        ReadFully(file.Get(), &format, sizeof(format));
}

bool SaveDefaultWaveFormat(const LWaveFileFormat& format) {
    const std::string path = DefaultFormatFolder(true) + "/WavCodec.wff";
    const UniqueFd file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK, 0666));
    return file.IsOpen() && WriteFully(file.Get(), &format, sizeof(format)) == 0;
}
