// One Lectora per user: the socket in the home folder through which a second start hands its
// command line over.
#pragma once

#include <string>
#include <vector>

#include "foundation/unique_fd.h"

// The listening end; removes its path when it goes. GUI thread.
class RunOnceSocket {
public:
    enum class Claim {
        kServer,      // this process is the instance; listening, or at least trying to
        kHandedOver,  // another instance runs and has been given the command line
    };

    RunOnceSocket() = default;
    RunOnceSocket(const RunOnceSocket&) = delete;
    RunOnceSocket& operator=(const RunOnceSocket&) = delete;
    ~RunOnceSocket();

    // path longer than a socket address holds is cut, as the address record does.
    Claim ClaimPath(const std::string& path, const std::vector<std::string>& arguments);
    int ListeningFd() const { return listening_.Get(); }  // borrowed

    // Accepts one hand-over. False: the message announced a negative count, and listening must end.
    bool Receive(std::vector<std::string>& arguments) const;

    static std::string DefaultPath();  // ".Lectora.runonce" in the home folder

private:
    UniqueFd listening_;
    std::string path_;  // what this process bound and will remove
};

// The arguments as the running instance should see them: it has a working folder of its own, so a
// relative name of an existing file is made absolute. Argument 0 stays.
std::vector<std::string> ArgumentsForHandOver(int argc, char* const* argv);
