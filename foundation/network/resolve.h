// Names of hosts to IPv4 addresses.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/network/ip_socket.h"
#include "foundation/threads/progress.h"
#include "foundation/threads/signal_object.h"

struct LHostAndPort {
    std::string host;
    std::uint16_t port = 0;
};

// "host" or "host:port". A port that is no number from 1 to 65535 makes the host empty.
LHostAndPort SplitHostPort(std::string_view text, std::uint16_t defaultPort);

// All IPv4 addresses of the host in the resolver's order, without repetitions; empty when there are
// none. May take as long as the name servers do: not for the GUI thread.
std::vector<LIPAddressWithPort> ResolveHost(const LHostAndPort& host);

// The same on a thread of its own, which is left to end by itself when nobody waits for it any
// more.
class LHostLookup {
public:
    explicit LHostLookup(const LHostAndPort& host);
    LSignalObjectRef DoneSignal() const { return shared_->done.Ref(); }
    std::vector<LIPAddressWithPort> Addresses() const;  // empty until done

private:
    struct Shared {
        LSignalObject done;
        std::mutex mutex;
        std::vector<LIPAddressWithPort> addresses;
        LHostAndPort host;
    };
    static void* Run(void* shared);
    std::shared_ptr<Shared> shared_;
};

// Keeps the progress alive meanwhile. Failed when the time passed or the host has no address.
LProcessResult ProcessResolve(LProgress& progress, const LHostAndPort& host, unsigned int timeoutMs,
                              std::vector<LIPAddressWithPort>& addresses);
