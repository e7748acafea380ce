#include "speech/synthesis.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "formats/wave_file.h"
#include "foundation/child_process.h"
#include "foundation/file.h"
#include "foundation/text_buffer.h"
#include "foundation/text_file.h"
#include "foundation/unique_fd.h"
#include "speech/text_preparation.h"
#include "speech/voice_charset.h"
#include "speech/voices.h"

namespace {

constexpr const char* kTemporaryFolder = "/tmp/";
constexpr std::size_t kMaxCommand = 260;
constexpr unsigned long kFullDiskBytes = 65536;  // fewer free bytes count as a full disk

// Creates a private file from a pattern that ends in XXXXXX and `suffix`; empty when that is
// refused.
std::string MakeTemporaryFile(std::string pattern, std::string_view suffix) {
    pattern += suffix;
    const UniqueFd file(::mkostemps(pattern.data(), static_cast<int>(suffix.size()), O_CLOEXEC));
    return file.IsOpen() ? pattern : std::string();
}

std::string FolderOf(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? "./" : std::string(path.substr(0, slash + 1));
}

bool IsDiskFull(const std::string& folder) {
    struct statvfs disk {};
    return ::statvfs(folder.c_str(), &disk) == 0 &&
           static_cast<unsigned long>(disk.f_bavail) * disk.f_frsize < kFullDiskBytes;
}

long long FileSize(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? static_cast<long long>(status.st_size) : -1;
}

// The header's frame count is written last; a disk that fills leaves fewer bytes than it announces.
bool IsShorterThanAnnounced(const std::string& path, int frames) {
    WAVEFORMATEX* format = nullptr;
    if (!LGetWaveFormatEx(path.c_str(), &format))
        return true;
    const long long announced = static_cast<long long>(frames) * format->nBlockAlign;
    FreeWaveFormatEx(format);
    return FileSize(path) < announced;
}

}  // namespace

std::string SynthesisMessage(SynthesisOutcome outcome) {
    switch (outcome) {
        case SynthesisOutcome::Spoken:
        case SynthesisOutcome::Stopped:
            return {};
        case SynthesisOutcome::TimedOut:
            return "The speech engine did not finish within 20 seconds. Please try a shorter text.";
        case SynthesisOutcome::NothingToSay:
            return "There is nothing in this text that the chosen voice can speak.";
        case SynthesisOutcome::EngineMissing:
            return "The speech engine is not installed: the program \"text2wave\" was not found.";
        case SynthesisOutcome::CannotStart:
            return "The speech engine could not be started: the system is out of resources.";
        case SynthesisOutcome::NoSound:
            return "The speech engine produced no sound for this text.";
        case SynthesisOutcome::Incomplete:
            return "The speech engine stopped before the end of the text.";
        case SynthesisOutcome::CannotWrite:
            return "The speech could not be written: the disk is full or the folder is not "
                   "writable.";
    }
    return {};
}

std::string ShellWord(std::string_view word) {
    constexpr std::string_view kPlain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_./-";
    if (!word.empty() && word.find_first_not_of(kPlain) == std::string_view::npos)
        return std::string(word);
    std::string quoted = "'";
    for (const char character : word) {
        if (character == '\'')
            quoted += "'\\''";
        else
            quoted += character;
    }
    return quoted + "'";
}

std::string SynthesisCommand(std::string_view voice, std::string_view textPath,
                             std::string_view soundPath) {
    const std::string expression = "(voice_" + std::string(voice) + ")";
    return "text2wave -eval " + ShellWord(expression) + " " + ShellWord(textPath) + " -o " +
           ShellWord(soundPath);
}

// Worker and waiter each hold a reference; whoever is last frees it.
struct SynthesisRun::Record {
    std::string command;
    std::string soundPath;
    LSignalObject finished;  // by the worker: the command has ended
    LSignalObject released;  // by the waiter: it needs the files no longer
    std::atomic<int> result{1};
    std::atomic<bool> abandoned{false};
};

SynthesisRun::SynthesisRun(LTTS& request) : request_(request) {}

SynthesisRun::~SynthesisRun() = default;

LSignalObjectRef SynthesisRun::Finished() const {
    return record_->finished.Ref();
}

