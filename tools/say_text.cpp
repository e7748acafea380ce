#include "tools/say_text.h"

#include <cstdio>
#include <optional>
#include <utility>
#include <vector>

#include "sound/source_to_sink.h"
#include "speech/piece_runs.h"
#include "speech/run_files.h"
#include "speech/speech_estimate.h"
#include "tools/interruption.h"
#include "tools/say_stream.h"
#include "tools/sound_output.h"
#include "tools/terminal_progress.h"
#include "tools/tool_texts.h"

namespace {

// Where the pieces go. An error text names the output.
class Output : public SpokenPieceTaker {
public:
    virtual std::string Finish() = 0;  // once all is spoken; what went wrong, or empty
    const std::string& Error() const { return error_; }

protected:
    SynthesisOutcome Fail(const std::string& error) {
        error_ = error;
        return SynthesisOutcome::kCannotWrite;
    }

private:
    std::string error_;
};

class StreamOutput final : public Output {
public:
    SynthesisOutcome TakePiece(const LSoundSource& sound, const SpeechPiece&) override {
        if (sink_->Status() != 0)
            sink_ = LSoundSink(new WaveStreamSink(sound->SampleRate(), sound->Channels()));
        LPRSourceToSink request{"", sound, sink_};
        LTerminalProgress unseen(false);
        Process(unseen, request);
        return sink_->WriteError() == 0
                   ? SynthesisOutcome::kSpoken
                   : Fail("standard output: " + ErrorText(sink_->WriteError()));
    }
    std::string Finish() override { return {}; }

private:
    LSoundSink sink_;  // a placeholder before the first piece
};

// A file, or numbered ones of some length each.
class FileOutput final : public Output {
public:
    FileOutput(const SayJob& job, bool overwrite, std::optional<double> secondsInPart)
        : job_(job), overwrite_(overwrite), secondsInPart_(secondsInPart) {
        Open();
    }

    SynthesisOutcome TakePiece(const LSoundSource& sound, const SpeechPiece&) override {
        const double seconds = static_cast<double>(sound->GetEndSample()) / sound->SampleRate();
        if (secondsInPart_ && seconds_ > 0 && seconds_ + seconds > *secondsInPart_) {
            if (const std::string error = Finish(); !error.empty())
                return Fail(error);
            Open();
        }
        if (!Error().empty())
            return SynthesisOutcome::kCannotWrite;
        seconds_ += seconds;
        LTerminalProgress unseen(false);
        return output_->Append(unseen, "", sound) == kProcessDone ? SynthesisOutcome::kSpoken
                                                                  : Fail(Problem());
    }
    std::string Finish() override { return output_->Commit() ? "" : Problem(); }

private:
    void Open() {
        name_ = job_.sound;
        if (secondsInPart_) {
            char number[16];
            std::snprintf(number, sizeof number, "-%02d", ++part_);
            const std::size_t dot = name_.rfind('.');
            const bool hasExtension =
                dot != std::string::npos && dot > name_.rfind('/') + 1 && dot > 0;
            name_.insert(hasExtension ? dot : name_.size(), number);
        }
        seconds_ = 0;
        output_.emplace(name_, overwrite_, OutputChoice{job_.type, {}, {}, {}});
        if (!output_->Error().empty())
            Fail(Problem());
    }
    std::string Problem() const { return name_ + ": " + output_->Error(); }

    const SayJob& job_;
    bool overwrite_;
    std::optional<double> secondsInPart_;
    int part_ = 0;
    double seconds_ = 0;  // in this part
    std::string name_;
    std::optional<SoundOutput> output_;
};

// Of a part, in seconds: as asked for, or what a file can hold.
std::optional<double> PartLength(const SayOptions& options) {
    if (!options.splitMinutes)
        return std::nullopt;
    if (*options.splitMinutes > 0)
        return 60.0 * *options.splitMinutes;
    return EstimateSpeech(LargestTextForOneFile()).seconds;
}

// What does not fit is said before hours are spent on it; other types than WAV take less room.
std::string SizeProblem(const SayOptions& options, const SayJob& job, const std::string& text) {
    if (job.sound == kStandardOutput || options.splitMinutes)
        return {};
    std::string problem = SavingProblem(text, FolderOf(job.sound));
    if (LettersIn(text) > LargestTextForOneFile())
        problem += " --split writes it in parts.";
    return problem;
}

// Empty when the text was spoken.
std::string Speak(const SayOptions& options, const SayJob& job, const Document& document, int voice,
                  const std::string& workFolder, Output& output) {
    const std::string subject = job.text.empty() ? "standard input" : job.text;
    const bool streams = job.sound == kStandardOutput;
    LTerminalProgress progress(options.showsProgress || !streams);
    progress.SetSubject(subject);
    SpeakingRules rules = options.speaking;
    for (const DocumentLanguage& language : document.languages)
        rules.marks.push_back({language.begin, language.tag});
    for (const DocumentHeading& heading : document.headings)
        rules.headings.push_back(heading.begin);
    PieceRuns runs(document.text, voice, workFolder,
                   streams ? ReadingUse::kListening : ReadingUse::kSaving, output,
                   std::move(rules));
    const LProcessResult result = Process(progress, runs);
    if (IsInterrupted())
        return subject + ": stopped";
    if (!output.Error().empty())
        return output.Error();
    if (result != kProcessDone)
        return subject + ": " + SynthesisMessage(runs.Outcome(), VoiceAt(voice));
    if (std::string error = output.Finish(); !error.empty())
        return error;
    if (const std::string told = runs.LeftOutMessage(); !told.empty())
        Complain(kSayProgram, subject + ": " + told);
    return {};
}

}  // namespace

int SayText(const SayOptions& options, const SayJob& job, const Document& document, int voice,
            const std::string& workFolder) {
    std::string error = SizeProblem(options, job, document.text);
    if (error.empty() && job.sound == kStandardOutput) {
        StreamOutput output;
        error = Speak(options, job, document, voice, workFolder, output);
    } else if (error.empty()) {
        FileOutput output(job, options.overwrite, PartLength(options));
        error = output.Error();
        if (error.empty())
            error = Speak(options, job, document, voice, workFolder, output);
    }
    if (error.empty())
        return kExitDone;
    Complain(kSayProgram, error);
    return kExitFailed;
}
