#include "app/options/hot_keys_page.h"

#include <algorithm>
#include <string>

#include "app/hotkeys/desktop_keys.h"
#include "app/hotkeys/hot_key_handler.h"
#include "app/options/hot_key_assignment.h"
#include "gui/accessible.h"
#include "gui/windows/dialog_gen_context.h"
#include "gui/windows/message_box.h"

namespace {

constexpr int kList = 108;
constexpr int kAdd = 109;
constexpr int kChange = 110;
constexpr int kRemove = 111;
constexpr int kDesktopKeys = 112;
constexpr int kCopyCommands = 113;
constexpr LRows kListHeight{4};

constexpr const char* kGroup = "System Wide HotKeys";

std::string KeyText(LKeyCode key) {
    const std::string text = LKeyGetDescription(key);
    return text.empty() ? "Unknown key" : text;
}

// Why the key does nothing, or nothing to tell.
const char* StateText(LKeyCode key) {
    switch (TestHotKey(key)) {
        case HotKeyState::kHeldByAnotherProgram:
            return "Held by another program";
        case HotKeyState::kNotOnKeyboard:
            return "Not on this keyboard";
        default:
            if (!CanBeHotKey(key))
                return "Needs Ctrl, Alt or Super";
            return HotKeysReachEveryProgram() ? "" : "Arrives from some programs";
    }
}

}  // namespace

void DlgGenHotkeysDlg(LDialogGenContext& context) {
    context.AddGroup(-1, kGroup);
    context.AddList(kList, kListHeight);
    context.StartHBox();
    context.AddButton(kAdd, "&Add...");
    context.AddButton(kChange, "Chan&ge...");
    context.AddButton(kRemove, "&Remove...");
    context.EndHBox();
    if (!HotKeysReachEveryProgram()) {
        const std::string note =
            "In this session (Wayland) these keys arrive only from some programs.\n"
            "In the keyboard settings of your desktop, let keys start these commands:\n\n" +
            DesktopKeyHints();
        context.AddStatic(kDesktopKeys, note.c_str());
        context.AddButton(kCopyCommands, "&Copy Commands");
    }
    context.GroupEnd();
}

void HotkeysDlgImp::InitDialog() {
    static constexpr LListColumn kColumns[] = {{"Key", 0}, {"Command", 0}, {"Problem", 0}};
    LVInit(kList, {LListColumns::kDynamic, kColumns});
    SetAccessibleName(GetControlByID(kList), kGroup);
    HandleLVSelChange(kList);
    HandleLVDoubleClick(kList, kChange);
    FillList(-1);
}

// Selects the hotkey with that id, else the first, so that the keyboard finds a row.
void HotkeysDlgImp::FillList(int selectedId) {
    LVClear(kList);
    int selectedRow = 0;
    for (const StoredHotKey& hotKey : LoadHotKeys()) {
        const int row = LVAddRow(kList,
                                 {KeyText(hotKey.key).c_str(), HotKeyCommandLabel(hotKey.command),
                                  StateText(hotKey.key)},
                                 hotKey.id);
        if (hotKey.id == selectedId)
            selectedRow = row;
    }
    LVSetCurSel(kList, selectedRow);
    EnableControls();
}

void HotkeysDlgImp::EnableControls() {
    const bool hasSelection = LVGetFirstSel(kList) >= 0;
    EnableControl(kChange, hasSelection);
    EnableControl(kRemove, hasSelection);
}

void HotkeysDlgImp::Command(int command) {
    const int row = LVGetFirstSel(kList);
    if (command == kAdd)
        Add();
    else if (command == kChange && row >= 0)
        Change(LVGetItemData(kList, row));
    else if (command == kRemove && row >= 0)
        Remove(LVGetItemData(kList, row));
    else if (command == kCopyCommands)
        CopyCommands();
}

void HotkeysDlgImp::CopyCommands() {
    CopyDesktopKeyCommands();
    BubbleTipRun(kCopyCommands, "Copied", "The commands are on the clipboard.");
}

void HotkeysDlgImp::Add() {
    StoredHotKey hotKey;
    if (HotKeyAssignmentDlgImp(hotKey).Run(Widget()))
        FillList(hotKey.id);
}

void HotkeysDlgImp::Change(int id) {
    std::vector<StoredHotKey> hotKeys = LoadHotKeys();
    const auto found =
        std::ranges::find_if(hotKeys, [id](const StoredHotKey& each) { return each.id == id; });
    if (found != hotKeys.end() && HotKeyAssignmentDlgImp(*found).Run(Widget()))
        FillList(id);
}

void HotkeysDlgImp::Remove(int id) {
    constexpr const char* kQuestion = "Confirms Delete";
    if (MessageBoxRun(Widget(), GTK_MESSAGE_QUESTION, GTK_BUTTONS_YES_NO, kQuestion, kQuestion,
                      "Are you sure you want to delete?") != GTK_RESPONSE_YES)
        return;
    if (!RemoveHotKey(id))
        MessageBoxRun(Widget(), GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora",
                      "The hotkey could not be removed.",
                      "Your settings folder cannot be written.");
    FillList(-1);
}
