#include "tools/convert_run.h"

#include <algorithm>

#include "tools/sound_info.h"
#include "tools/sound_output.h"
#include "tools/terminal_progress.h"
#include "tools/tool_texts.h"

namespace {

int FailConverting(const std::string& path, const std::string& error) {
    Complain(kConvertProgram, path + ": " + error);
    return kExitFailed;
}

int FrameAt(long long milliseconds, int rate, int end) {
    if (milliseconds / 1000 > end / rate)
        return end;  // the product below then fits
    return static_cast<int>(std::min<long long>(milliseconds * rate / 1000, end));
}

// Leaves of the input what was asked for and is there; false when that is nothing.
bool CutToSize(const ConvertOptions& options, SoundInput& input) {
    const int end = input.source->GetEndSample() - input.missingFrames;
    const int rate = input.source->SampleRate();
    const TimeSpan span = options.span.value_or(TimeSpan{});
    const int first = FrameAt(span.start, rate, end);
    const int last = span.end ? FrameAt(*span.end, rate, end) : end;
    if (options.span || input.missingFrames > 0)
        CutInput(input, first, last);
    return first < last || !options.span;
}

int ShowInfo(const ConvertOptions& options) {
    int status = kExitDone;
    for (const std::string& path : options.files) {
        const std::string error = PrintSoundInfo(path, options.raw);
        if (!error.empty())
            status = FailConverting(path, error);
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
        return FailConverting(inputPath, input.error);
    if (const std::string problem = RateProblem(input); !problem.empty())
        return FailConverting(inputPath, problem);
    if (input.missingFrames > 0)
        Complain(kConvertProgram, inputPath + ": is cut short: the last " +
                                      std::to_string(input.missingFrames) + " of " +
                                      std::to_string(input.source->GetEndSample()) +
                                      " frames are not there");
    if (input.isUnannounced)
        Complain(kConvertProgram, inputPath +
                                      ": says that it is empty, but sound follows: it is read to "
                                      "the end of the file");
    if (!CutToSize(options, input))
        return FailConverting(inputPath, "holds no sound in that part");
    SoundOutput output(outputPath, options.overwrite, options.output);
    if (!output.Error().empty())
        return FailConverting(outputPath, output.Error());
    LTerminalProgress progress;
    const LProcessResult result = output.Append(progress, inputPath.c_str(), input.source);
    LTerminalProgress::ClearLine();
    const std::string problem = ReadingProblem(input);
    if (!problem.empty())
        return FailConverting(inputPath, problem);
    if (result != kProcessDone || !output.Commit())
        return FailConverting(outputPath, output.Error());
    return kExitDone;
}
