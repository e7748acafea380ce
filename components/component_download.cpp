#include "components/component_download.h"

#include <fcntl.h>
#include <glib.h>
#include <signal.h>
#include <strings.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

#include "components/component_sums.h"
#include "components/http_download.h"
#include "components/settings_keys.h"
#include "formats/mp3_component.h"
#include "foundation/files/file_io.h"
#include "foundation/files/unique_fd.h"
#include "foundation/network/tcp_steps.h"
#include "foundation/processes/child_process.h"
#include "foundation/settings/host_defaults.h"
#include "foundation/settings/hosts.h"
#include "foundation/threads/timed_poll.h"

namespace {

constexpr int kInstallerMilliseconds = 120000;  // without a word of it
constexpr int kGoodbyeMilliseconds = 1000;
constexpr std::size_t kMostSaid = 4096;

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

// The SHA-256 that the installer must have: what the machine's settings name, else, from the hosts
// that Lectora was built for, that of our own. Empty: any.
std::string ExpectedSum(const std::string& component, std::string_view host) {
    const std::string set = ComponentSumSetting(component.c_str()).Get();
    const bool isOurHost = host == kDefaultComponentsHost || host == kDefaultWebHost;
    return set.empty() && isOurHost && component == "mp3el" ? kMp3InstallerSum : set;
}

// Why the installer must not be run, as a sentence; empty when it may.
std::string ProblemOf(const std::string& expected, const std::string& path) {
    constexpr std::string_view kBlanks = " \t\r\n\xEF\xBB\xBF";  // and a byte order mark
    const UniqueFd file = OpenFileForReading(path.c_str());
    std::string content;
    if (!file.IsOpen() || !ReadWholeFile(file.Get(), kLargestDownload, content))
        return "The downloaded installer cannot be read.";
    const std::size_t begin = content.find_first_not_of(kBlanks);
    if (begin != std::string::npos && content[begin] == '<')
        return "A web page came instead of the installer. "
               "Perhaps this network wants you to sign in first.";
    if (expected.empty())
        return "";
    const std::unique_ptr<char, decltype(&g_free)> sum(
        g_compute_checksum_for_data(
            G_CHECKSUM_SHA256, reinterpret_cast<const guchar*>(content.data()), content.size()),
        &g_free);
    return ::strcasecmp(sum.get(), expected.c_str()) == 0
               ? ""
               : "The downloaded component is not the one that Lectora or this machine's settings "
                 "name.";
}

}  // namespace

LProcessResult ProcessDownloadComponent(LProgress& progress, const char* host, const char* name,
                                        const std::string& temporaryName, std::string& message) {
    const std::string url = std::string("http://") + host + "/components/linux/" + name;
    const std::string path = InstallerPathFor(temporaryName);
    if (path.empty())
        return kProcessFailed;
    LProcessResult result = ProcessHTTPDownloadFile(progress, url.c_str(), path.c_str());
    if (result == kProcessDone) {
        message = ProblemOf(ExpectedSum(name, host), path);
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
        if (IsReservedHost(host))
            continue;
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
