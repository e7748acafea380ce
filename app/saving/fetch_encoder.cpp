#include "app/saving/fetch_encoder.h"

#include <unistd.h>

#include <cstring>
#include <string>

#include "components/component_download.h"
#include "formats/mp3_component.h"
#include "foundation/files/file.h"
#include "gui/windows/message_box.h"
#include "gui/windows/progress_dialog.h"

bool FetchMp3Encoder(GtkWidget* parent) {
    LProcessGetComponentPath request;
    request.name = "mp3el";
    if (FindComponent(request.name, request.path)) {
        if (::access(request.path, X_OK) == 0)
            return true;
        // Left by an installer that was killed: as long as the folder stands, nothing is fetched.
        LFile::DeleteFolderAndFiles(
            std::string(request.path, std::strrchr(request.path, '/')).c_str());
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
