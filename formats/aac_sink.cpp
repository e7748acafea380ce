#include "formats/aac_sink.h"

#include <glib.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <memory>

#include "formats/pipe16_sink.h"
#include "foundation/processes/child_process.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::minutes kPatience{3};
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

bool RunFfmpeg(const std::string& words, const std::string& path, LProgress& progress) {
    LChildStreams streams;
    streams.emptyInput = true;
    streams.noOutput = true;
    streams.ownGroup = true;
    streams.tellsStatus = true;
    const std::string command = kFfmpeg + words + " " + FfmpegFile(path);
    LChildProcess ffmpeg = LChildProcess::StartShell(command.c_str(), streams);
    off_t size = 0;
    for (auto grown = Clock::now(); ffmpeg.IsStarted() && !ffmpeg.HasEnded(); ::usleep(20000)) {
        struct stat status = {};
        if (::stat(path.c_str(), &status) == 0 && status.st_size != size) {
            size = status.st_size;
            grown = Clock::now();
        }
        if (progress.IsToStop() || Clock::now() - grown > kPatience)
            ::kill(-ffmpeg.Pid(), SIGKILL);
    }
    return ffmpeg.Wait() == 0;
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
