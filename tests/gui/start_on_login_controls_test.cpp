// The controls that choose the start on login.
#include "desktop/dialogs/start_on_login_controls.h"

#include <gtest/gtest.h>

#include "desktop/start_on_login.h"
#include "tests/gui/gui_fixtures.h"
#include "tests/support/accounts.h"
#include "tests/support/scratch_folder.h"

namespace {

constexpr int kLoginCheck = 101;
constexpr int kLoginList = 102;

TEST(StartOnLoginControls, ShowAndKeepTheChoice) {
    const ScratchFolder root;
    const ScopedVariable rootVariable("LECTORA_ROOT", root.Path().c_str());
    const ScopedVariable name("USERNAME", "ada");
    const Accounts accounts(root, {"ada"});
    for (const char* folder : {"home/ada/.config", "usr/share/applications/desktop"})
        std::filesystem::create_directories(root / folder);
    root.Write("usr/share/applications/desktop/lectora.desktop", "[Desktop Entry]\n");
    accounts.OwnTheirHomes();
    RecordingDialog dialog;
    dialog.Show([](LDialogGenContext& context) {
        context.AddCheckBox(kLoginCheck, "Start");
        context.AddPullDownList(kLoginList);
    });
    LAutoRunSettingsInit(dialog, kLoginCheck, kLoginList);
    EXPECT_EQ(dialog.PDLGetItem(kLoginList, 0), "Start when any user logs on.");
    EXPECT_EQ(dialog.PDLGetItem(kLoginList, 1), "Start when this user logs on only.");
    for (const bool isOn : {true, false}) {
        dialog.SetCheck(kLoginCheck, isOn);
        dialog.PDLSetCurSel(kLoginList, isOn ? 1 : 0);
        EXPECT_TRUE(LAutoRunSettingsApply(dialog, kLoginCheck, kLoginList));
        EXPECT_EQ(LAutoRun::IsRunUser(), isOn);
        dialog.SetCheck(kLoginCheck, !isOn);
        dialog.PDLSetCurSel(kLoginList, 0);
        LAutoRunSettingsInit(dialog, kLoginCheck, kLoginList);
        EXPECT_EQ(dialog.GetCheck(kLoginCheck), isOn);
        EXPECT_EQ(dialog.PDLGetCurSel(kLoginList), 1) << "switched off, the mode is left as it was";
    }
}

}  // namespace
