#include "app/reading/kept_queue.h"

#include <glib.h>

#include <utility>

#include "app/reading/kept_fields.h"
#include "foundation/files/private_file.h"
#include "foundation/owned_text.h"

namespace {

constexpr const char* kQueueFile = "waiting-files";
constexpr unsigned int kQueueKeepMilliseconds = 300;  // several changes are often one act
constexpr std::size_t kMostPathBytes = 900000;        // of all, within what is read again

// From wherever the next run is started.
std::string PathFromAnywhere(const std::string& path) {
    if (path.find("://") != std::string::npos)
        return path;
    return OwnedText(g_canonicalize_filename(path.c_str(), nullptr)).get();
}

}  // namespace

void KeptQueue::Begin(const std::function<QueuedText::Begun(const std::string& path)>& begin) {
    if (listener_.mayKeep())
        for (const std::string& path : ReadKeptFields(kQueueFile))
            if (!path.empty() && queue_.Length() < kMost)
                queue_.AddAside({.begin = [begin, path] { return begin(path); }, .path = path});
    changes_.Begin(queue_.Changes(), [this](const auto&) {
        soon_.Start(kQueueKeepMilliseconds, [this] { Keep(); });
    });
}

void KeptQueue::End() {
    changes_.End();
    if (soon_.IsRunning())
        Keep();
    soon_.Stop();
}

void KeptQueue::Keep() {
    if (!listener_.mayKeep()) {
        ForgetKeptQueue();
        return;
    }
    std::vector<std::string> paths;
    std::size_t bytes = 0;
    const std::vector<ReadingQueue::File> files = queue_.Files();
    for (const ReadingQueue::File& file : files) {
        std::string path = PathFromAnywhere(file.path);
        bytes += path.size() + 1;
        if (paths.size() == kMost || bytes > kMostPathBytes)
            break;
        paths.push_back(std::move(path));
    }
    const int error = WriteKeptFields(kQueueFile, paths);
    std::string told;
    if (error != 0)
        told = std::string("The files that wait cannot be kept for the next start: ") +
               g_strerror(error) + ".";
    else if (paths.size() < files.size())
        told = "Of the " + std::to_string(files.size()) + " files that wait only the first " +
               std::to_string(paths.size()) + " are kept for the next start.";
    if (!told.empty() && !std::exchange(isTold_, true))
        listener_.tell(told.c_str());
}

void ForgetKeptQueue() {
    RemovePrivateFile(kQueueFile);
}
