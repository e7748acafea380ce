#include "app/start/run_once.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "foundation/files/file.h"
#include "foundation/files/flock_timed.h"
#include "foundation/files/machine_root.h"
#include "foundation/files/text_buffer.h"
#include "foundation/threads/timed_poll.h"

namespace {

// A peer that stalls must not freeze the window, and one that lies about sizes must not fill the
// memory.
constexpr int kReceiveLimitMilliseconds = 1000;
constexpr int kTurnLimitMilliseconds = 1000;
constexpr int kMostTries = 100;
constexpr useconds_t kBetweenTriesMicroseconds = 100000;
// More than the system starts a program with.
constexpr std::int32_t kMaxArguments = 1 << 20;
constexpr std::int32_t kMaxArgumentBytes = 1 << 20;
constexpr std::size_t kMaxCommandLineBytes = 8U << 20;

sockaddr_un AddressOf(const std::string& path) {
    sockaddr_un address{};
    static_assert(sizeof address == 110);
    address.sun_family = AF_UNIX;
    CopyText(address.sun_path, path);
    return address;
}

UniqueFd NewSocket(int flags) {
    return UniqueFd(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0));
}

// One start at a time looks at the path: otherwise one meets another's socket that is bound and
// does not listen yet, or takes away what another has just put in the place of a dead one. The turn
// is the lock of the folder, and ends with the descriptor.
UniqueFd TakeTurn(const std::string& path) {
    const std::string folder = path.substr(0, path.rfind('/') + 1);
    UniqueFd turn(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (turn.IsOpen())
        LockInTurn(turn.Get(), LOCK_EX | LOCK_NB, kTurnLimitMilliseconds);
    return turn;
}

// A file system without modes lets everybody connect; the text box is not everybody's.
bool IsFromThisUser(int connection) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
           (peer.uid == ::geteuid() || peer.uid == 0);
}

bool SendAll(int fd, const void* data, std::size_t size) {
    const char* bytes = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t sent = ::send(fd, bytes, size, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR)
            continue;
        if (sent <= 0)
            return false;
        bytes += sent;
        size -= static_cast<std::size_t>(sent);
    }
    return true;
}

// No header, no terminators, host byte order: the peer is always this program on this machine. In
// one piece, which the connection holds whole where it is not endless.
std::string MessageOf(const std::vector<std::string>& arguments) {
    std::string message;
    const auto add = [&message](std::size_t number) {
        const auto word = static_cast<std::int32_t>(number);
        message.append(reinterpret_cast<const char*>(&word), sizeof word);
    };
    add(arguments.size());
    for (const std::string& argument : arguments) {
        add(argument.size());
        message += argument;
    }
    return message;
}

// The first byte of what an instance says. One that takes the command line and has no more to say
// closes the connection; one that ends may also leave what was sent unread, which resets it.
enum class Sign : char { kEnding = 0, kPromised = 1, kDone = 2, kNotDone = 3, kTaken, kNone };

// What is promised may be a long document that is loaded first.
constexpr int kPromisedMilliseconds = 60000;
constexpr std::size_t kMostAnswer = 65536;

Sign AwaitSign(int fd, int milliseconds) {
    pollfd entry{fd, POLLIN, 0};
    if (TimedPoll(&entry, 1, milliseconds) <= 0)
        return Sign::kNone;
    char byte = 0;
    const ssize_t got = ::recv(fd, &byte, 1, 0);
    if (got == 0)
        return Sign::kTaken;
    const bool isKnown = got == 1 && byte > 0 && byte <= static_cast<char>(Sign::kNotDone);
    return isKnown ? static_cast<Sign>(byte) : Sign::kEnding;
}

// Until the instance closes the connection.
std::string ReceiveRest(int fd) {
    std::string rest;
    char block[4096];
    pollfd entry{fd, POLLIN, 0};
    while (rest.size() < kMostAnswer && TimedPoll(&entry, 1, kReceiveLimitMilliseconds) > 0) {
        const ssize_t got = ::recv(fd, block, sizeof block, 0);
        if (got <= 0)
            break;
        rest.append(block, static_cast<std::size_t>(got));
    }
    return rest;
}

