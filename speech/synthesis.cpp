#include "speech/synthesis.h"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

#include "formats/wave_file.h"
#include "foundation/files/file.h"
#include "foundation/files/file_io.h"
#include "foundation/files/text_file.h"
#include "foundation/files/unique_fd.h"
#include "foundation/log/log.h"
#include "foundation/processes/child_process.h"
#include "speech/festival_voices.h"
#include "speech/run_files.h"
#include "speech/spoken_times.h"
#include "speech/text_preparation.h"
#include "speech/voices.h"

namespace {

constexpr const char* kTemporaryFolder = "/tmp/";
constexpr std::size_t kMaxCommand = 260;
// Of a run's file, in blocks of 512 bytes: a gigabyte, where a piece takes some megabytes.
constexpr std::string_view kFileBound = "ulimit -f 2097152; ";
constexpr unsigned long kFullDiskBytes = 65536;  // fewer free bytes count as a full disk

bool IsDiskFull(const std::string& folder) {
    struct statvfs disk = {};
    return ::statvfs(folder.c_str(), &disk) == 0 &&
           static_cast<unsigned long>(disk.f_bavail) * disk.f_frsize < kFullDiskBytes;
}

long long FileSize(const std::string& path) {
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 ? static_cast<long long>(status.st_size) : -1;
}

}  // namespace

std::string SynthesisMessage(SynthesisOutcome outcome, const Voice& voice) {
    switch (outcome) {
        case SynthesisOutcome::kSpoken:
        case SynthesisOutcome::kStopped:
            return {};
        case SynthesisOutcome::kTimedOut:
            return "The speech engine did not finish within 20 seconds.";
        case SynthesisOutcome::kNothingToSay:
            return "There is nothing in this text that the chosen voice can speak.";
        case SynthesisOutcome::kEngineMissing:
            return "The speech engine is not installed: the program \"" + EngineOf(voice).program +
                   "\" was not found.";
        case SynthesisOutcome::kCannotStart:
            return "The speech engine could not be started: the system is out of resources.";
        case SynthesisOutcome::kNoSound:
            if (const std::string package = MissingCompanion(voice.name); !package.empty())
                return "The voice " + voice.title + " needs the package \"" + package +
                       "\", which is not installed.";
            return "The speech engine produced no sound for this text. Another voice may help: "
                   "this one may have been removed or be incomplete.";
        case SynthesisOutcome::kIncomplete:
            return "The speech engine stopped before the end of the text.";
        case SynthesisOutcome::kCannotWrite:
            return "The speech could not be written: the disk is full or the folder is not "
                   "writable.";
        case SynthesisOutcome::kTooLong:
            return "The speech is longer than a sound file can hold, so the end of the text is "
                   "missing.";
        case SynthesisOutcome::kOtherChannels:
            return "The speech engine gave sound of another number of channels.";
    }
    return {};
}

SynthesisRun::SynthesisRun(LTTS& request)
    : request_(request), voice_(AskedVoiceAt(request.voice)), engine_(EngineOf(voice_)) {}

SynthesisRun::~SynthesisRun() {
    End();
}

LSignalObjectRef SynthesisRun::Finished() const {
    return process_->Finished();
}

bool SynthesisRun::Start() {
    const PreparedText prepared = PrepareText(
        request_.text, voice_.charset, voice_.language,
        SaidDifferently(CurrentPronunciations(), request_.text, KeyOf(voice_), voice_.language),
        SpokenForms(request_.text, voice_.language, SaidByEngineOf(voice_), {}));
    if (!prepared.hasWords) {
        request_.outcome = SynthesisOutcome::kNothingToSay;
        return false;
    }
    return StartEngine(prepared.text);
}

bool SynthesisRun::StartPrepared(std::string_view text) {
    isDelivered_ = false;
    textSize_ = text.size();
    if (process_ && process_->GiveText(text))
        return true;
    End();  // one that waited no more
    return StartEngine(text);
}

bool SynthesisRun::StartWaiting() {
    isDelivered_ = false;
    return StartEngine("", true);
}

bool SynthesisRun::IsWaiting() const {
    return process_ && process_->IsWaiting() && FileSize(soundPath_) >= 0;
}

// One that waits gets its text from us; its text file is there for the sound file's name.
bool SynthesisRun::StartEngine(std::string_view text, bool isToWait) {
    RemoveFilesOfDeadRuns(FolderOf(request_.outputPath));
    std::string command;
    if (!WriteText(text) || !ChooseCommand(command, isToWait)) {
        request_.outcome = SynthesisOutcome::kCannotWrite;
        return false;
    }
    if (!isDelivered_ && engine_.timesOption != nullptr)
        timesPath_ = MakeRunTimesFile(soundPath_);
    if (!timesPath_.empty())
        command += " " + engine_.timesOption(timesPath_);
    // In place of the shell, so that the engine itself dies with its starter.
    command.insert(0, std::string(kFileBound) + (engine_.isOneProgram ? "exec " : ""));
    process_ = isToWait ? EngineProcess::StartWaiting(std::move(command))
                        : EngineProcess::Start(std::move(command));
    if (!process_)
        request_.outcome = SynthesisOutcome::kCannotStart;
    return process_ != nullptr;
}

