#include "tools/say_run.h"

#include <errno.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>

#include "documents/document.h"
#include "formats/wave_file.h"
#include "foundation/text_buffer.h"
#include "foundation/text_file.h"
#include "speech/synthesis.h"
#include "speech/voice_list_query.h"
#include "speech/voices.h"
#include "tools/interruption.h"
#include "tools/sound_output.h"
#include "tools/terminal_progress.h"
#include "tools/text_pieces.h"
#include "tools/tool_texts.h"

namespace {

constexpr const char* kProgram = "lectora-say";

int Fail(const std::string& path, const std::string& error) {
    Complain(kProgram, path + ": " + error);
    return kExitFailed;
}

// A private folder for what the engine writes, taken away with all that an engine left there.
class WorkFolder {
public:
    WorkFolder() {
        const char* base = std::getenv("TMPDIR");
        path_ =
            std::string(base != nullptr && *base != '\0' ? base : "/tmp") + "/lectora-say-XXXXXX";
        if (::mkdtemp(path_.data()) == nullptr)
            path_.clear();
    }
    ~WorkFolder() {
        std::error_code ignored;
        if (!path_.empty())
            std::filesystem::remove_all(path_, ignored);
    }
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    bool IsMade() const { return !path_.empty(); }
    std::string SpeechPath() const { return path_ + "/speech.wav"; }

private:
    std::string path_;
};

std::string ReadStandardInput(std::string& text) {
    char block[65536];
    for (;;) {
        const ssize_t got = ::read(STDIN_FILENO, block, sizeof block);
        if (IsInterrupted())
            return "stopped";
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return ErrorText(errno);
        if (got == 0)
            return "";
        text.append(block, static_cast<std::size_t>(got));
        if (text.size() > static_cast<std::size_t>(kLargestTextFile))
            return "is too long";
    }
}

// Why the text cannot be read, or empty.
std::string ReadText(const std::string& path, std::string& text) {
    Document document;
    if (path.empty()) {
        std::string bytes;
        if (std::string problem = ReadStandardInput(bytes); !problem.empty())
            return problem;
        document = ReadDocument(bytes, IsInterrupted);
    } else {
        document = LoadDocument(path.c_str(), IsInterrupted);
    }
    text = std::move(document.text);
    return std::move(document.problem);
}

// Position in the list of voices, -1 when there is no such voice.
int FindVoice(const SayOptions& options, int count) {
    if (!options.voice)
        return 0;
    int index = -1;
    for (int i = 0; i < count; i++) {
        char name[kTextBufferSize];
        TTSGetDictSpeakerName(i, name);
        if (*options.voice == name)
            return i;
    }
    return ParseNumber(options.voice->c_str(), 0, count - 1, index) ? index : -1;
}

// How many there are; 0 when there are none, which has been told.
int AskForVoices() {
    LTerminalProgress progress;
    VoiceListQuery query;
    const LProcessResult asked = Process(progress, query);
    if (asked == kProcessFailed)
        Complain(kProgram, "no speech engine answers: is festival installed, with a voice?");
    return asked == kProcessDone ? TTSGetNumSpeakers() : 0;
}

int ListVoices(int count) {
    for (int i = 0; i < count; i++) {
        char name[kTextBufferSize];
        TTSGetDictSpeakerName(i, name);
        std::printf("%d %s\n", i, name);
    }
    return kExitDone;
}

// One text into one sound file. The engine gets it piece by piece: a run has a time limit, a book
// has none.
class Speaker {
public:
    Speaker(const SayJob& job, int voice, bool overwrite, const WorkFolder& folder)
        : soundName_(job.sound),
          output_(job.sound, overwrite, OutputChoice{job.type, {}, {}, {}}),
          subject_(job.text.empty() ? "standard input" : job.text),
          soundPath_(folder.SpeechPath()),
          voice_(voice) {}

    // Which file failed and why, or empty.
    std::string Speak(std::string text) {
        if (!output_.Error().empty())
            return OutputProblem();
        std::string_view rest = text;
        bool hasSpoken = false;
        while (!rest.empty()) {
            ShowShare(text.size() - rest.size(), text.size());
            const std::size_t length = PieceLength(rest, sizer_.Limit());
            const SynthesisOutcome outcome = SpeakPiece(std::string(rest.substr(0, length)));
            if (outcome == SynthesisOutcome::kTimedOut && sizer_.Shorten())
                continue;
            if (outcome == SynthesisOutcome::kStopped)
                return subject_ + ": stopped";
            if (outcome == SynthesisOutcome::kSpoken && !AppendPiece())
                return OutputProblem();
            if (outcome != SynthesisOutcome::kSpoken && outcome != SynthesisOutcome::kNothingToSay)
                return subject_ + ": " + SynthesisMessage(outcome);
            hasSpoken |= outcome == SynthesisOutcome::kSpoken;
            rest.remove_prefix(length);
        }
        if (!hasSpoken)
            return subject_ + ": " + SynthesisMessage(SynthesisOutcome::kNothingToSay);
        return output_.Commit() ? "" : OutputProblem();
    }

private:
    std::string OutputProblem() const { return soundName_ + ": " + output_.Error(); }

    void ShowShare(std::size_t done, std::size_t whole) {
        progress_.SetSubject(subject_ + ", " + std::to_string(done * 100 / whole) + " %");
    }

    SynthesisOutcome SpeakPiece(const std::string& piece) {
        LTTS request;
        request.text = piece.c_str();
        request.outputPath = soundPath_.c_str();
        request.voice = voice_;
        const auto start = std::chrono::steady_clock::now();
        Process(progress_, request);
        if (request.outcome == SynthesisOutcome::kSpoken)
            sizer_.Took(
                std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        // A terminal interrupts the engine as well, which then fails before the wait here ends.
        return IsInterrupted() ? SynthesisOutcome::kStopped : request.outcome;
    }

    bool AppendPiece() {
        LTerminalProgress unseen(false);
        const LSoundSource piece = LWaveFile::OpenSource(soundPath_.c_str());
        return output_.Append(unseen, "", piece) == kProcessDone;
    }

    std::string soundName_;
    SoundOutput output_;
    LTerminalProgress progress_;
    PieceSizer sizer_;
    std::string subject_;
    std::string soundPath_;
    int voice_;
};

int SayOne(const SayJob& job, int voice, bool overwrite, const WorkFolder& folder) {
    std::string text;
    const std::string problem = ReadText(job.text, text);
    if (!problem.empty())
        return Fail(job.text.empty() ? "standard input" : job.text, problem);
    const std::string error = Speaker(job, voice, overwrite, folder).Speak(std::move(text));
    if (error.empty())
        return kExitDone;
    Complain(kProgram, error);
    return kExitFailed;
}

}  // namespace

int RunSay(const SayOptions& options) {
    const int count = AskForVoices();
    if (count == 0)
        return kExitFailed;
    if (options.listsVoices)
        return ListVoices(count);
    const int voice = FindVoice(options, count);
    if (voice < 0) {
        Complain(kProgram, *options.voice + ": no such voice; --list-voices lists them");
        return kExitFailed;
    }
    const WorkFolder folder;
    if (!folder.IsMade())
        return Fail("temporary folder", ErrorText(errno));
    int status = kExitDone;
    for (const SayJob& job : options.jobs) {
        status = std::max(status, SayOne(job, voice, options.overwrite, folder));
        if (IsInterrupted())
            break;
    }
    return status;
}