// Never waits: what an asker does not take is its loss.
void Say(int fd, Sign sign, const std::string& text = "") {
    const std::string message = static_cast<char>(sign) + text.substr(0, kMostAnswer);
    static_cast<void>(!::send(fd, message.data(), message.size(), MSG_NOSIGNAL | MSG_DONTWAIT));
}

// Of a command line that does not come whole nothing is done: its sender tries again, or tells.
bool DropPart(std::vector<std::string>& arguments) {
    arguments.clear();
    return true;
}

int MillisecondsSince(const timespec& time) {
    const auto then = std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    const auto age = std::chrono::system_clock::now().time_since_epoch() - then;
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(age).count();
    return static_cast<int>(std::clamp<std::int64_t>(milliseconds, 0, INT32_MAX));
}

int ProcessBehind(int fd) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 ? peer.pid : 0;
}

// Reads from one connection until a common deadline.
class HandOverReader {
public:
    explicit HandOverReader(int fd) : fd_(fd) {}

    bool Read(void* out, std::size_t size) {
        char* bytes = static_cast<char*>(out);
        while (size > 0) {
            pollfd entry{fd_, POLLIN, 0};
            if (::poll(&entry, 1, RemainingMilliseconds()) <= 0)
                return false;
            const ssize_t got = ::recv(fd_, bytes, size, MSG_DONTWAIT);
            if (got < 0 && (errno == EINTR || errno == EAGAIN))
                continue;
            if (got <= 0)
                return false;
            bytes += got;
            size -= static_cast<std::size_t>(got);
        }
        return true;
    }
    bool ReadNumber(std::int32_t& number) { return Read(&number, sizeof number); }

private:
    int RemainingMilliseconds() const {
        const auto left = deadline_ - std::chrono::steady_clock::now();
        const auto milliseconds =
            std::chrono::duration_cast<std::chrono::milliseconds>(left).count();
        return milliseconds > 0 ? static_cast<int>(milliseconds) : 0;
    }

    int fd_;
    std::chrono::steady_clock::time_point deadline_ =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(kReceiveLimitMilliseconds);
};

}  // namespace

std::string RunOnceSocket::DefaultPath() {
    char path[kTextBufferSize];
    CopyText(path, HomeFolder());
    LFile::_FilePathCat(path, ".Lectora.runonce");
    return path;
}

RunOnceSocket::~RunOnceSocket() {
    Close();
}

void HandedOver::Refuse() {
    Say(connection.Get(), Sign::kEnding);
    connection.Reset();
}

void HandedOver::Promise() {
    Say(connection.Get(), Sign::kPromised);
}

void HandedOver::Answer(bool isDone, const std::string& text) {
    Say(connection.Get(), isDone ? Sign::kDone : Sign::kNotDone, text);
    connection.Reset();
}

void RunOnceSocket::Close() {
    // The next start finds nobody listening only after the path is gone: what it puts there could
    // not be told from this.
    const UniqueFd turn = path_.empty() ? UniqueFd() : TakeTurn(path_);
    struct stat now = {};
    if (bound_.st_ino != 0 && ::stat(path_.c_str(), &now) == 0 && now.st_dev == bound_.st_dev &&
        now.st_ino == bound_.st_ino)
        ::unlink(path_.c_str());
    bound_ = {};
    listening_.Reset();
}

