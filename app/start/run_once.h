// One Lectora per user: the socket in the home folder through which a second start hands its
// command line over.
#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <vector>

#include "foundation/files/unique_fd.h"

// A command line that a second start has handed over. That start waits until this goes, and then
// ends: the command line is in good hands.
struct HandedOver {
    std::vector<std::string> arguments;
    UniqueFd connection;
    void Refuse();  // lets it start by itself instead
    // For a start that asked for something and wants to know what became of it: that this is being
    // seen to, so that it goes on waiting; and the answer.
    void Promise();
    void Answer(bool isDone, const std::string& text);
};

// What the instance answered.
struct HandOverAnswer {
    bool isDone = false;
    std::string text;  // a line for the user
};

// The listening end; removes its path when it goes. GUI thread.
class RunOnceSocket {
public:
    enum class Claim {
        kServer,      // this process is the instance; listening, or at least trying to
        kHandedOver,  // another instance runs and has taken the command line
        kBusy,        // another instance runs but does not answer
        kNobody,      // no instance runs
    };
    static constexpr int kAnswerMilliseconds = 10000;
    static constexpr int kPromiseMilliseconds = 2000;

    RunOnceSocket() = default;
    RunOnceSocket(const RunOnceSocket&) = delete;
    RunOnceSocket& operator=(const RunOnceSocket&) = delete;
    ~RunOnceSocket();

    // path longer than a socket address holds is cut, as the address record does. Waits for the
    // answer of an instance that runs; one that is just ending gives its place to this one.
    Claim ClaimPath(const std::string& path, const std::vector<std::string>& arguments,
                    int answerMilliseconds = kAnswerMilliseconds);
    // Only asks the instance that runs, which has this long for a sign of life, and longer while it
    // is just starting.
    Claim AskRunning(const std::string& path, const std::vector<std::string>& arguments,
                     int promiseMilliseconds = kPromiseMilliseconds);
    // After kHandedOver: nothing when the instance only took what was handed over.
    const std::optional<HandOverAnswer>& Answer() const { return answer_; }
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
    Claim AskOnce(UniqueFd& client, int milliseconds) const;
    Claim HandOver(const std::vector<std::string>& arguments, int milliseconds, bool claims);
    bool Bind();

    UniqueFd listening_;
    std::string path_;  // as cut to the address's length
    int busyProcess_ = 0;
    std::optional<HandOverAnswer> answer_;
    struct stat bound_ = {};  // what this process bound there; no inode while it bound nothing
};
