#include "app/text/document_loading.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <mutex>
#include <utility>

#include "documents/chosen_rules.h"
#include "documents/growing_document.h"
#include "documents/web_address.h"
#include "foundation/files/path_text.h"
#include "foundation/threads/detached_thread.h"
#include "gui/windows/progress_dialog.h"

namespace {

// Most documents are there before this; a dialog would only flicker.
constexpr unsigned int kWithoutDialogMs = 300;
constexpr std::size_t kLongestAddressShown = 80;  // the dialog is as wide as its label

}  // namespace

// Shared by the window's thread and the worker, whichever lasts longer.
struct DocumentLoading {
    std::string path;
    bool isWholePage;
    std::atomic<bool> stop{false};
    LSignalObject news;  // more is there than was taken
    LSignalObject done;

    std::mutex mutex;  // guards what follows
    Document document;
    bool isAll = false;
};

namespace {

class LoadingThread final : public LDetachedThread {
public:
    LoadingThread(std::shared_ptr<DocumentLoading> loading, bool grows)
        : loading_(std::move(loading)), grows_(grows) {}

private:
    void ThreadFunction() override {
        DocumentRules rules = ChosenDocumentRules();
        rules.wholePage = loading_->isWholePage;
        const char* path = loading_->path.c_str();
        const auto isToStop = [this] { return loading_->stop || IsStopping(); };
        const auto take = [this](const Document& beginning) { Tell(beginning, false); };
        Tell(grows_ ? LoadGrowingDocument(path, isToStop, rules, take)
                    : LoadDocument(path, isToStop, rules),
             true);
        loading_->done.Signal();
    }
    void Tell(Document document, bool isAll) {
        const std::lock_guard lock(loading_->mutex);
        loading_->document = std::move(document);
        loading_->isAll = isAll;
        loading_->news.Signal();
    }

    std::shared_ptr<DocumentLoading> loading_;
    const bool grows_;
};

// What is waited for.
struct Waiting {
    const std::string& path;
    LSignalObjectRef signal;
};

LProcessResult Process(LProgress& progress, const Waiting& waiting) {
    std::string name = IsWebAddress(waiting.path) ? waiting.path : FileOfPath(waiting.path);
    if (name.size() > kLongestAddressShown && IsWebAddress(name))
        name = name.substr(0, kLongestAddressShown) + "...";
    progress.SetSecondLabel(name.c_str());
    return progress.ProcessWaitSignal(waiting.signal, std::numeric_limits<unsigned int>::max());
}

bool AwaitUnderDialog(GtkWidget* parent, const Waiting& waiting) {
    LProcessDialog<const Waiting> dialog("Loading Document", waiting);
    dialog.Open(parent);
    return dialog.Result() == kProcessDone;
}

// Null: cancelled.
std::shared_ptr<DocumentLoading> LoadUnderDialog(GtkWidget* parent, const char* path,
                                                 bool isWholePage, bool grows) {
    // Never destroyed: the program's end does not wait for a disk either.
    static auto& threads = *new LDetachedThreadsOwner;
    auto loading = std::make_shared<DocumentLoading>();
    loading->path = path;
    loading->isWholePage = isWholePage;
    (new LoadingThread(loading, grows))->StartDetached(threads, 0);
    if (!loading->news.Ref().WaitSignal(kWithoutDialogMs) &&
        !AwaitUnderDialog(parent, {loading->path, loading->news.Ref()})) {
        loading->stop = true;
        return nullptr;
    }
    return loading;
}

}  // namespace

std::optional<Document> LoadDocumentUnderDialog(GtkWidget* parent, const char* path,
                                                bool isWholePage) {
    const auto loading = LoadUnderDialog(parent, path, isWholePage, false);
    if (!loading)
        return std::nullopt;
    const std::lock_guard lock(loading->mutex);
    return std::move(loading->document);
}

std::optional<LoadedDocument> LoadBeginningUnderDialog(GtkWidget* parent, const char* path,
                                                       bool isWholePage) {
    const auto loading = LoadUnderDialog(parent, path, isWholePage, true);
    if (!loading)
        return std::nullopt;
    const std::lock_guard lock(loading->mutex);
    LoadedDocument loaded{loading->document, nullptr};
    loading->news.Reset();
    if (!loading->isAll)
        loaded.rest = std::make_unique<DocumentRest>(loading, loaded.document.text.size());
    return loaded;
}

DocumentRest::DocumentRest(std::shared_ptr<DocumentLoading> loading, std::size_t taken)
    : loading_(std::move(loading)), taken_(taken) {}

DocumentRest::~DocumentRest() {
    loading_->stop = true;
}

void DocumentRest::Follow(More more) {
    more_ = std::move(more);
    news_.Start(loading_->news.Ref(), [this] { Tell(); });
}

bool DocumentRest::Await(GtkWidget* parent) {
    news_.Stop();
    const bool isDone = loading_->done.Ref().IsSignaled() ||
                        AwaitUnderDialog(parent, {loading_->path, loading_->done.Ref()});
    Tell();
    return isDone;
}

// The last call may end this object.
void DocumentRest::Tell() {
    Document more;
    bool isAll = false;
    {
        const std::lock_guard lock(loading_->mutex);
        loading_->news.Reset();
        more = loading_->document;
        isAll = loading_->isAll;
    }
    if (!isAll)
        news_.Start(loading_->news.Ref(), [this] { Tell(); });
    const std::size_t taken = taken_;
    taken_ = std::max(taken, more.text.size());
    std::erase_if(more.pages, [taken](std::size_t page) { return page < taken; });
    for (std::size_t& page : more.pages)
        page -= taken;
    more.text.erase(0, taken);
    const More tell = more_;
    tell(more, isAll);
}

std::string NoteOn(const Document& document) {
    std::string note = document.remark;
    if (document.hasSurroundings)
        note += (note.empty() ? "" : " ") + std::to_string(document.surroundingWords) +
                " words around the article are left out; \"Whole Page\" brings them back.";
    return note;
}
