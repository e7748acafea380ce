#include "formats/component_download.h"

#include <errno.h>
#include <fcntl.h>
#include <glib.h>
#include <signal.h>
#include <strings.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

#include "formats/file_io.h"
#include "formats/mp3_component.h"
#include "formats/settings_keys.h"
#include "foundation/child_process.h"
#include "foundation/flock_timed.h"
#include "foundation/hosts.h"
#include "foundation/resolve.h"
#include "foundation/tcp_steps.h"
#include "foundation/timed_poll.h"
#include "foundation/unique_fd.h"

namespace {

constexpr unsigned int kResolveMilliseconds = 12000;
constexpr int kConnectMilliseconds = 12000;
constexpr int kLineMilliseconds = 10000;
constexpr int kPieceMilliseconds = 7500;
constexpr int kEndMilliseconds = 1000;          // for the peer to close
constexpr int kInstallerMilliseconds = 120000;  // without a word of it
constexpr unsigned int kPieceBytes = 1028;
constexpr int kMostHeaderLines = 500;
constexpr std::int64_t kLargestBody = std::int64_t{256} << 20;
constexpr int kLockMilliseconds = 200;
constexpr int kGoodbyeMilliseconds = 1000;
constexpr std::size_t kMostSaid = 4096;

// The file that a body goes to; taken away again unless it is kept.
class BodyFile {
public:
    explicit BodyFile(const char* path);  // made or emptied, and locked
    ~BodyFile();
    BodyFile(const BodyFile&) = delete;
    BodyFile& operator=(const BodyFile&) = delete;
    bool IsOpen() const { return file_.IsOpen(); }
    bool Write(const void* data, std::size_t size);
    bool Keep();  // false: not everything reached the file

private:
    std::string path_;
    UniqueFd file_;
    bool isKept_ = false;
};

// The installer, running; ended with all its children when this goes.
class Installer {
public:
    explicit Installer(const char* scriptPath);
    ~Installer();
    Installer(const Installer&) = delete;
    Installer& operator=(const Installer&) = delete;
    bool IsStarted() const { return child_.IsStarted(); }
    int OutputFd() const { return output_.Get(); }
    bool ReadOutput();  // false at its end
    // Waits for the end, which is near once the output has ended. The last line that it said goes
    // to message, a sentence instead when that is bash's about the script; false when its end could
    // not be learned.
    bool Finish(std::string& message);

private:
    const std::string path_;
    LChildProcess child_;
    UniqueFd output_;
    std::string said_;
};

// Never through a link that somebody else may have put there.
BodyFile::BodyFile(const char* path)
    : path_(path),
      file_(::open(path, O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY,
                   0666)) {
    if (!file_.IsOpen())
        return;
    (void)flocktimed(file_.Get(), LOCK_EX | LOCK_NB, kLockMilliseconds);
    if (::ftruncate(file_.Get(), 0) != 0)
        file_.Reset();
}

BodyFile::~BodyFile() {
    if (file_.IsOpen() && !isKept_)
        ::unlink(path_.c_str());
}

bool BodyFile::Write(const void* data, std::size_t size) {
    return WriteFully(file_.Get(), data, size) == 0;
}

bool BodyFile::Keep() {
    isKept_ = CloseFile(file_) == 0;
    if (!isKept_)
        ::unlink(path_.c_str());
    return isKept_;
}

// HTTP, 200 to 399.
bool IsGoodStatusLine(const char* line) {
    constexpr std::size_t kNumberAt = 9;
    if (::strncasecmp(line, "HTTP", 4) != 0 || std::strlen(line) < kNumberAt)
        return false;
    const int status = std::atoi(line + kNumberAt);
    return status >= 200 && status <= 399;
}

// From a header line that is "Content-Length: " and a number; others leave it alone. False when the
// number is none, or no installer has that size.
bool TakeContentLength(const char* line, std::int64_t& length) {
    constexpr std::string_view kName = "Content-Length: ";
    const std::string_view text(line);
    if (!text.starts_with(kName))
        return true;
    const char* const end = line + text.size();
    const auto [at, error] = std::from_chars(line + kName.size(), end, length);
    return error == std::errc() && at == end && length >= 0 && length <= kLargestBody;
}

Installer::Installer(const char* scriptPath) : path_(scriptPath) {
    LPipePair pipe = LPipePair::Make();
    if (!pipe.IsOpen())
        return;
    LChildStreams streams;
    streams.output = pipe.writeEnd.Get();
    streams.emptyInput = true;
    streams.ownGroup = true;
    // The path is one of ours: letters and digits.
    const std::string command = "exec bash " + path_ + " 2>&1";
    child_ = LChildProcess::StartShell(command.c_str(), streams);
    output_ = std::move(pipe.readEnd);
}

Installer::~Installer() {
    if (!child_.IsStarted())
        return;
    // It may tidy up first.
    ::kill(-child_.Pid(), SIGTERM);
    pollfd end{output_.Get(), 0, 0};
    TimedPoll(&end, 1, kGoodbyeMilliseconds);
    ::kill(-child_.Pid(), SIGKILL);
}

bool Installer::ReadOutput() {
    char bytes[512];
    const ssize_t got = ::read(output_.Get(), bytes, sizeof(bytes));
    if (got < 0)
        return errno == EINTR || errno == EAGAIN;
    said_.append(bytes, static_cast<std::size_t>(got));
    if (said_.size() > kMostSaid)
        said_.erase(0, said_.size() - kMostSaid);
    return got > 0;
}

bool Installer::Finish(std::string& message) {
    while (!said_.empty() && said_.back() == '\n')
        said_.pop_back();
    message = said_.substr(said_.rfind('\n') + 1);
    if (message.starts_with(path_))
        message = "The downloaded installer is damaged.";
    return child_.Wait() != -1;
}

// "/tmp/0" and six letters, made empty and private; empty when that failed.
std::string MakeTemporaryName() {
    std::string name = "/tmp/0XXXXXX";
    const UniqueFd file(::mkostemp(name.data(), O_CLOEXEC));
    return file.IsOpen() ? name : "";
}

// made empty and private too
std::string InstallerPathFor(const std::string& temporaryName) {
    std::string path = temporaryName + ".tar.gz";
    // What bash is to run must be nobody else's, and not writable by others.
    const UniqueFd file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (file.IsOpen())
        return path;
    ::unlink(temporaryName.c_str());
    return "";
}

// Why the installer must not be run, as a sentence; empty when it may. The machine-wide settings
// may name a SHA-256 (section "ComponentSha256", key the component) that it must have.
std::string ProblemOf(const char* componentName, const std::string& path) {
    constexpr std::string_view kBlanks = " \t\r\n\xEF\xBB\xBF";  // and a byte order mark
    const UniqueFd file = OpenFileForReading(path.c_str());
    std::string content;
    if (!file.IsOpen() || !ReadWholeFile(file.Get(), kLargestBody, content))
        return "The downloaded installer cannot be read.";
    const std::size_t begin = content.find_first_not_of(kBlanks);
    if (begin != std::string::npos && content[begin] == '<')
        return "A web page came instead of the installer. "
               "Perhaps this network wants you to sign in first.";
    const std::string expected = ComponentSumSetting(componentName).Get();
    if (expected.empty())
        return "";
    const std::unique_ptr<char, decltype(&g_free)> sum(
        g_compute_checksum_for_data(
            G_CHECKSUM_SHA256, reinterpret_cast<const guchar*>(content.data()), content.size()),
        &g_free);
    return ::strcasecmp(sum.get(), expected.c_str()) == 0
               ? ""
               : "The downloaded component is not the one that this machine's settings name.";
}

// Connects to the first address that answers.
LProcessResult ProcessOpenHost(LProgress& progress, const char* host, LIPSocketTCP& socket) {
    std::vector<LIPAddressWithPort> addresses;
    LProcessResult result =
        ProcessResolve(progress, SplitHostPort(host, 80), kResolveMilliseconds, addresses);
    if (result != kProcessDone)
        return result;
    result = kProcessFailed;
    for (const LIPAddressWithPort& address : addresses) {
        result = ProcessConnect(progress, socket, address, kConnectMilliseconds);
        if (result != kProcessFailed)
            break;
    }
    return result;
}

// line holds kTextBufferSize bytes; what is longer is cut.
LProcessResult ProcessRecvLine(LProgress& progress, LIPSocketTCPRef socket, char* line) {
    LFixedLengthStringWriterTemplate<char> writer(line, kTextBufferSize);
    return ProcessRecvLineToWriter(progress, socket, writer, kLineMilliseconds);
}

// The header lines, to the empty one; failed when they do not tell the body's length.
LProcessResult ProcessRecvHeader(LProgress& progress, LIPSocketTCPRef socket,
                                 std::int64_t& length) {
    length = -1;
    char line[kTextBufferSize];
    for (int lines = 0; lines < kMostHeaderLines; ++lines) {
        const LProcessResult result = ProcessRecvLine(progress, socket, line);
        if (result != kProcessDone)
            return result;
        if (line[0] == '\0')
            return length >= 0 ? kProcessDone : kProcessFailed;
        if (!TakeContentLength(line, length))
            return kProcessFailed;
    }
    return kProcessFailed;
}

LProcessResult ProcessRecvBody(LProgress& progress, LIPSocketTCPRef socket, std::int64_t length,
                               BodyFile& file) {
    const double step = length > 0 ? kPieceBytes / static_cast<double>(length) : 0;
    double fraction = 0;
    char piece[kPieceBytes];
    while (length > 0) {
        const auto size = static_cast<unsigned int>(std::min<std::int64_t>(length, kPieceBytes));
        const LProcessResult result =
            ProcessRecvBytes(progress, socket, piece, size, kPieceMilliseconds);
        if (result != kProcessDone)
            return result;
        if (!file.Write(piece, size))
            return kProcessFailed;
        length -= size;
        fraction += step;
        if (progress.IsShown())
            progress.SetFraction(std::min(fraction, 1.0));
    }
    // Who sends more than the length that was told has told a wrong one: the script would be cut.
    const LProcessResult more = ProcessRecvBytes(progress, socket, piece, 1, kEndMilliseconds);
    if (more != kProcessFailed)
        return more == kProcessDone ? kProcessFailed : more;
    return file.Keep() ? kProcessDone : kProcessFailed;
}

}  // namespace

