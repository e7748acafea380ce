// A speech engine's process, run and reaped by a thread of its own.
//
// Shared by its owner and that detached thread; whoever is last frees it. It leads a process group,
// all of which ends with it, and dies with this program.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "foundation/files/unique_fd.h"
#include "foundation/processes/child_process.h"
#include "foundation/threads/signal_object.h"

class EngineProcess {
public:
    // What a waiting engine takes as the file that it is to speak.
    static constexpr std::string_view kWaitingTextPath = "/dev/stdin";

    // Runs the shell command. Null: the system has no room for another thread.
    static std::shared_ptr<EngineProcess> Start(std::string command);
    // The same for one that reads its text from kWaitingTextPath, and waits until it is given one:
    // two minutes, and again as long from each KeepWaiting on; then it is ended.
    static std::shared_ptr<EngineProcess> StartWaiting(std::string command);

    // Any thread.
    LSignalObjectRef Finished() const { return finished_.Ref(); }
    bool CouldStart() const { return couldStart_; }  // once it has finished
    std::string Errors();  // what it wrote to its standard error, the beginning; likewise
    void Kill();

    bool IsWaiting();
    void KeepWaiting();
    // All of its text. False: it waits no more, or could not take as much without being waited for.
    bool GiveText(std::string_view text);

private:
    static bool StartWorker(const std::shared_ptr<EngineProcess>& process);
    static void* RunOnWorker(void* share);
    static void EndLeftBehind(pid_t engine);
    void Run();
    std::string ReadErrors(int fd, pid_t engine);
    int MillisecondsToWait();

    std::string command_;
    LSignalObject finished_;  // by the worker: the command has ended
    std::atomic<bool> couldStart_ = false;
    LPipePair text_;  // whose read end is the worker's

    std::mutex mutex_;   // guards what follows, and the write end
    pid_t engine_ = -1;  // leads its process group; -1 while it does not run
    bool isUnwanted_ = false;
    std::chrono::steady_clock::time_point waitsUntil_;
    std::string errors_;
};
