#include "app/queue/queue_dialog.h"

#include <algorithm>
#include <utility>

#include "gui/windows/dialog_gen_context.h"

namespace {

constexpr int kFileList = 101;
constexpr int kSooner = 103;
constexpr int kLater = 104;
constexpr int kRemoveFile = 105;
constexpr int kRemoveAll = 106;
constexpr int kReadFileNow = 107;
constexpr int kQueueWidth = 460;
constexpr LRows kQueueHeight{8};

void DlgGenQueue(LDialogGenContext& context) {
    context.SetWidth(kQueueWidth);
    context.AddList(kFileList, kQueueHeight, "Waiting Files");
    context.StartHBox();
    context.AddButton(kSooner, "&Up");
    context.AddButton(kLater, "&Down");
    context.AddButton(kRemoveFile, "Re&move");
    context.AddButton(kRemoveAll, "Remove &All");
    context.EndHBox();
    context.AddOkCancelHelp(kOkCancelHelp, "&Read Now");
}

}  // namespace

QueueDialog::QueueDialog(ReadingQueue& queue,
                         std::function<std::string(const std::string&)> withProgress)
    : queue_(queue), withProgress_(std::move(withProgress)) {
    SetHelpPage("reading");
}

std::optional<int> QueueDialog::Run(GtkWidget* parent) {
    const bool reads = Open(parent, {"Waiting Files", false, DlgGenQueue}, true);
    changes_.End();
    return reads ? chosen_ : std::nullopt;
}

void QueueDialog::InitDialog() {
    static constexpr LListColumn kColumns[] = {{"File", 0}};
    LVInit(kFileList, {LListColumns::kDynamic, kColumns});
    HandleLVSelChange(kFileList);
    HandleLVDoubleClick(kFileList, kReadFileNow);
    changes_.Begin(queue_.Changes(), [this](const auto&) {
        if (IsOpen())
            Fill();
    });
    Fill();
}

// What was chosen stays so; of one that has gone the file in its place.
void QueueDialog::Fill() {
    const auto isChosen = [this](const ReadingQueue::File& file) { return file.id == chosen_; };
    auto row = std::ranges::find_if(shown_, isChosen) - shown_.begin();
    shown_ = queue_.Files();
    if (const auto now = std::ranges::find_if(shown_, isChosen); now != shown_.end())
        row = now - shown_.begin();
    else if (!chosen_)
        row = 0;
    LVClear(kFileList);
    for (const ReadingQueue::File& file : shown_)
        LVAddString(kFileList, withProgress_(file.path).c_str());
    const auto last = static_cast<std::ptrdiff_t>(shown_.size()) - 1;
    if (last >= 0)
        LVSetCurSel(kFileList, static_cast<int>(std::min(row, last)));
    EnableControls();
}

void QueueDialog::EnableControls() {
    const int row = LVGetFirstSel(kFileList);
    const auto index = static_cast<std::size_t>(std::max(row, 0));
    chosen_ = row >= 0 && index < shown_.size() ? std::optional(shown_[index].id) : std::nullopt;
    EnableMove(kSooner, row > 0);
    EnableMove(kLater, chosen_ && index + 1 < shown_.size());
    EnableControl(kRemoveFile, chosen_.has_value());
    EnableControl(kRemoveAll, chosen_.has_value());
}

// A move that has come to its end stays under the keyboard: on the control beside it one press more
// would undo what was done, or read the file.
void QueueDialog::EnableMove(int button, bool isPossible) {
    EnableControl(button, isPossible || gtk_widget_is_focus(GetControlByID(button)));
}

void QueueDialog::Move(int steps) {
    if (!queue_.Move(*chosen_, steps))
        gtk_widget_error_bell(Widget());
}

void QueueDialog::Command(int command) {
    if (!chosen_)
        return;
    if (command == kReadFileNow)
        DoOKButton();
    else if (command == kSooner)
        Move(-1);
    else if (command == kLater)
        Move(1);
    else if (command == kRemoveFile)
        queue_.Remove(*chosen_);
    else if (command == kRemoveAll)
        queue_.Clear();
}
