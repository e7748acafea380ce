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
    const auto generate = [](LDialogGenContext& context) {
        context.AddCheckBox(kCheck, "Start");
        context.AddPullDownList(kList);
    };
    for (const StartOnLoginPage& page : {StartOnLoginPage{true, 1}, StartOnLoginPage{false, 0}}) {
        RecordingDialog dialog;
        dialog.Show(generate);
        LAutoRunSettingsInit(dialog, kCheck, kList);
        EXPECT_EQ(dialog.PDLGetItem(kList, 0), "Start when any user logs on.");
        EXPECT_EQ(dialog.PDLGetItem(kList, 1), "Start when this user logs on only.");
        dialog.SetCheck(kCheck, page.isOn);
        dialog.PDLSetCurSel(kList, page.mode);
        EXPECT_TRUE(LAutoRunSettingsApply(dialog, kCheck, kList));
        EXPECT_EQ(LAutoRun::IsRunUser(), page.isOn);

        RecordingDialog next;
        next.Show(generate);
        LAutoRunSettingsInit(next, kCheck, kList);
        EXPECT_EQ(next.GetCheck(kCheck), page.isOn);
        EXPECT_EQ(next.PDLGetCurSel(kList), 1) << "switched off, the mode is left as it was";
    }
}

}  // namespace
