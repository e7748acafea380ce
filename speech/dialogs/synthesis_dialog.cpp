#include "speech/dialogs/synthesis_dialog.h"

#include <string>

#include "gui/windows/message_box.h"
#include "gui/windows/progress_dialog.h"

bool ProcessDialogRun(GtkWidget* parent, LTTS& request) {
    constexpr const char* kTitle = "Synthesize Voice";
    LProcessDialog<LTTS> dialog(kTitle, request);
    dialog.Open(parent);
    if (dialog.Result() == kProcessDone)
        return true;
    const std::string message = SynthesisMessage(request.outcome, VoiceAt(request.voice));
    if (!message.empty())
        MessageBoxRun(parent, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, kTitle, message.c_str(), nullptr);
    return false;
}
