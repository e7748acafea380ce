// One Lectora per user: the socket in the home folder through which a second start hands its
// command line over.
#pragma once

#include <sys/stat.h>

#include <string>
#include <vector>

#include "foundation/files/unique_fd.h"

// A command line that a second start has handed over. That start waits until this goes, and then
// ends: the command line is in good hands.
struct HandedOver {
    std::vector<std::string> arguments;
    UniqueFd connection;
    void Refuse();  // lets it start by itself instead
};

// The listening end; removes its path when it goes. GUI thread.
class RunOnceSocket {
public:
    enum class Claim {
        kServer,      // this process is the instance; listening, or at least trying to
        kHandedOver,  // another instance runs and has taken the command line
        kBusy,        // another instance runs but does not answer
    };
    static constexpr int kAnswerMilliseconds = 10000;

    RunOnceSocket() = default;
    RunOnceSocket(const RunOnceSocket&) = delete;
    RunOnceSocket& operator=(const RunOnceSocket&) = delete;
    ~RunOnceSocket();

    // path longer than a socket address holds is cut, as the address record does. Waits for the
    // answer of an instance that runs; one that is just ending gives its place to this one.
    Claim ClaimPath(const std::string& path, const std::vector<std::string>& arguments,
                    int answerMilliseconds = kAnswerMilliseconds);
    int BusyProcess() const { return busyProcess_; }      // after kBusy; 0: not known
    int ListeningFd() const { return listening_.Get(); }  // borrowed; -1 when not listening
    void Close();  // stops listening and removes the path, unless another instance has replaced it

    // Accepts one hand-over, from the same user or root; without arguments there is none. False:
    // the message announced a negative count, and listening must end.
    bool Receive(HandedOver& handed) const;

    static std::string DefaultPath();  // ".Lectora.runonce" in the home folder

private:
    Claim Connect(UniqueFd& client, int milliseconds) const;
    Claim ClaimOnce(UniqueFd& client, int milliseconds);
    bool Bind();

    UniqueFd listening_;
    std::string path_;  // as cut to the address's length
    int busyProcess_ = 0;
    struct stat bound_ = {};  // what this process bound there; no inode while it bound nothing
};
