#include "app/text/document_loading.h"

#include <atomic>
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "documents/chosen_rules.h"
#include "documents/web_address.h"
#include "foundation/files/path_text.h"
#include "foundation/threads/detached_thread.h"
#include "gui/windows/progress_dialog.h"

namespace {

// Most documents are there before this; a dialog would only flicker.
constexpr unsigned int kWithoutDialogMs = 300;
constexpr std::size_t kLongestAddressShown = 80;  // the dialog is as wide as its label

// Shared by the window's thread and the worker, whichever lasts longer.
struct Loading {
    std::string path;
    bool isWholePage;
    std::atomic<bool> stop{false};
    Document document;  // the worker's until done is signalled
    LSignalObject done;
};

class LoadingThread final : public LDetachedThread {
public:
    explicit LoadingThread(std::shared_ptr<Loading> loading) : loading_(std::move(loading)) {}

private:
    void ThreadFunction() override {
        DocumentRules rules = ChosenDocumentRules();
        rules.wholePage = loading_->isWholePage;
        loading_->document = LoadDocument(
            loading_->path.c_str(), [this] { return loading_->stop || IsStopping(); }, rules);
        loading_->done.Signal();
    }

    std::shared_ptr<Loading> loading_;
};

LProcessResult Process(LProgress& progress, const Loading& loading) {
    std::string name = IsWebAddress(loading.path) ? loading.path : FileOfPath(loading.path);
    if (name.size() > kLongestAddressShown && IsWebAddress(name))
        name = name.substr(0, kLongestAddressShown) + "...";
    progress.SetSecondLabel(name.c_str());
    return progress.ProcessWaitSignal(loading.done.Ref(), std::numeric_limits<unsigned int>::max());
}

}  // namespace

std::optional<Document> LoadDocumentUnderDialog(GtkWidget* parent, const char* path,
                                                bool isWholePage) {
    // Never destroyed: the program's end does not wait for a disk either.
    static auto& threads = *new LDetachedThreadsOwner;
    auto loading = std::make_shared<Loading>();
    loading->path = path;
    loading->isWholePage = isWholePage;
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

std::string NoteOn(const Document& document) {
    std::string note = document.remark;
    if (document.hasSurroundings)
        note += (note.empty() ? "" : " ") + std::to_string(document.surroundingWords) +
                " words around the article are left out; \"Whole Page\" brings them back.";
    return note;
}
