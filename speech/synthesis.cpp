#include "speech/synthesis.h"

#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <mutex>
#include <utility>

#include "formats/wave_file.h"
#include "foundation/files/file.h"
#include "foundation/files/text_file.h"
#include "foundation/log/log.h"
#include "foundation/processes/child_process.h"
#include "speech/festival_voices.h"
#include "speech/run_files.h"
#include "speech/text_preparation.h"
#include "speech/voices.h"

namespace {

constexpr const char* kTemporaryFolder = "/tmp/";
constexpr std::size_t kMaxCommand = 260;
constexpr std::size_t kMostErrors = 1000;  // bytes of a run that the log gets
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

// Worker and waiter each hold a reference; whoever is last frees it.
struct SynthesisRun::Record {
    std::string command;
    LSignalObject finished;  // by the worker: the command has ended
    std::atomic<int> result{1};

    void RunEngine();  // on the worker, until the engine has ended
    void KillEngine();
    std::string Errors();  // what it wrote to its standard error, the beginning; once it has ended

private:
    static std::string ReadErrors(int fd, pid_t engine);
    static void EndLeftBehind(pid_t engine);

    std::mutex mutex_;   // guards what follows
    pid_t engine_ = -1;  // leads its process group; -1 while it does not run
    bool isUnwanted_ = false;
    std::string errors_;
};

void SynthesisRun::Record::RunEngine() {
    LChildStreams streams;
    streams.emptyInput = true;
    // Ours may be where the sound goes.
    streams.noOutput = true;
    LPipePair errorPipe = LPipePair::Make();
    streams.errors = errorPipe.writeEnd.Get();
    streams.ownGroup = true;
    streams.diesWithStarter = true;
    LChildProcess engine;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (!isUnwanted_)
            engine = LChildProcess::StartShell(command.c_str(), streams);
        engine_ = engine.Pid();
    }
    result.store(engine.IsStarted() ? kProcessDone : kProcessFailed);
    errorPipe.writeEnd.Reset();
    std::string errors;
    if (engine.IsStarted())
        errors = ReadErrors(errorPipe.readEnd.Get(), engine.Pid());
    EndLeftBehind(engine.Pid());
    engine.Wait();
    const std::lock_guard<std::mutex> lock(mutex_);
    engine_ = -1;
    errors_ = std::move(errors);
}

// What the engine put into the background ends with it. Until it is waited for, no other process
// can have its number.
void SynthesisRun::Record::EndLeftBehind(pid_t engine) {
    siginfo_t ended{};
    while (engine > 0 &&
           ::waitid(P_PID, static_cast<id_t>(engine), &ended, WEXITED | WNOWAIT) != 0 &&
           errno == EINTR) {
    }
    if (engine > 0)
        ::kill(-engine, SIGKILL);
}

// Until the engine has ended: what it left in the background may hold the pipe for ever.
std::string SynthesisRun::Record::ReadErrors(int fd, pid_t engine) {
    std::string errors;
    const UniqueFd ended(static_cast<int>(::syscall(SYS_pidfd_open, engine, 0)));
    for (bool hasEnded = false;;) {
        pollfd events[] = {{fd, POLLIN, 0}, {ended.Get(), POLLIN, 0}};
        if (::poll(events, 2, hasEnded ? 0 : -1) < 0 && errno == EINTR)
            continue;
        if (events[0].revents == 0 && hasEnded)
            return errors;
        hasEnded = hasEnded || events[1].revents != 0;
        if (events[0].revents == 0)
            continue;
        char block[4096];
        const ssize_t got = ::read(fd, block, sizeof block);
        if (got <= 0)
            return errors;
        errors.append(block, std::min(static_cast<std::size_t>(got), kMostErrors - errors.size()));
    }
}

std::string SynthesisRun::Record::Errors() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return errors_;
}

void SynthesisRun::Record::KillEngine() {
    const std::lock_guard<std::mutex> lock(mutex_);
    isUnwanted_ = true;
    if (engine_ > 0)
        ::kill(-engine_, SIGKILL);
}

SynthesisRun::SynthesisRun(LTTS& request)
    : request_(request), voice_(AskedVoiceAt(request.voice)), engine_(EngineOf(voice_)) {}

SynthesisRun::~SynthesisRun() {
    End();
}

LSignalObjectRef SynthesisRun::Finished() const {
    return record_->finished.Ref();
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
    return StartEngine(text);
}

bool SynthesisRun::StartEngine(std::string_view text) {
    RemoveFilesOfDeadRuns(FolderOf(request_.outputPath));
    std::string command;
    if (!WriteText(text) || !ChooseCommand(command)) {
        request_.outcome = SynthesisOutcome::kCannotWrite;
        return false;
    }
    if (!StartWorker(std::move(command))) {
        request_.outcome = SynthesisOutcome::kCannotStart;
        return false;
    }
    return true;
}

bool SynthesisRun::WriteText(std::string_view text) {
    textPath_ = MakeRunTextFile();
    if (textPath_.empty())
        return false;
    SaveText(textPath_.c_str(), std::string(text).c_str());
    return FileSize(textPath_) == static_cast<long long>(text.size());
}

// The sound file stands beside the output, or in the temporary folder when its path would not fit
// into the command; a voice's name may be longer than that.
bool SynthesisRun::ChooseCommand(std::string& command) {
    for (const std::string& folder :
         {FolderOf(request_.outputPath), std::string(kTemporaryFolder)}) {
        soundPath_ = MakeRunSoundFile(folder, textPath_);
        if (soundPath_.empty())
            return false;
        command = engine_.command(engine_, voice_, textPath_, soundPath_);
        if (command.size() < kMaxCommand || folder == kTemporaryFolder)
            return true;
        ::unlink(soundPath_.c_str());
        soundPath_.clear();
    }
    return false;
}

bool SynthesisRun::StartWorker(std::string command) {
    record_ = std::make_shared<Record>();
    // In place of the shell, so that the engine itself dies with its starter.
    record_->command =
        std::string(kFileBound) + (engine_.isOneProgram ? "exec " : "") + std::move(command);
    auto* const share = new std::shared_ptr<Record>(record_);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_t worker{};
    const bool started =
        ::pthread_create(&worker, &attributes, ProcessRunThreadCallback, share) == 0;
    pthread_attr_destroy(&attributes);
    if (!started) {
        delete share;
        record_.reset();
    }
    return started;
}

void* SynthesisRun::ProcessRunThreadCallback(void* share) {
    const std::shared_ptr<Record> record = *static_cast<std::shared_ptr<Record>*>(share);
    delete static_cast<std::shared_ptr<Record>*>(share);
    record->RunEngine();
    record->finished.Signal();
    return nullptr;
}

LProcessResult SynthesisRun::Finish(LProcessResult waited) {
    if (record_) {
        if (waited == kProcessStopped)
            request_.outcome = SynthesisOutcome::kStopped;
        else if (waited == kProcessFailed)
            request_.outcome = SynthesisOutcome::kTimedOut;
        else if (record_->result.load() == kProcessFailed)
            request_.outcome = SynthesisOutcome::kCannotStart;
        else
            request_.outcome = Judge();
        if (const std::string errors = record_->Errors(); !errors.empty())
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
    if (record_)
        record_->KillEngine();
    record_.reset();
    for (std::string* path : {&soundPath_, &textPath_}) {
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
        return SynthesisOutcome::kSpoken;
    }
    return Deliver() ? SynthesisOutcome::kSpoken : SynthesisOutcome::kCannotWrite;
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