bool SynthesisRun::Start() {
    char voice[kTextBufferSize];
    TTSGetDictSpeakerName(request_.voice, voice);
    const PreparedText prepared = PrepareText(request_.text, CharsetOfVoice(voice));
    if (!prepared.hasWords) {
        request_.outcome = SynthesisOutcome::NothingToSay;
        return false;
    }
    std::string command;
    if (!WriteText(prepared.text) || !ChooseCommand(voice, command)) {
        request_.outcome = SynthesisOutcome::CannotWrite;
        return false;
    }
    if (!StartWorker(std::move(command))) {
        request_.outcome = SynthesisOutcome::CannotStart;
        return false;
    }
    return true;
}

bool SynthesisRun::WriteText(const std::string& text) {
    textPath_ = MakeTemporaryFile(std::string(kTemporaryFolder) + "0XXXXXX", "");
    if (textPath_.empty())
        return false;
    SaveText(textPath_.c_str(), text.c_str());
    return FileSize(textPath_) == static_cast<long long>(text.size());
}

// The sound file stands beside the output, or in the temporary folder when its path would not fit
// into the command.
bool SynthesisRun::ChooseCommand(std::string_view voice, std::string& command) {
    for (const std::string& folder :
         {FolderOf(request_.outputPath), std::string(kTemporaryFolder)}) {
        soundPath_ = MakeTemporaryFile(folder + ".speechXXXXXX", ".wav");
        if (soundPath_.empty())
            return false;
        command = SynthesisCommand(voice, textPath_, soundPath_);
        if (command.size() < kMaxCommand)
            return true;
        ::unlink(soundPath_.c_str());
        soundPath_.clear();
    }
    return false;
}

bool SynthesisRun::StartWorker(std::string command) {
    record_ = std::make_shared<Record>();
    // The text file goes when the waiter gives up: the shell then removes the sound that nobody
    // will fetch, also when this program has ended by that time.
    record_->command = std::move(command) + "; test -e " + ShellWord(textPath_) + " || rm -f " +
                       ShellWord(soundPath_);
    record_->soundPath = soundPath_;
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
    const int status = RunShellCommand(record->command.c_str());
    record->result.store(status < 0 ? kProcessFailed : kProcessDone);
    record->finished.Signal();
    record->released.Ref().WaitSignalForever();
    if (record->abandoned.load())
        ::unlink(record->soundPath.c_str());
    return nullptr;
}

LProcessResult SynthesisRun::Finish(LProcessResult waited) {
    if (record_) {
        if (waited == kProcessStopped)
            request_.outcome = SynthesisOutcome::Stopped;
        else if (waited == kProcessFailed)
            request_.outcome = SynthesisOutcome::TimedOut;
        else if (record_->result.load() == kProcessFailed)
            request_.outcome = SynthesisOutcome::CannotStart;
        else
            request_.outcome = Judge();
        record_->abandoned.store(waited != kProcessDone);
        record_->released.Signal();
    }
    if (!soundPath_.empty() && (!record_ || waited == kProcessDone))
        ::unlink(soundPath_.c_str());
    if (!textPath_.empty())
        ::unlink(textPath_.c_str());
    if (request_.outcome == SynthesisOutcome::Spoken)
        request_.result = kProcessDone;
    else
        request_.result =
            request_.outcome == SynthesisOutcome::Stopped ? kProcessStopped : kProcessFailed;
    request_.done.Signal();
    return request_.result;
}

// By the file alone: the engine exits with 0 when it crashed half-way, found no voice or filled the
// disk.
SynthesisOutcome SynthesisRun::Judge() const {
    const LSoundSource sound = LWaveFile::OpenSource(soundPath_.c_str());
    const int frames = sound->GetEndSample();
    if (sound->Status() != SoundStatus::kGood || frames < 1) {
        if (!IsProgramInstalled("text2wave"))
            return SynthesisOutcome::EngineMissing;
        return IsDiskFull(FolderOf(soundPath_)) ? SynthesisOutcome::CannotWrite
                                                : SynthesisOutcome::NoSound;
    }
    if (IsShorterThanAnnounced(soundPath_, frames))
        return IsDiskFull(FolderOf(soundPath_)) ? SynthesisOutcome::CannotWrite
                                                : SynthesisOutcome::Incomplete;
    return Deliver() ? SynthesisOutcome::Spoken : SynthesisOutcome::CannotWrite;
}

bool SynthesisRun::Deliver() const {
    if (std::rename(soundPath_.c_str(), request_.outputPath) == 0)
        return true;
    return errno == EXDEV && LFile::CopyFile(soundPath_.c_str(), request_.outputPath) &&
           FileSize(request_.outputPath) == FileSize(soundPath_);
}
