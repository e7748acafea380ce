#include "foundation/network/resolve.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <pthread.h>
#include <sys/socket.h>

#include <algorithm>
#include <charconv>

namespace {

struct AddressListRelease {
    void operator()(addrinfo* list) const { freeaddrinfo(list); }
};

}  // namespace

LHostAndPort SplitHostPort(std::string_view text, std::uint16_t defaultPort) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string_view::npos)
        return {std::string(text), defaultPort};
    const std::string_view digits = text.substr(colon + 1);
    std::uint16_t port = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
    if (error != std::errc() || end != digits.data() + digits.size() || port == 0)
        return {std::string(), defaultPort};
    return {std::string(text.substr(0, colon)), port};
}

std::vector<LIPAddressWithPort> ResolveHost(const LHostAndPort& host) {
    std::vector<LIPAddressWithPort> addresses;
    if (host.host.empty())
        return addresses;
    addrinfo wanted{};
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(host.host.c_str(), nullptr, &wanted, &found) != 0)
        return addresses;
    const std::unique_ptr<addrinfo, AddressListRelease> list(found);
    for (const addrinfo* entry = found; entry; entry = entry->ai_next) {
        if (entry->ai_family != AF_INET || entry->ai_addrlen < sizeof(sockaddr_in))
            continue;
        const auto* raw = reinterpret_cast<const sockaddr_in*>(entry->ai_addr);
        const LIPAddressWithPort address(ntohl(raw->sin_addr.s_addr), host.port);
        const bool known = std::any_of(
            addresses.begin(), addresses.end(),
            [&](const LIPAddressWithPort& other) { return other.Address() == address.Address(); });
        if (!known && address.IsResolved())
            addresses.push_back(address);
    }
    return addresses;
}

LHostLookup::LHostLookup(const LHostAndPort& host) : shared_(std::make_shared<Shared>()) {
    shared_->host = host;
    auto ownedByThread = std::make_unique<std::shared_ptr<Shared>>(shared_);
    pthread_attr_t detached;
    pthread_t thread;
    pthread_attr_init(&detached);
    pthread_attr_setdetachstate(&detached, PTHREAD_CREATE_DETACHED);
    if (pthread_create(&thread, &detached, &LHostLookup::Run, ownedByThread.get()) == 0)
        static_cast<void>(ownedByThread.release());
    else
        shared_->done.Signal();  // done, with no address
    pthread_attr_destroy(&detached);
}

void* LHostLookup::Run(void* shared) {
    const std::unique_ptr<std::shared_ptr<Shared>> owned(
        static_cast<std::shared_ptr<Shared>*>(shared));
    std::vector<LIPAddressWithPort> addresses = ResolveHost((*owned)->host);
    {
        const std::lock_guard lock((*owned)->mutex);
        (*owned)->addresses = std::move(addresses);
    }
    (*owned)->done.Signal();
    return nullptr;
}

std::vector<LIPAddressWithPort> LHostLookup::Addresses() const {
    const std::lock_guard lock(shared_->mutex);
    return shared_->addresses;
}

LProcessResult ProcessResolve(LProgress& progress, const LHostAndPort& host, unsigned int timeoutMs,
                              std::vector<LIPAddressWithPort>& addresses) {
    const LHostLookup lookup(host);
    const LProcessResult waited = progress.ProcessWaitSignal(lookup.DoneSignal(), timeoutMs);
    if (waited != kProcessDone)
        return waited;
    addresses = lookup.Addresses();
    return addresses.empty() ? kProcessFailed : kProcessDone;
}
