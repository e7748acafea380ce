#include "formats/aac_sink.h"

#include <glib.h>

#include <memory>

#include "formats/pipe16_sink.h"

namespace {

constexpr const char* kFfmpeg = "ffmpeg -v error -nostdin -y ";

std::unique_ptr<char, decltype(&g_free)> Owned(char* text) {
    return {text, &g_free};
}

}  // namespace

bool HasFfmpeg() {
    return Owned(g_find_program_in_path("ffmpeg")) != nullptr;
}

std::string FfmpegFile(const std::string& path) {
    return Owned(g_shell_quote(("file:" + path).c_str())).get();
}

bool RunFfmpeg(const std::string& words) {
    LPipeOut pipe;
    return pipe._Open((kFfmpeg + words).c_str()) && pipe.Close() == 0;
}

LSoundSink OpenAacSink(const char* path, int rate, unsigned char channels, int kilobits,
                       AacContainer container) {
    if (!HasFfmpeg())
        return LSoundSink(new LSoundSinkError());
    const std::string command =
        kFfmpeg + std::string("-f s16le -ar ") + std::to_string(rate) + " -ac " +
        std::to_string(channels) + " -i pipe:0 -c:a aac -b:a " + std::to_string(kilobits) +
        "k -f " + (container == AacContainer::kAdts ? "adts " : "ipod ") + FfmpegFile(path);
    return LSoundSink(new LPipe16Sink(command.c_str(), rate, channels));
}
