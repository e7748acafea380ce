#include "speech/engine_process.h"

#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "speech/engine_input.h"

namespace {

constexpr std::size_t kMostErrors = 1000;  // bytes of a run that the log gets
// Files of a run that has not been touched for longer may be taken for a dead one's (run_files.h).
constexpr std::chrono::minutes kLongestWait(2);
// What a pipe holds without a reader, in any case.
constexpr std::size_t kMostWaitingText = 16384;

}  // namespace

std::shared_ptr<EngineProcess> EngineProcess::Start(std::string command) {
    auto process = std::make_shared<EngineProcess>();
    process->command_ = std::move(command);
    return StartWorker(process) ? process : nullptr;
}

std::shared_ptr<EngineProcess> EngineProcess::StartWaiting(std::string command) {
    auto process = std::make_shared<EngineProcess>();
    process->command_ = std::move(command);
    process->text_ = LPipePair::Make();
    process->waitsUntil_ = std::chrono::steady_clock::now() + kLongestWait;
    return process->text_.IsOpen() && StartWorker(process) ? process : nullptr;
}

bool EngineProcess::StartWorker(const std::shared_ptr<EngineProcess>& process) {
    auto* const share = new std::shared_ptr<EngineProcess>(process);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_t worker{};
    const bool started = ::pthread_create(&worker, &attributes, RunOnWorker, share) == 0;
    pthread_attr_destroy(&attributes);
    if (!started)
        delete share;
    return started;
}

void* EngineProcess::RunOnWorker(void* share) {
    const std::shared_ptr<EngineProcess> process =
        *static_cast<std::shared_ptr<EngineProcess>*>(share);
    delete static_cast<std::shared_ptr<EngineProcess>*>(share);
    process->Run();
    process->finished_.Signal();
    return nullptr;
}

void EngineProcess::Run() {
    LChildStreams streams;
    streams.emptyInput = !text_.readEnd.IsOpen();
    streams.input = text_.readEnd.Get();
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
            engine = LChildProcess::StartShell(command_.c_str(), streams);
        engine_ = engine.Pid();
    }
    couldStart_ = engine.IsStarted();
    errorPipe.writeEnd.Reset();
    text_.readEnd.Reset();
    std::string errors;
    if (engine.IsStarted())
        errors = ReadErrors(errorPipe.readEnd.Get(), engine.Pid());
    EndLeftBehind(engine.Pid());
    // It has ended: Kill() never waits here for long, nor meets a number that is another's by then.
    const std::lock_guard<std::mutex> lock(mutex_);
    engine.Wait();
    engine_ = -1;
    text_.writeEnd.Reset();
    errors_ = std::move(errors);
}

// What the engine put into the background ends with it. Its group keeps the number as long as
// one of them is there; with none of them the kill reaches nobody, unless the kernel, which has
// collected the engine where SIGCHLD is ignored, has given the number to another group just now.
void EngineProcess::EndLeftBehind(pid_t engine) {
    siginfo_t ended{};
    while (engine > 0 &&
           ::waitid(P_PID, static_cast<id_t>(engine), &ended, WEXITED | WNOWAIT) != 0 &&
           errno == EINTR) {
    }
    if (engine > 0)
        ::kill(-engine, SIGKILL);
}

// Until the engine has ended: what it left in the background may hold the pipe for ever.
std::string EngineProcess::ReadErrors(int fd, pid_t engine) {
    std::string errors;
    const UniqueFd ended(static_cast<int>(::syscall(SYS_pidfd_open, engine, 0)));
    for (bool hasEnded = false;;) {
        pollfd events[] = {{fd, POLLIN, 0}, {ended.Get(), POLLIN, 0}};
        if (::poll(events, 2, hasEnded ? 0 : MillisecondsToWait()) < 0 && errno == EINTR)
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

// For a text; -1 for ever. Ends an engine that has waited long enough.
int EngineProcess::MillisecondsToWait() {
    using std::chrono::milliseconds;
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!text_.writeEnd.IsOpen())
        return -1;
    const auto left =
        std::chrono::duration_cast<milliseconds>(waitsUntil_ - std::chrono::steady_clock::now());
    if (left.count() >= 0)
        return static_cast<int>(left.count()) + 1;
    ::kill(-engine_, SIGKILL);
    text_.writeEnd.Reset();  // only then: its end is a text, too
    return -1;
}

std::string EngineProcess::Errors() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return errors_;
}

void EngineProcess::Kill() {
    const std::lock_guard<std::mutex> lock(mutex_);
    isUnwanted_ = true;
    if (engine_ > 0)
        ::kill(-engine_, SIGKILL);
    text_.writeEnd.Reset();
}

bool EngineProcess::IsWaiting() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return text_.writeEnd.IsOpen();
}

void EngineProcess::KeepWaiting() {
    const std::lock_guard<std::mutex> lock(mutex_);
    waitsUntil_ = std::chrono::steady_clock::now() + kLongestWait;
}

bool EngineProcess::GiveText(std::string_view text) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!text_.writeEnd.IsOpen() || text.size() > kMostWaitingText)
        return false;
    WriteToEngine(text_.writeEnd.Get(), text);
    text_.writeEnd.Reset();
    return true;
}