bool RunOnceSocket::Bind() {
    listening_ = NewSocket(SOCK_NONBLOCK);
    const sockaddr_un address = AddressOf(path_);
    ::fchmod(listening_.Get(), 0700);  // whatever the mask
    const bool bound =
        ::bind(listening_.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    return bound && ::listen(listening_.Get(), 5) == 0 && ::stat(path_.c_str(), &bound_) == 0;
}

// kServer: nobody listens on the path.
RunOnceSocket::Claim RunOnceSocket::Connect(UniqueFd& client, int milliseconds) const {
    client = NewSocket(0);
    const timeval limit{milliseconds / 1000, milliseconds % 1000 * 1000L};
    ::setsockopt(client.Get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    const sockaddr_un address = AddressOf(path_);
    if (::connect(client.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return Claim::kHandedOver;
    return errno == EAGAIN ? Claim::kBusy : Claim::kServer;
}

RunOnceSocket::Claim RunOnceSocket::ClaimOnce(UniqueFd& client, int milliseconds) {
    const UniqueFd turn = TakeTurn(path_);
    if (Bind())
        return Claim::kServer;
    listening_.Reset();
    const Claim claim = Connect(client, milliseconds);
    if (claim == Claim::kServer) {
        // Left by a crash. A second failure only means that this instance receives no hand-overs.
        ::unlink(path_.c_str());
        if (!Bind())
            listening_.Reset();
    }
    return claim;
}

RunOnceSocket::Claim RunOnceSocket::AskOnce(UniqueFd& client, int milliseconds) const {
    const UniqueFd turn = TakeTurn(path_);
    const Claim claim = Connect(client, milliseconds);
    return claim == Claim::kServer ? Claim::kNobody : claim;
}

RunOnceSocket::Claim RunOnceSocket::ClaimPath(const std::string& path,
                                              const std::vector<std::string>& arguments,
                                              int answerMilliseconds) {
    path_ = AddressOf(path).sun_path;
    return HandOver(arguments, answerMilliseconds, true);
}

// A start is younger than its socket only by moments: one whose window is not up yet does not hang.
RunOnceSocket::Claim RunOnceSocket::AskRunning(const std::string& path,
                                               const std::vector<std::string>& arguments,
                                               int promiseMilliseconds) {
    path_ = AddressOf(path).sun_path;
    struct stat socket = {};
    const bool isThere = ::stat(path_.c_str(), &socket) == 0;
    const int age = isThere ? MillisecondsSince(socket.st_mtim) : kAnswerMilliseconds;
    const int left = kAnswerMilliseconds - std::min(age, kAnswerMilliseconds);
    return HandOver(arguments, std::max(promiseMilliseconds, left), false);
}

RunOnceSocket::Claim RunOnceSocket::HandOver(const std::vector<std::string>& arguments,
                                             int milliseconds, bool claims) {
    const std::string message = MessageOf(arguments);
    for (int tries = 0; tries < kMostTries; ++tries) {
        UniqueFd client;
        const Claim claim =
            claims ? ClaimOnce(client, milliseconds) : AskOnce(client, milliseconds);
        Sign sign = Sign::kNone;
        if (claim == Claim::kHandedOver) {
            // One that closes the connection ends; one that takes nothing for so long is busy.
            const bool isSent = SendAll(client.Get(), message.data(), message.size());
            const bool isBusy = !isSent && (errno == EAGAIN || errno == EWOULDBLOCK);
            sign = isSent   ? AwaitSign(client.Get(), milliseconds)
                   : isBusy ? Sign::kNone
                            : Sign::kEnding;
            if (sign == Sign::kPromised)
                sign = AwaitSign(client.Get(), kPromisedMilliseconds);
        }
        if (sign == Sign::kEnding) {
            ::usleep(kBetweenTriesMicroseconds);  // until it has closed its socket
            continue;
        }
        if (sign == Sign::kDone || sign == Sign::kNotDone)
            answer_ = HandOverAnswer{sign == Sign::kDone, ReceiveRest(client.Get())};
        if (claim == Claim::kServer || claim == Claim::kNobody || sign != Sign::kNone)
            return claim;
        busyProcess_ = ProcessBehind(client.Get());
        return Claim::kBusy;
    }
    return Claim::kBusy;
}

bool RunOnceSocket::Receive(HandedOver& handed) const {
    handed = {};
    std::vector<std::string>& arguments = handed.arguments;
    UniqueFd connection(::accept4(listening_.Get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!connection.IsOpen() || !IsFromThisUser(connection.Get()))
        return true;
    HandOverReader reader(connection.Get());
    std::int32_t count = 0;
    if (!reader.ReadNumber(count))
        return true;
    if (count < 0)
        return false;
    if (count > kMaxArguments)
        return DropPart(arguments);
    std::size_t total = 0;
    for (std::int32_t index = 0; index < count; ++index) {
        std::int32_t length = 0;
        if (!reader.ReadNumber(length) || length < 0 || length > kMaxArgumentBytes)
            return DropPart(arguments);
        total += static_cast<std::size_t>(length);
        if (total > kMaxCommandLineBytes)
            return DropPart(arguments);
        std::string argument(static_cast<std::size_t>(length), '\0');
        if (!reader.Read(argument.data(), argument.size()))
            return DropPart(arguments);
        arguments.push_back(argument);
    }
    handed.connection = std::move(connection);
    return true;
}
