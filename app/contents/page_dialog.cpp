#include "app/contents/page_dialog.h"

#include <algorithm>
#include <string>

#include "gui/windows/dialog_gen_context.h"

namespace {

constexpr int kPage = 101;
constexpr int kPageCount = 103;

void DlgGenPage(LDialogGenContext& context) {
    context.AddInputUpDown(kPage, "&Page:");
    context.AddStatic(kPageCount, "");
    context.AddOkCancelHelp(kOkCancelHelp, "&Go There");
}

}  // namespace

PageDialog::PageDialog(std::size_t now, std::size_t count) : page_(now), count_(count) {
    SetHelpPage("reading");
}

bool PageDialog::Run(GtkWidget* parent) {
    return Open(parent, {"Go to Page", false, DlgGenPage}, true);
}

void PageDialog::InitDialog() {
    UDInit(kPage, 1, static_cast<int>(count_), static_cast<int>(page_));
    SetStaticText(kPageCount, ("The document has " + std::to_string(count_) + " pages.").c_str());
    SetTextSelectionAll(kPage);
}

bool PageDialog::CmOk() {
    page_ = std::min(static_cast<std::size_t>(std::max(UDGetInt(kPage), 1)), count_);
    return true;
}
