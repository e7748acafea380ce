#include "desktop/dialogs/uninstall_wizard.h"

#include "desktop/dialogs/uninstall_comment_page.h"
#include "gui/windows/dialog_gen_context.h"
#include "gui/windows/message_box.h"

namespace {

constexpr const char* kUninstallTitle = "Uninstall Software";
constexpr int kMachineSettings = 101;
constexpr int kUsersData = 102;

void UninstallPage1(LDialogGenContext& context) {
    AddPageText(context, kPageText,
                "This removes Lectora from this computer: the program, its commands, its menu "
                "entries, and its start on login for every user. Your texts and your sound files "
                "stay.\n\nPlease end Lectora before you go on, for every user who runs it.");
    context.AddCheckBox(kMachineSettings,
                        "Also remove the settings that Lectora keeps for all users");
    context.AddCheckBox(kUsersData, "Also remove every user's own settings, logs and last speech");
}

class ChoicePage : public LWizardPage {
public:
    explicit ChoicePage(RemovalChoice& choice) : choice_(choice) {}

private:
    bool CmOk() override {
        choice_ = {GetCheck(kMachineSettings), GetCheck(kUsersData)};
        return true;
    }
    RemovalChoice& choice_;
};

}  // namespace

bool RunUninstallWizard(LWizard& wizard, RemovalChoice& choice) {
    ChoicePage page(choice);
    LUninstallCommentPage comment(false);
    wizard.AddPage(page, {"Remove Lectora", false, UninstallPage1});
    wizard.AddPage(comment, LUninstallCommentPage::GenData());
    return wizard.Open(nullptr, kUninstallTitle);
}

void LUninstallWindowTalk::TellTrouble(const std::string& trouble) {
    MessageBoxRun(window_, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, kUninstallTitle,
                  "Lectora was not removed", trouble.c_str());
}
