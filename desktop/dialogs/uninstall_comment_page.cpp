#include "desktop/dialogs/uninstall_comment_page.h"

#include "desktop/uninstall_report.h"
#include "foundation/settings/hosts.h"
#include "gui/accessible.h"
#include "gui/widgets/hyper_link.h"
#include "gui/windows/dialog_gen_context.h"
#include "gui/windows/progress_dialog.h"

namespace {

constexpr int kSilent = 110;
constexpr int kSend = 111;
constexpr int kReasons = 112;
constexpr int kComment = 113;
constexpr int kPrompt = 114;
constexpr int kReasonAdvice = 115;
constexpr int kLink = 116;
constexpr int kReasonChosen = 1001;

void UninstallPage2(LDialogGenContext& context) {
    AddPageText(context, kPageText,
                "Please let us know why you are uninstalling. This is sent to our server "
                "anonymously and is used to help us make the product better.");
    AddPageText(context, -1,
                "A full list of our products can be found at our below website. This may help you "
                "to find another product that is more suitable for your needs.");
    context.AddRadioButtonGroup(kSilent, "No, I don't want to tell you");
    context.AddRadioButton(kSend, "Yes, send these comments to developers");
    context.AddPullDownList(kReasons);
    context.AddStaticLeft(kPrompt, "");
    context.AddSpanRight(gtk_label_new(nullptr), -1);
    AddPageText(context, kReasonAdvice, "");
    context.AddEdit(kComment, "", LRows{3});
    context.AddHyperLink(kLink, "", "");
}

// What is shown for this item of the list, whose item 0 is the invitation to choose one.
const LUninstallComment* ShownReason(int item) {
    return item > 0 ? &gUninstallComments[item - 1] : nullptr;
}

// The report under a progress dialog.
struct Report {
    std::string body;
};
LProcessResult Process(LProgress& progress, Report& report) {
    ProcessUninstallReport(progress, report.body);
    return kProcessDone;
}

}  // namespace

LDialog::OpenGenData LUninstallCommentPage::GenData() {
    return {"Send Uninstall Comments", false, UninstallPage2};
}

void LUninstallCommentPage::InitDialog() {
    SetCheck(keepsSilent_ ? kSilent : kSend, true);
    PDLAddString(kReasons, "[Click to select reason]");
    for (const LUninstallComment* reason = gUninstallComments; reason->key; ++reason)
        PDLAddString(kReasons, reason->choice);
    SetAccessibleName(GetControlByID(kReasons), "Reason");
    LabelWidget(GetControlByID(kPrompt), GetControlByID(kComment));
    PDLSetCurSel(kReasons, 0);
    HandlePDLSelChange(kReasons, kReasonChosen);
    EditPromptSet(kComment, "[Type any comments here]");
    ShowReason(0);
}

void LUninstallCommentPage::Command(int command) {
    if (command == kReasonChosen)
        ShowReason(PDLGetCurSel(kReasons));
}

void LUninstallCommentPage::ShowReason(int item) {
    const LUninstallComment* reason = ShownReason(item);
    const bool hasAdvice = reason != nullptr && reason->advice != nullptr;
    const bool mayComment = !hasAdvice;
    const std::string link = WebAddress(hasAdvice ? reason->link : "");
    SetHyperLink(GetControlByID(kLink), link.c_str(), link.c_str());
    SetStaticText(kReasonAdvice, hasAdvice ? reason->advice : "");
    const char* prompt = reason && reason->prompt ? reason->prompt : "";
    SetStaticText(kPrompt, prompt);
    SetAccessibleName(GetControlByID(kComment), *prompt ? prompt : "Comment");
    ShowControl(kComment, mayComment);
    ShowControl(kPrompt, mayComment);
    ShowControl(kReasonAdvice, hasAdvice);
    ShowControl(kLink, HasWebSite() && (hasAdvice || !reason));  // without one the home page
}

void LUninstallCommentPage::EnableControls() {
    Wizard().EnableFinish(GetCheck(kSilent) || PDLGetCurSel(kReasons) > 0);
    EnableControl(kReasons, !GetCheck(kSilent));
    EnableControl(kComment, !GetCheck(kSilent));
}

bool LUninstallCommentPage::CmOk() {
    if (GetCheck(kSilent))
        return true;
    Report report{UninstallReportBody(PDLGetCurSel(kReasons), GetEditText(kComment))};
    if (!report.body.empty())
        LProcessDialog<Report>("Sending Your Comments", report).Open(Widget());
    return true;
}
