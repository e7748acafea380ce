#include "components/http_download.h"

#include <fcntl.h>
#include <strings.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "formats/file_io.h"
#include "foundation/files/flock_timed.h"
#include "foundation/files/text_buffer.h"
#include "foundation/files/unique_fd.h"
#include "foundation/network/resolve.h"
#include "foundation/network/tcp_steps.h"

namespace {

constexpr unsigned int kResolveMilliseconds = 12000;
constexpr int kConnectMilliseconds = 12000;
constexpr int kLineMilliseconds = 10000;
constexpr int kPieceMilliseconds = 7500;
constexpr int kEndMilliseconds = 1000;  // for the peer to close
constexpr unsigned int kPieceBytes = 1028;
constexpr int kMostHeaderLines = 500;
constexpr int kLockMilliseconds = 200;

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

// Never through a link that somebody else may have put there.
BodyFile::BodyFile(const char* path)
    : path_(path),
      file_(::open(path, O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0666)) {
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
    return error == std::errc() && at == end && length >= 0 && length <= kLargestDownload;
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
