#include "tools/convert_run.h"

#include <algorithm>
#include <climits>

#include "tools/sound_info.h"
#include "tools/sound_output.h"
#include "tools/terminal_progress.h"
#include "tools/tool_texts.h"

namespace {

constexpr const char* kProgram = "lectora-convert";

int Fail(const std::string& path, const std::string& error) {
    Complain(kProgram, path + ": " + error);
    return kExitFailed;
}

int FrameAt(long long milliseconds, const LSoundSourceBase& source) {
    const long long end = source.GetEndSample();
    return static_cast<int>(std::min(milliseconds * source.SampleRate() / 1000, end));
}

int ShowInfo(const ConvertOptions& options) {
    int status = kExitDone;
    for (const std::string& path : options.files) {
        const std::string error = PrintSoundInfo(path, options.raw);
        if (!error.empty())
            status = Fail(path, error);
    }
    return status;
}

}  // namespace

int RunConvert(const ConvertOptions& options) {
    if (options.isInfo)
        return ShowInfo(options);
    const std::string& inputPath = options.files[0];
    const std::string& outputPath = options.files[1];
    SoundInput input = OpenSoundInput(inputPath, options.raw);
    if (!input.error.empty())
        return Fail(inputPath, input.error);
    if (options.span) {
        const int start = FrameAt(options.span->start, *input.source);
        const int end = FrameAt(options.span->end.value_or(INT_MAX), *input.source);
        if (start >= end)
            return Fail(inputPath, "holds no sound in that part");
        CutInput(input, start, end);
    }
    SoundOutput output(outputPath, options.overwrite, options.output);
    if (!output.Error().empty())
        return Fail(outputPath, output.Error());
    LTerminalProgress progress;
    const LProcessResult result = output.Append(progress, inputPath.c_str(), input.source);
    LTerminalProgress::ClearLine();
    if (result != kProcessDone || !output.Commit())
        return Fail(outputPath, output.Error());
    return kExitDone;
}
