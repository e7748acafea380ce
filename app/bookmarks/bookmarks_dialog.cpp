#include "app/bookmarks/bookmarks_dialog.h"

#include <glib.h>

#include <algorithm>
#include <utility>

#include "gui/accessible.h"
#include "gui/windows/dialog_gen_context.h"
#include "gui/windows/message_box.h"

namespace {

constexpr int kBookmarkList = 101;
constexpr int kRenameBookmark = 103;
constexpr int kRemoveBookmark = 104;
constexpr int kBookmarkName = 105;
constexpr int kGoToBookmark = 107;
constexpr int kBookmarksWidth = 420;
constexpr LRows kBookmarksHeight{8};

void DlgGenBookmarks(LDialogGenContext& context) {
    context.SetWidth(kBookmarksWidth);
    context.AddList(kBookmarkList, kBookmarksHeight, "Bookmarks");
    context.StartHBox();
    context.AddButton(kRenameBookmark, "&Rename...");
    context.AddButton(kRemoveBookmark, "Re&move");
    context.EndHBox();
    context.AddOkCancelHelp(kOkCancelHelp, "&Go There");
}

void DlgGenBookmarkName(LDialogGenContext& context) {
    context.AddInput(kBookmarkName, "&Name:", kBookmarksWidth / 2);
    context.AddStatic(-1, "Left empty, the bookmark is called by its sentence.");
    context.AddOkCancelHelp(kOkButton | kCancelButton);
}

class BookmarkNameDialog final : public LDialog {
public:
    explicit BookmarkNameDialog(std::string& name) : name_(name) {}
    bool Run(GtkWidget* parent) {
        return Open(parent, {"Rename Bookmark", false, DlgGenBookmarkName}, true);
    }
    void InitDialog() override { SetText(kBookmarkName, name_.c_str()); }
    bool CmOk() override {
        name_ = GetText(kBookmarkName);
        return true;
    }

private:
    std::string& name_;
};

}  // namespace

BookmarksDialog::BookmarksDialog(std::string key, std::string text)
    : key_(std::move(key)), text_(std::move(text)), digest_(KeyOfText(text_)) {
    SetHelpPage("reading");
}

std::optional<Bookmark> BookmarksDialog::Run(GtkWidget* parent) {
    const bool goes = Open(parent, {"Bookmarks", false, DlgGenBookmarks}, true);
    return goes && chosen_ ? std::optional(shown_[*chosen_]) : std::nullopt;
}

void BookmarksDialog::InitDialog() {
    static constexpr LListColumn kColumns[] = {{"Bookmark", 0}, {"Where", 0}};
    LVInit(kBookmarkList, {LListColumns::kDynamic, kColumns});
    HandleLVSelChange(kBookmarkList);
    HandleLVDoubleClick(kBookmarkList, kGoToBookmark);
    Fill(0);
}

std::string BookmarksDialog::WhereOf(const Bookmark& bookmark) const {
    const auto place = FindPlace(bookmark.at, text_, digest_);
    if (!place)
        return "not in the text now";
    KeptPlace now = bookmark.at;
    now.place = *place;
    now.size = text_.size();
    return std::to_string(now.Percent()) + " %";
}

void BookmarksDialog::Fill(std::size_t selected) {
    LVClear(kBookmarkList);
    shown_ = kept_.Of(key_);
    for (const Bookmark& bookmark : shown_)
        LVAddRow(kBookmarkList, {bookmark.Title().c_str(), WhereOf(bookmark).c_str()});
    if (!shown_.empty())
        LVSetCurSel(kBookmarkList, static_cast<int>(std::min(selected, shown_.size() - 1)));
    EnableControls();
}

void BookmarksDialog::EnableControls() {
    const int row = LVGetFirstSel(kBookmarkList);
    chosen_ = row >= 0 ? std::optional(static_cast<std::size_t>(row)) : std::nullopt;
    EnableControl(kRenameBookmark, chosen_.has_value());
    EnableControl(kRemoveBookmark, chosen_.has_value());
}

void BookmarksDialog::Command(int command) {
    if (command == kGoToBookmark)
        DoOKButton();
    else if (command == kRenameBookmark && chosen_)
        Rename(*chosen_);
    else if (command == kRemoveBookmark && chosen_)
        Remove(*chosen_);
}

void BookmarksDialog::Rename(std::size_t index) {
    Bookmark renamed = shown_[index];
    renamed.name = renamed.Title();
    if (!BookmarkNameDialog(renamed.name).Run(Widget()))
        return;
    TellTrouble(kept_.Set(std::move(renamed)));
    Fill(index);
}

void BookmarksDialog::Remove(std::size_t index) {
    TellTrouble(kept_.Remove(shown_[index]));
    TellScreenReader(Widget(), "Removed");
    Fill(index);
}

void BookmarksDialog::TellTrouble(int error) {
    if (error != 0)
        MessageBoxRun(Widget(), GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora",
                      "The bookmarks could not be kept.", g_strerror(error));
}