LProcessResult ProcessHTTPDownloadFile(LProgress& progress, const char* url,
                                       const char* outputPath) {
    constexpr std::string_view kScheme = "http://";
    char host[kTextBufferSize];
    char path[kTextBufferSize];
    ProcessHTTPSplitHost(std::string_view(url).starts_with(kScheme) ? url + kScheme.size() : url,
                         host, path);
    LIPSocketTCP socket;
    LProcessResult result = ProcessOpenHost(progress, host, socket);
    if (result != kProcessDone)
        return result;
    const std::string request =
        std::string("GET ") + path + " HTTP/1.0\r\nHost: " + host + "\r\n\r\n";
    result = ProcessSend(progress, socket, request.data(),
                         static_cast<unsigned int>(request.size()), kLineMilliseconds);
    char line[kTextBufferSize];
    if (result == kProcessDone)
        result = ProcessRecvLine(progress, socket, line);
    if (result != kProcessDone)
        return result;
    if (!IsGoodStatusLine(line))
        return kProcessFailed;
    BodyFile file(outputPath);
    if (!file.IsOpen())
        return kProcessFailed;
    std::int64_t length = 0;
    result = ProcessRecvHeader(progress, socket, length);
    return result == kProcessDone ? ProcessRecvBody(progress, socket, length, file) : result;
}

