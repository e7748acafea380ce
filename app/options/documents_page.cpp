#include "app/options/documents_page.h"

#include "app/options/keep_change.h"
#include "documents/chosen_rules.h"
#include "gui/windows/dialog_gen_context.h"
#include "gui/windows/message_box.h"
#include "speech/speech_pieces.h"

namespace {

constexpr int kFirstChoice = 101;

constexpr struct {
    const char* label;
    const UserSetting<bool>& setting;
} kSkipped[] = {
    {"&Marks that point to notes and sources, like [1]", kSkipMarksSetting},
    {"&Lines above and below every page, and page numbers", kSkipPageHeadsSetting},
    {"&Footnotes and endnotes", kSkipNotesSetting},
    {"Listings of &programs", kSkipCodeSetting},
    {"&Captions of pictures and tables", kSkipCaptionsSetting},
    {"Of web addresses all but the &site, \"example.org\"", kSkipAddressesSetting},
};

}  // namespace

void DlgGenDocumentsPage(LDialogGenContext& context) {
    context.AddGroup(-1, "Left Out When Reading");
    int id = kFirstChoice;
    for (const auto& skipped : kSkipped)
        context.AddCheckBox(id++, skipped.label);
    context.AddStatic(-1, "Of a document that is open already, once it is opened again.");
    context.GroupEnd();
}

void DocumentsPage::InitDialog() {
    static_assert(std::size(kSkipped) == kChoices);
    for (std::size_t i = 0; i < kChoices; ++i) {
        shown_[i] = kSkipped[i].setting.Get();
        SetCheck(kFirstChoice + static_cast<int>(i), shown_[i]);
    }
}

bool DocumentsPage::CmOk() {
    bool isKept = true;
    for (std::size_t i = 0; i < kChoices; ++i)
        isKept = KeepChange(kSkipped[i].setting, shown_[i],
                            GetCheck(kFirstChoice + static_cast<int>(i))) &&
                 isKept;
    if (!isKept)
        MessageBoxRun(Widget(), GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora",
                      "Your options could not be kept.", kFolderNotWritten);
    return isKept;
}
