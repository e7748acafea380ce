// One Lectora per user: the socket in the home folder through which a second start hands its
// command line over.
#pragma once

#include <sys/stat.h>

#include <string>
#include <vector>

#include "foundation/unique_fd.h"

// The listening end; removes its path when it goes. GUI thread.
class RunOnceSocket {
public:
    enum class Claim {
        kServer,      // this process is the instance; listening, or at least trying to
        kHandedOver,  // another instance runs and has been given the command line
        kBusy,        // another instance runs but does not answer
    };

    RunOnceSocket() = default;
    RunOnceSocket(const RunOnceSocket&) = delete;
    RunOnceSocket& operator=(const RunOnceSocket&) = delete;
    ~RunOnceSocket();

    // path longer than a socket address holds is cut, as the address record does.
    Claim ClaimPath(const std::string& path, const std::vector<std::string>& arguments);
    int ListeningFd() const { return listening_.Get(); }  // borrowed; -1 when not listening
    void Close();  // stops listening and removes the path, unless another instance has replaced it

    // Accepts one hand-over, from the same user or root. False: the message announced a negative
    // count, and listening must end.
    bool Receive(std::vector<std::string>& arguments) const;

    static std::string DefaultPath();  // ".Lectora.runonce" in the home folder

private:
    Claim Connect(UniqueFd& client) const;
    bool Bind();

    UniqueFd listening_;
    std::string path_;      // as cut to the address's length
    struct stat bound_ {};  // what this process bound there; no inode while it bound nothing
};

// The arguments as the running instance should see them: it has a working folder of its own, so a
// relative name of an existing file is made absolute. Argument 0 stays.
std::vector<std::string> ArgumentsForHandOver(int argc, char* const* argv);
