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
#include <cstring>
#include <memory>

#include "formats/file_io.h"
#include "formats/settings_keys.h"
#include "foundation/file_mask.h"
#include "foundation/flock_timed.h"
#include "foundation/timed_poll.h"

namespace component {

namespace {

constexpr int kLockMilliseconds = 200;
constexpr int kGoodbyeMilliseconds = 1000;
constexpr std::size_t kMostSaid = 4096;

}  // namespace

// Never through a link that somebody else may have put there.
BodyFile::BodyFile(const char* path)
    : path_(path),
      file_(::open(path, O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY,
                   CreationMode(path, 0666))) {
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

bool IsGoodStatusLine(const char* line) {
    constexpr std::size_t kNumberAt = 9;
    if (::strncasecmp(line, "HTTP", 4) != 0 || std::strlen(line) < kNumberAt)
        return false;
    const int status = std::atoi(line + kNumberAt);
    return status >= 200 && status <= 399;
}

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

std::string MakeTemporaryName() {
    std::string name = "/tmp/0XXXXXX";
    const UniqueFd file(::mkostemp(name.data(), O_CLOEXEC));
    return file.IsOpen() ? name : "";
}

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

}  // namespace component
