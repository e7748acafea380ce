// The controls that choose the start on login.
#include "desktop/dialogs/start_on_login_controls.h"

#include <gtest/gtest.h>

#include "desktop/start_on_login.h"
#include "tests/gui/gui_fixtures.h"
#include "tests/support/scratch_folder.h"

namespace {

constexpr int kCheck = 101;
constexpr int kList = 102;

TEST(StartOnLoginControls, ShowAndKeepTheChoice) {
    const ScratchFolder root;  // a machine without accounts
    const ScopedVariable rootVariable("LECTORA_ROOT", root.Path().c_str());
    RecordingDialog dialog;
    dialog.Show([](LDialogGenContext& context) {
        context.AddCheckBox(kCheck, "Start");
        context.AddPullDownList(kList);
    });
    LAutoRunSettingsInit(dialog, kCheck, kList);
    EXPECT_EQ(dialog.PDLGetItem(kList, 0), "Start when any user logs on.");
    EXPECT_EQ(dialog.PDLGetItem(kList, 1), "Start when this user logs on only.");
    for (const bool isOn : {true, false}) {
        dialog.SetCheck(kCheck, isOn);
        dialog.PDLSetCurSel(kList, isOn ? 1 : 0);
        EXPECT_TRUE(LAutoRunSettingsApply(dialog, kCheck, kList));
        EXPECT_EQ(LAutoRun::IsRunUser(), isOn);
        dialog.SetCheck(kCheck, !isOn);
        dialog.PDLSetCurSel(kList, 0);
        LAutoRunSettingsInit(dialog, kCheck, kList);
        EXPECT_EQ(dialog.GetCheck(kCheck), isOn);
        EXPECT_EQ(dialog.PDLGetCurSel(kList), 1) << "switched off, the mode is left as it was";
    }
}

}  // namespace
