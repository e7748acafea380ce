#include "playback/dialogs/play_device_list.h"

#include <algorithm>
#include <string>

#include "gui/windows/message_box.h"
#include "playback/alsa_card.h"

void LSoundPlayDeviceInit(LWindow& dialog, int controlId, LSoundPlayDevice device) {
    dialog.PDLAddString(controlId, "Default Sound Device");
    for (int card = 0; card < kMaxCards; ++card)
        if (const std::string name = CardName(card); !name.empty())
            dialog.PDLAddString(controlId, name.c_str());
    dialog.PDLAddString(controlId, LSoundPlayDevice::kServerLabel);
    dialog.PDLSetCurSel(
        controlId, device.IsSoundServer() ? dialog.PDLGetCount(controlId) - 1 : device.Card() + 1);
}

LSoundPlayDevice LSoundPlayDeviceChosen(const LWindow& dialog, int controlId) {
    const int entry = dialog.PDLGetCurSel(controlId);
    return entry == dialog.PDLGetCount(controlId) - 1 ? LSoundPlayDevice::SoundServer()
                                                      : LSoundPlayDevice(std::max(entry - 1, 0));
}

void LSoundPlayDeviceApply(LWindow&, int, LSoundPlayDevice) {}

void LSoundPlayDeviceTell(GtkWidget* parent, LSoundPlayDevice device, MixerResult result) {
    if (result != MixerResult::kCannotOpen)
        return;
    const std::string name = device.IsSoundServer() ? kSoundServer : CardName(device.Card());
    const std::string text = "Lectora could not open " + name +
                             ". Check to see if another application is using your sound device.";
    MessageBoxRun(parent, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora", text.c_str(), nullptr);
}
