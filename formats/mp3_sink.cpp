#include "formats/mp3_sink.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>

#include "formats/mp3_component.h"
#include "formats/pipe16_sink.h"
#include "foundation/files/text_buffer.h"

namespace {

struct BitRates {
    int low;
    int high;
};

BitRates RatesOf(const LMp3EncodeSettings& settings) {
    if (settings.constantBitRate)
        return {settings.cbrBitRate, settings.cbrBitRate};
    return {settings.vbrMinBitRate, settings.vbrMaxBitRate};
}

int ChooseRate(BitRates bits, int inRate) {
    if (bits.high > 160 && inRate < 32000)
        return 44100;
    const int rate = std::min(inRate, 48000);
    if (bits.low <= 31 && rate > 22050)
        return 22050;
    // 16000 and 24000 stand between the ranges and pass through, though their neighbours do not.
    static constexpr struct {
        int first, last, chosen;
    } kRanges[] = {
        {32001, 47999, 44100}, {24001, 31999, 32000}, {16001, 23999, 22050}, {8001, 15999, 11025}};
    for (const auto& range : kRanges) {
        if (rate >= range.first && rate <= range.last)
            return range.chosen;
    }
    return std::max(rate, 8000);
}

// As it stands between double quotes in a shell command.
std::string InDoubleQuotes(std::string_view text) {
    std::string quoted;
    for (const char character : text) {
        if (std::string_view("\"$`\\").find(character) != std::string_view::npos)
            quoted += '\\';
        quoted += character;
    }
    return quoted;
}

std::string BitRatePart(const LMp3EncodeSettings& settings) {
    if (settings.constantBitRate)
        return "-b " + std::to_string(settings.cbrBitRate) + (settings.highQuality ? " -h" : "");
    return "-v -b " + std::to_string(settings.vbrMinBitRate) + " -B " +
           std::to_string(settings.vbrMaxBitRate) + " -V " + std::to_string(settings.vbrQuality);
}

bool WriteCommandLine(char* commandLine, int& outRate, unsigned char& outChannels,
                      const char* outputPath, const LMp3EncodeSettings& settings, int inRate,
                      unsigned char channelsIn, Mp3Part part) {
    const BitRates bits = RatesOf(settings);
    outRate = ChooseRate(bits, inRate);
    outChannels = bits.low < 24 ? 1 : channelsIn;

    char encoder[kTextBufferSize];
    if (!GetComponentPath("mp3el", encoder))
        return false;

    int mode = settings.channelMode > 3 ? 1 : settings.channelMode;
    if (bits.high <= 23)
        mode = 3;
    const bool isDownmix = outChannels != 1 && mode == 3;
    const char letter = outChannels == 1 ? 'm' : "sjfm"[mode];
    char rate[16];
    std::snprintf(rate, sizeof rate, "%d.%.3d", outRate / 1000, outRate % 1000);
    const std::string held = part == Mp3Part::kToBeJoined ? std::string(" --resample ") + rate : "";
    const int length = std::snprintf(
        commandLine, kMp3CommandLineSize, "\"%s\"%s -m %c%s %s -r -x -s %s%s -S - \"%s\"",
        InDoubleQuotes(encoder).c_str(), isDownmix ? " -a" : "", letter,
        settings.errorProtection ? " -p" : "", BitRatePart(settings).c_str(), rate, held.c_str(),
        InDoubleQuotes(outputPath).c_str());
    return length > 0 && static_cast<std::size_t>(length) < kMp3CommandLineSize;
}

}  // namespace

int Mp3EncodedRate(const LMp3EncodeSettings& settings, int inRate) {
    return ChooseRate(RatesOf(settings), inRate);
}

bool Mp3CreateEncoderCommandLine(char* commandLine, int& outRate, unsigned char& outChannels,
                                 const char* outputPath, LMp3EncodeSettings& settings, int inRate,
                                 unsigned char channelsIn) {
    return WriteCommandLine(commandLine, outRate, outChannels, outputPath, settings, inRate,
                            channelsIn, Mp3Part::kWhole);
}

LSoundSink OpenMp3Sink(const char* outputPath, LMp3EncodeSettings& settings, int inRate,
                       unsigned char channelsIn, Mp3Part part) {
    char command[kMp3CommandLineSize];
    int rate = 0;
    unsigned char channels = 0;
    if (!WriteCommandLine(command, rate, channels, outputPath, settings, inRate, channelsIn, part))
        return LSoundSink(new LSoundSinkError());
    return LSoundSink(new LPipe16Sink(command, rate, channels));
}