bool SynthesisRun::WriteText(std::string_view text) {
    textPath_ = MakeRunTextFile();
    if (textPath_.empty())
        return false;
    std::string file(text);
    if (engine_.needsLineEnd && !text.ends_with('\n'))
        file += '\n';
    SaveText(textPath_.c_str(), file.c_str());
    return FileSize(textPath_) == static_cast<long long>(file.size());
}

// The sound file stands beside the output, or in the temporary folder when its path would not fit
// into the command; a voice's name may be longer than that.
bool SynthesisRun::ChooseCommand(std::string& command, bool isToWait) {
    for (const std::string& folder :
         {FolderOf(request_.outputPath), std::string(kTemporaryFolder)}) {
        soundPath_ = MakeRunSoundFile(folder, textPath_);
        if (soundPath_.empty())
            return false;
        command = engine_.command(
            engine_, {.voice = voice_,
                      .textPath = isToWait ? EngineProcess::kWaitingTextPath : textPath_,
                      .soundPath = soundPath_,
                      .speed = request_.speed,
                      .manner = request_.manner ? *request_.manner : MannerOf(voice_)});
        if (command.size() < kMaxCommand || folder == kTemporaryFolder)
            return true;
        ::unlink(soundPath_.c_str());
        soundPath_.clear();
    }
    return false;
}

LProcessResult SynthesisRun::Finish(LProcessResult waited) {
    if (process_) {
        if (waited == kProcessStopped)
            request_.outcome = SynthesisOutcome::kStopped;
        else if (waited == kProcessFailed)
            request_.outcome = SynthesisOutcome::kTimedOut;
        else if (!process_->CouldStart())
            request_.outcome = SynthesisOutcome::kCannotStart;
        else
            request_.outcome = Judge();
        if (const std::string errors = process_->Errors(); !errors.empty())
            LOGWARNF("Speech engine: %s", errors.c_str());
    }
    End();
    if (request_.outcome == SynthesisOutcome::kSpoken)
        request_.result = kProcessDone;
    else
        request_.result =
            request_.outcome == SynthesisOutcome::kStopped ? kProcessStopped : kProcessFailed;
    request_.done.Signal();
    return request_.result;
}

// A killed engine opens no file any more, so its files can go at once.
void SynthesisRun::End() {
    if (process_)
        process_->Kill();
    process_.reset();
    for (std::string* path : {&soundPath_, &textPath_, &timesPath_}) {
        if (!path->empty())
            ::unlink(path->c_str());
        path->clear();
    }
}

// By the file alone: the engine exits with 0 when it crashed half-way, found no voice or filled the
// disk.
SynthesisOutcome SynthesisRun::Judge() {
    const LSoundSource sound = LWaveFile::OpenSource(soundPath_.c_str());
    const int frames = sound->GetEndSample();
    if (sound->Status() != SoundStatus::kGood || frames < 1) {
        if (engine_.isOneProgram && !IsProgramInstalled(engine_.program.c_str()))
            return SynthesisOutcome::kEngineMissing;
        return IsDiskFull(FolderOf(soundPath_)) ? SynthesisOutcome::kCannotWrite
                                                : SynthesisOutcome::kNoSound;
    }
    // The header's frame count is written last; a disk that fills leaves fewer frames than that.
    if (sound->FramesMissing() > 0)
        return IsDiskFull(FolderOf(soundPath_)) ? SynthesisOutcome::kCannotWrite
                                                : SynthesisOutcome::kIncomplete;
    if (!isDelivered_) {
        sound_ = sound;
        ReadTimes();
        return SynthesisOutcome::kSpoken;
    }
    return Deliver() ? SynthesisOutcome::kSpoken : SynthesisOutcome::kCannotWrite;
}

// Too much to be true is nothing.
void SynthesisRun::ReadTimes() {
    if (timesPath_.empty())
        return;
    const UniqueFd file = OpenFileForReading(timesPath_.c_str());
    if (!file.IsOpen() || !ReadWholeFile(file.Get(), MostToldOf(textSize_), toldTimes_))
        toldTimes_.clear();
}

bool SynthesisRun::Deliver() const {
    if (std::rename(soundPath_.c_str(), request_.outputPath) == 0)
        return true;
    return errno == EXDEV && LFile::CopyFile(soundPath_.c_str(), request_.outputPath) &&
           FileSize(request_.outputPath) == FileSize(soundPath_);
}

LProcessResult Process(LProgress& progress, LTTS& request) {
    progress.SetFirstLabel("Synthesizing Voice");
    progress.SetSecondLabel("Please wait");
    SynthesisRun run(request);
    if (!run.Start())
        return run.Finish(kProcessFailed);
    return run.Finish(progress.ProcessWaitSignal(run.Finished(), kSynthesisTimeoutMilliseconds));
}
