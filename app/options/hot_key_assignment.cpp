#include "app/options/hot_key_assignment.h"

#include <strings.h>

#include <algorithm>
#include <string>
#include <vector>

#include "app/options/key_change_dialog.h"
#include "gui/accessible.h"
#include "gui/windows/dialog_gen_context.h"
#include "gui/windows/message_box.h"

namespace {

constexpr int kCommandList = 101;
constexpr int kKeyText = 103;
constexpr int kChangeKey = 105;
constexpr int kAssignmentWidth = 420;

constexpr const char* kNoKeyYet = "Click \"Change Key\" to assign key";

}  // namespace

void DlgGenHotKeyAssignmentDlg(LDialogGenContext& context) {
    context.SetWidth(kAssignmentWidth);
    context.AddPullDownList(kCommandList, "Command");
    context.AddInput(kKeyText, "HotKey Assigned:");
    context.AddButton(kChangeKey, "Change &Key");
    context.AddOkCancelHelp(kOkCancelHelp);
}

bool HotKeyAssignmentDlgImp::Run(GtkWidget* parent) {
    return Open(parent, {"Hot-Key Assignment", false, DlgGenHotKeyAssignmentDlg}, true);
}

void HotKeyAssignmentDlgImp::InitDialog() {
    for (int command = 0; command < kHotKeyCommands; ++command)
        PDLAddString(kCommandList, HotKeyCommandLabel(command));
    const bool isKnown = hotKey_.command >= 0 && hotKey_.command < kHotKeyCommands;
    PDLSetCurSel(kCommandList, isKnown ? hotKey_.command : kHotKeyUpdate);
    SetTextEditable(kKeyText, false);
    SetText(kKeyText, hotKey_.id < 0 ? kNoKeyYet : LKeyGetDescription(key_).c_str());
}

void HotKeyAssignmentDlgImp::Command(int command) {
    if (command == kChangeKey && LKeyChangeDialog(Widget(), key_)) {
        SetText(kKeyText, LKeyGetDescription(key_).c_str());
        TellScreenReader(Widget(), GetText(kKeyText).c_str());
    }
}

bool HotKeyAssignmentDlgImp::CmOk() {
    if (strcasecmp(GetText(kKeyText).c_str(), kNoKeyYet) == 0) {
        SetControlInvalid(kKeyText, "Please click here to assign the hot-key.", "Hot-key Required");
        return false;
    }
    const std::vector<StoredHotKey> others = LoadHotKeys();
    const auto same = std::ranges::find_if(others, [this](const StoredHotKey& each) {
        return each.key == key_ && each.id != hotKey_.id;
    });
    if (same != others.end()) {
        const std::string text = LKeyGetDescription(key_) + " is already the hotkey of \"" +
                                 HotKeyCommandLabel(same->command) +
                                 "\". Please choose another one.";
        SetControlInvalid(kKeyText, text.c_str(), "Hot-key in Use");
        return false;
    }
    hotKey_.command = PDLGetCurSel(kCommandList);
    hotKey_.key = key_;
    if (StoreHotKey(hotKey_))
        return true;
    MessageBoxRun(Widget(), GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora",
                  "The hotkey could not be kept.",
                  "Your settings folder cannot be written, or holds too many hotkeys already.");
    return false;
}
