// Fetching an optional program from the maker's servers: an installer is downloaded over HTTP and
// run by bash, under a progress object that shows it and can stop it. Whatever ends the run early,
// nothing of the download is left.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "formats/mp3_component.h"
#include "foundation/child_process.h"
#include "foundation/hosts.h"
#include "foundation/resolve.h"
#include "foundation/tcp_steps.h"
#include "foundation/text_buffer.h"
#include "foundation/unique_fd.h"

namespace component {

constexpr unsigned int kResolveMilliseconds = 12000;
constexpr int kConnectMilliseconds = 12000;
constexpr int kLineMilliseconds = 10000;
constexpr int kPieceMilliseconds = 7500;
constexpr int kEndMilliseconds = 1000;          // for the peer to close
constexpr int kInstallerMilliseconds = 120000;  // without a word of it
constexpr unsigned int kPieceBytes = 1028;
constexpr int kMostHeaderLines = 500;
constexpr std::int64_t kLargestBody = std::int64_t{256} << 20;

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

bool IsGoodStatusLine(const char* line);  // HTTP, 200 to 399
// From a header line that is "Content-Length: " and a number; others leave it alone. False when the
// number is none, or no installer has that size.
bool TakeContentLength(const char* line, std::int64_t& length);

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

// "/tmp/0" and six letters, made empty and private; empty when that failed.
std::string MakeTemporaryName();
std::string InstallerPathFor(const std::string& temporaryName);  // made empty and private too
// Why the installer must not be run, as a sentence; empty when it may. The machine-wide settings
// may name a SHA-256 (section "ComponentSha256", key the component) that it must have.
std::string ProblemOf(const char* componentName, const std::string& path);

}  // namespace component

namespace component {

// Connects to the first address that answers.
template <LProgress P>
LProcessResult ProcessOpenHost(P& progress, const char* host, LIPSocketTCP& socket) {
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
template <LProgress P>
LProcessResult ProcessRecvLine(P& progress, LIPSocketTCPRef socket, char* line) {
    LFixedLengthStringWriterTemplate<char> writer(line, kTextBufferSize);
    return ProcessRecvLineToWriter(progress, socket, writer, kLineMilliseconds);
}

// The header lines, to the empty one; failed when they do not tell the body's length.
template <LProgress P>
LProcessResult ProcessRecvHeader(P& progress, LIPSocketTCPRef socket, std::int64_t& length) {
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

template <LProgress P>
LProcessResult ProcessRecvBody(P& progress, LIPSocketTCPRef socket, std::int64_t length,
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

}  // namespace component

// url is "http://HOST[:PORT]/PATH". A 3xx answer counts as success and is not followed: its body is
// what is taken for the file. An answer that does not tell its length fails, since half an
// installer would look whole.
template <LProgress P>
LProcessResult ProcessHTTPDownloadFile(P& progress, const char* url, const char* outputPath) {
    using namespace component;
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

// message: what the installer said last, as a sentence for the user.
template <LProgress P>
LProcessResult ProcessDownloadComponent(P& progress, const char* host, const char* name,
                                        const std::string& temporaryName, std::string& message) {
    using namespace component;
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

template <LProgress P>
LProcessResult ProcessDownloadAndInstallComponent(P& progress, const char* name,
                                                  std::string& message) {
    using namespace component;
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

// For a progress dialog titled "Install-on-Demand".
struct LProcessGetComponentPath {
    const char* name = "";            // of the component; borrowed
    char path[kTextBufferSize] = "";  // its program, when done
    std::string message;  // otherwise what the installer said last, which may be nothing
};

template <LProgress P>
LProcessResult Process(P& progress, LProcessGetComponentPath& request) {
    if (FindComponent(request.name, request.path))
        return kProcessDone;
    if (ProcessDownloadAndInstallComponent(progress, request.name, request.message) ==
        kProcessStopped)
        return kProcessStopped;
    return FindComponent(request.name, request.path) ? kProcessDone : kProcessFailed;
}
