#include "playback/dialogs/play_device_list.h"

#include <algorithm>
#include <string>
#include <vector>

#include "gui/windows/message_box.h"
#include "playback/alsa_card.h"

namespace {

// Those that have a name. Their numbers have gaps where a card was pulled out.
std::vector<int> ListedCards() {
    std::vector<int> cards;
    for (int card = 0; card < kMaxCards; ++card)
        if (!CardName(card).empty())
            cards.push_back(card);
    return cards;
}

}  // namespace

void LSoundPlayDeviceInit(LWindow& dialog, int controlId, LSoundPlayDevice device) {
    dialog.PDLAddString(controlId, "Default Sound Device");
    const std::vector<int> cards = ListedCards();
    for (const int card : cards)
        dialog.PDLAddString(controlId, CardName(card).c_str());
    dialog.PDLAddString(controlId, LSoundPlayDevice::kServerLabel);
    const auto entry = std::ranges::find(cards, device.Card());
    dialog.PDLSetCurSel(controlId, device.IsSoundServer() ? dialog.PDLGetCount(controlId) - 1
                                   : entry == cards.end()
                                       ? 0
                                       : static_cast<int>(entry - cards.begin()) + 1);
}

LSoundPlayDevice LSoundPlayDeviceChosen(const LWindow& dialog, int controlId) {
    const int entry = dialog.PDLGetCurSel(controlId);
    if (entry == dialog.PDLGetCount(controlId) - 1)
        return LSoundPlayDevice::SoundServer();
    const std::vector<int> cards = ListedCards();
    const auto index = static_cast<std::size_t>(std::max(entry - 1, 0));
    return LSoundPlayDevice(entry > 0 && index < cards.size() ? cards[index] : 0);
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