LProcessResult ProcessDownloadComponent(LProgress& progress, const char* host, const char* name,
                                        const std::string& temporaryName, std::string& message) {
    const std::string url = std::string("http://") + host + "/components/linux/" + name;
    const std::string path = InstallerPathFor(temporaryName);
    if (path.empty())
        return kProcessFailed;
    LProcessResult result = ProcessHTTPDownloadFile(progress, url.c_str(), path.c_str());
    if (result == kProcessDone) {
        message = ProblemOf(name, path);
        if (!message.empty())
            result = kProcessFailed;
    }
    if (result == kProcessDone) {
        Installer installer(path.c_str());
        if (!installer.IsStarted())
            result = kProcessFailed;
        while (result == kProcessDone) {
            result = ProcessWaitReadable(progress, LIPSocketTCPRef(installer.OutputFd()),
                                         kInstallerMilliseconds);
            if (result == kProcessDone && !installer.ReadOutput())
                break;
        }
        if (result == kProcessDone && !installer.Finish(message))
            result = kProcessFailed;
    }
    ::unlink(path.c_str());
    ::unlink(temporaryName.c_str());
    return result;
}

LProcessResult ProcessDownloadAndInstallComponent(LProgress& progress, const char* name,
                                                  std::string& message) {
    if (progress.IsShown()) {
        progress.SetFirstLabel("Download install-on-demand");
        progress.SetSecondLabel(name);
    }
    char path[kTextBufferSize];
    if (FindComponent(name, path))
        return kProcessDone;
    LProcessResult result = kProcessFailed;
    for (const std::string& host : {ComponentsHost(), WebHost()}) {
        const std::string temporaryName = MakeTemporaryName();
        if (temporaryName.empty())
            return kProcessFailed;
        result = ProcessDownloadComponent(progress, host.c_str(), name, temporaryName, message);
        if (result != kProcessFailed)
            break;
    }
    return result;
}

LProcessResult Process(LProgress& progress, LProcessGetComponentPath& request) {
    if (FindComponent(request.name, request.path))
        return kProcessDone;
    if (ProcessDownloadAndInstallComponent(progress, request.name, request.message) ==
        kProcessStopped)
        return kProcessStopped;
    return FindComponent(request.name, request.path) ? kProcessDone : kProcessFailed;
}
