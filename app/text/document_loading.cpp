#include "app/text/document_loading.h"

#include <atomic>
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "foundation/files/path_text.h"
#include "foundation/threads/detached_thread.h"
#include "gui/windows/progress_dialog.h"

namespace {

// Most documents are there before this; a dialog would only flicker.
constexpr unsigned int kWithoutDialogMs = 300;

// Shared by the window's thread and the worker, whichever lasts longer.
struct Loading {
    std::string path;
    std::atomic<bool> stop{false};
    Document document;  // the worker's until done is signalled
    LSignalObject done;
};

class LoadingThread final : public LDetachedThread {
public:
    explicit LoadingThread(std::shared_ptr<Loading> loading) : loading_(std::move(loading)) {}

private:
    void ThreadFunction() override {
        // In the window, what surrounds an article is as easily passed over as missed.
        DocumentRules rules;
        rules.wholePage = true;
        loading_->document = LoadDocument(
            loading_->path.c_str(), [this] { return loading_->stop || IsStopping(); }, rules);
        loading_->done.Signal();
    }

    std::shared_ptr<Loading> loading_;
};

LProcessResult Process(LProgress& progress, const Loading& loading) {
    progress.SetSecondLabel(FileOfPath(loading.path).c_str());
    return progress.ProcessWaitSignal(loading.done.Ref(), std::numeric_limits<unsigned int>::max());
}

}  // namespace

std::optional<Document> LoadDocumentUnderDialog(GtkWidget* parent, const char* path) {
    // Never destroyed: the program's end does not wait for a disk either.
    static auto& threads = *new LDetachedThreadsOwner;
    auto loading = std::make_shared<Loading>();
    loading->path = path;
    (new LoadingThread(loading))->StartDetached(threads, 0);
    if (!loading->done.Ref().WaitSignal(kWithoutDialogMs)) {
        LProcessDialog<const Loading> dialog("Loading Document", *loading);
        dialog.Open(parent);
        if (dialog.Result() != kProcessDone) {
            loading->stop = true;
            return std::nullopt;
        }
    }
    return std::move(loading->document);
}
