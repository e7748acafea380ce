#include "app/saving/fetch_encoder.h"

#include <unistd.h>

#include <cstdio>
#include <string>

#include "components/component_download.h"
#include "formats/mp3_component.h"
#include "gui/windows/message_box.h"
#include "gui/windows/progress_dialog.h"

namespace {

// Left by an installer that was killed: as long as the folder stands, nothing is fetched. What else
// is in it is kept beside it.
void SetAside(const std::string& program) {
    ::unlink(program.c_str());
    const std::string folder = program.substr(0, program.rfind('/'));
    constexpr int kTries = 100;
    for (int number = 1; ::rmdir(folder.c_str()) != 0 && number <= kTries; ++number)
        if (const std::string kept = folder + ".kept" + std::to_string(number);
            ::access(kept.c_str(), F_OK) != 0 && ::rename(folder.c_str(), kept.c_str()) == 0)
            return;
}

}  // namespace

bool FetchMp3Encoder(GtkWidget* parent) {
    LProcessGetComponentPath request;
    request.name = "mp3el";
    if (FindComponent(request.name, request.path)) {
        if (::access(request.path, X_OK) == 0)
            return true;
        SetAside(request.path);
    }
    LProcessDialog<LProcessGetComponentPath> dialog("Install-on-Demand", request);
    dialog.Open(parent);
    if (dialog.Result() == kProcessFailed) {
        if (!request.message.empty())
            request.message += "\n\n";
        MessageBoxRun(parent, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Install-on-Demand",
                      "Saving as MP3 needs an encoder, which could not be installed.",
                      (request.message +
                       "Please see that this computer is connected to the internet and has the "
                       "program LAME (package \"lame\"), then save again. WAV files need nothing.")
                          .c_str());
    }
    return dialog.Result() == kProcessDone;
}
