#include "tools/convert_run.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "foundation/files/file_io.h"
#include "foundation/files/work_folder.h"
#include "tools/interruption.h"
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

// Converts the one file into the other; the names are what the user calls them.
struct Ends {
    std::string inputPath;
    std::string inputName;
    std::string outputPath;
    std::string outputName;
};

int ConvertFile(const ConvertOptions& options, const Ends& ends) {
    SoundInput input = OpenSoundInput(ends.inputPath, options.raw);
    if (!input.error.empty())
        return FailConverting(ends.inputName, input.error);
    if (const std::string problem = RateProblem(input); !problem.empty())
        return FailConverting(ends.inputName, problem);
    if (input.missingFrames > 0)
        Complain(kConvertProgram, ends.inputName + ": is cut short: the last " +
                                      std::to_string(input.missingFrames) + " of " +
                                      std::to_string(input.source->GetEndSample()) +
                                      " frames are not there");
    if (input.isUnannounced)
        Complain(kConvertProgram, ends.inputName +
                                      ": says that it is empty, but sound follows: it is read to "
                                      "the end of the file");
    if (!CutToSize(options, input))
        return FailConverting(ends.inputName, "holds no sound in that part");
    SoundOutput output(ends.outputPath, options.overwrite, options.output);
    if (!output.Error().empty())
        return FailConverting(ends.outputName, output.Error());
    LTerminalProgress progress;
    const LProcessResult result = output.Append(progress, ends.inputName.c_str(), input.source);
    LTerminalProgress::ClearLine();
    const std::string problem = ReadingProblem(input);
    if (!problem.empty())
        return FailConverting(ends.inputName, problem);
    if (result != kProcessDone || !output.Commit())
        return FailConverting(ends.outputName, output.Error());
    return kExitDone;
}

// All that comes, in blocks; what went wrong, or empty.
std::string CopyAll(int from, int to) {
    char block[65536];
    for (;;) {
        const ssize_t got = ::read(from, block, sizeof block);
        if (IsInterrupted())
            return "stopped";
        if (got < 0 && errno == EINTR)
            continue;
        const int error =
            got < 0 ? errno
                    : WriteFully(to, block, static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
        if (error != 0)
            return ErrorText(error);
        if (got == 0)
            return "";
    }
}

// Formats need to go back to what they have read or written, so streams pass through files.
int ConvertStreams(const ConvertOptions& options, Ends ends) {
    const WorkFolder folder(kConvertProgram);
    if (!folder.IsMade())
        return FailConverting("temporary folder", ErrorText(errno));
    if (ends.inputPath == kStandardStream) {
        ends.inputName = "standard input";
        ends.inputPath = folder.Path() + "input";
        const UniqueFd file(::open(ends.inputPath.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
        const std::string problem =
            file.IsOpen() ? CopyAll(STDIN_FILENO, file.Get()) : ErrorText(errno);
        if (!problem.empty())
            return FailConverting(ends.inputName, problem);
    }
    const bool isStreamOut = ends.outputPath == kStandardStream;
    if (isStreamOut) {
        ends.outputName = "standard output";
        ends.outputPath = folder.Path() + "output";
    }
    const int status = ConvertFile(options, ends);
    if (status != kExitDone || !isStreamOut)
        return status;
    const UniqueFd file(::open(ends.outputPath.c_str(), O_RDONLY | O_CLOEXEC));
    const std::string problem =
        file.IsOpen() ? CopyAll(file.Get(), STDOUT_FILENO) : ErrorText(errno);
    return problem.empty() ? kExitDone : FailConverting(ends.outputName, problem);
}

}  // namespace

int RunConvert(const ConvertOptions& options) {
    if (options.isInfo)
        return ShowInfo(options);
    const std::string& input = options.files[0];
    const std::string& output = options.files[1];
    const Ends ends{input, input, output, output};
    return input == kStandardStream || output == kStandardStream ? ConvertStreams(options, ends)
                                                                 : ConvertFile(options, ends);
}
