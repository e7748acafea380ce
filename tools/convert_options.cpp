#include "tools/convert_options.h"

#include <getopt.h>
#include <unistd.h>

#include <cctype>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "tools/tool_texts.h"

namespace {

enum ConvertOption : int {
    kInfo = 256,
    kSeconds,
    kQuality,
    kRawRate,
    kRawChannels,
    kRawEncoding,
    kConvertHelp,
    kConvertVersion
};

const option kConvertOptions[] = {{"rate", required_argument, nullptr, 'r'},
                                  {"channels", required_argument, nullptr, 'c'},
                                  {"encoding", required_argument, nullptr, 'e'},
                                  {"type", required_argument, nullptr, 't'},
                                  {"force", no_argument, nullptr, 'f'},
                                  {"info", no_argument, nullptr, kInfo},
                                  {"seconds", required_argument, nullptr, kSeconds},
                                  {"quality", required_argument, nullptr, kQuality},
                                  {"raw-rate", required_argument, nullptr, kRawRate},
                                  {"raw-channels", required_argument, nullptr, kRawChannels},
                                  {"raw-encoding", required_argument, nullptr, kRawEncoding},
                                  {"help", no_argument, nullptr, kConvertHelp},
                                  {"version", no_argument, nullptr, kConvertVersion},
                                  {nullptr, 0, nullptr, 0}};

int ShowConvertHelp() {
    std::printf(
        "Usage: %s [OPTION...] INPUT OUTPUT\n"
        "       %s --info FILE...\n"
        "Converts a sound file into another format; - is standard input or output.\n\n"
        "  -r, --rate=RATE         samples a second (%d to %d); the input's without it\n"
        "  -c, --channels=1|2      the input's without it\n"
        "  -e, --encoding=NAME     %s\n"
        "  -t, --type=TYPE         type of OUTPUT; from its extension without it:\n"
        "                          %s\n"
        "  -f, --force             overwrite OUTPUT\n"
        "      --seconds=A-B       only that part; seconds or h:mm:ss.fff, A or B may be left out\n"
        "      --quality=fine|fast how rates are converted; fine without it\n"
        "      --raw-rate=RATE     how to read an input without a header: rate,\n"
        "      --raw-channels=N    channels\n"
        "      --raw-encoding=NAME and encoding (8000 Hz mono, for .raw 44100 Hz stereo pcm16)\n"
        "      --info              tell what the files hold\n"
        "      --help              show this text\n"
        "      --version           show the version\n",
        kConvertProgram, kConvertProgram, kLowestWrittenRate, kHighestRate,
        AllSampleEncodingNames().c_str(), AllSoundTypeNames().c_str());
    return kExitDone;
}

// "12.5" or "1:02:03.5": up to three fields of digits and a fraction, and nothing else.
bool ParseTime(const std::string& text, long long& milliseconds) {
    double seconds = 0;
    int fields = 1;
    std::size_t at = 0;
    for (;;) {
        const std::size_t start = at;
        double field = 0;
        for (; at < text.size() && std::isdigit(static_cast<unsigned char>(text[at])); at++)
            field = field * 10 + (text[at] - '0');
        if (at == start || field > 1e6)
            return false;
        seconds = seconds * 60 + field;
        if (at == text.size() || text[at] != ':')
            break;
        if (++fields > 3)
            return false;
        at++;
    }
    if (at < text.size()) {
        if (text[at] != '.' || text.find_first_not_of("0123456789", at + 1) != std::string::npos)
            return false;
        seconds += std::strtod(("0" + text.substr(at)).c_str(), nullptr);
    }
    milliseconds = std::llround(seconds * 1000);
    return true;
}

bool ParseSpan(const std::string& text, std::optional<TimeSpan>& span) {
    const std::size_t dash = text.find('-');
    if (dash == std::string::npos || text == "-")
        return false;
    TimeSpan parsed;
    long long end = 0;
    if (dash > 0 && !ParseTime(text.substr(0, dash), parsed.start))
        return false;
    if (dash + 1 < text.size()) {
        if (!ParseTime(text.substr(dash + 1), end) || end < parsed.start)
            return false;
        parsed.end = end;
    }
    span = parsed;
    return true;
}

bool ParseOptionalNumber(const char* text, int least, int most, std::optional<int>& number) {
    int value = 0;
    if (!ParseNumber(text, least, most, value))
        return false;
    number = value;
    return true;
}

bool ParseEncoding(const char* text, std::optional<SampleEncoding>& encoding) {
    encoding = SampleEncodingFromName(text);
    return encoding.has_value();
}

bool ParseType(const char* text, ConvertOptions& options) {
    const std::optional<SoundType> type = SoundTypeFromName(text);
    options.output.type = type.value_or(SoundType::kWav);
    options.hasOutputType = true;
    return type.has_value();
}

// False when the option's argument is not one that it takes.
bool TakeOption(int option, ConvertOptions& options) {
    switch (option) {
        case 'r':
            return ParseOptionalNumber(optarg, kLowestWrittenRate, kHighestRate,
                                       options.output.rate);
        case 'c':
            return ParseOptionalNumber(optarg, 1, 2, options.output.channels);
        case 'e':
            return ParseEncoding(optarg, options.output.encoding);
        case 't':
            return ParseType(optarg, options);
        case 'f':
            options.overwrite = true;
            return true;
        case kInfo:
            options.isInfo = true;
            return true;
        case kSeconds:
            return ParseSpan(optarg, options.span);
        case kQuality:
            options.output.quality =
                optarg == std::string_view("fast") ? RateQuality::kFast : RateQuality::kFine;
            return optarg == std::string_view("fast") || optarg == std::string_view("fine");
        case kRawRate:
            return ParseOptionalNumber(optarg, kLowestWrittenRate, kHighestRate, options.raw.rate);
        case kRawChannels:
            return ParseOptionalNumber(optarg, 1, 255, options.raw.channels);
        default:
            return ParseEncoding(optarg, options.raw.encoding);
    }
}

std::optional<int> CheckFiles(ConvertOptions& options) {
    for (const std::string& file : options.files) {
        if (file == kStandardStream && options.isInfo)
            return UsageError(kConvertProgram, "--info takes files, not standard input (-)");
        if (file.empty())
            return UsageError(kConvertProgram, "a file name is empty");
    }
    if (options.isInfo) {
        if (options.files.empty())
            return UsageError(kConvertProgram, "--info needs at least one file");
        return std::nullopt;
    }
    if (options.files.size() != 2)
        return UsageError(kConvertProgram, "an input and an output file are needed");
    if (!options.hasOutputType) {
        const std::optional<SoundType> type = options.files[1] == kStandardStream
                                                  ? SoundType::kWav
                                                  : SoundTypeOfPath(options.files[1]);
        if (!type)
            return UsageError(kConvertProgram, options.files[1] +
                                                   ": no extension that names a type (" +
                                                   AllSoundTypeNames() + "); -t names it");
        options.output.type = *type;
    }
    if (options.files[1] == kStandardStream && ::isatty(STDOUT_FILENO) == 1)
        return UsageError(kConvertProgram, "sound is not written to a terminal");
    const std::string problem = ProblemWith(options.output);
    if (!problem.empty())
        return UsageError(kConvertProgram, options.files[1] + ": " + problem);
    return std::nullopt;
}

}  // namespace

std::optional<int> ParseConvertOptions(int argc, char* const* argv, ConvertOptions& options) {
    optind = 1;
    for (;;) {
        const int at = optind;
        const int option = ::getopt_long(argc, argv, "r:c:e:t:f", kConvertOptions, nullptr);
        if (option == -1)
            break;
        if (option == '?') {
            std::fprintf(stderr, "Try '%s --help'.\n",
                         kConvertProgram);  // getopt_long has told the rest
            return kExitUsage;
        }
        if (option == kConvertHelp)
            return ShowConvertHelp();
        if (option == kConvertVersion)
            return ShowVersion(kConvertProgram);
        if (!TakeOption(option, options))
            return UsageError(kConvertProgram,
                              std::string("invalid argument of ") + argv[at] + ": " + optarg);
    }
    options.files.assign(argv + optind, argv + argc);
    return CheckFiles(options);
}
