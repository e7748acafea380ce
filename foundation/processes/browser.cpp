#include "foundation/processes/browser.h"

#include <cstdio>
#include <cstdlib>

#include "foundation/files/text_buffer.h"
#include "foundation/processes/child_process.h"

namespace {

// The address stands between double quotes in the command: what the shell would still read there is
// written as the address syntax has it.
std::string WithoutShellCharacters(const std::string& address) {
    std::string safe;
    for (const char character : address) {
        const auto byte = static_cast<unsigned char>(character);
        const bool plain = byte > 0x20 && byte != 0x7F && byte != '"' && byte != '$' &&
                           byte != '`' && byte != '\\';
        if (plain) {
            safe += character;
        } else {
            char escaped[4];
            std::snprintf(escaped, sizeof escaped, "%%%02X", byte);
            safe += escaped;
        }
    }
    return safe;
}

const char* DesktopsOwn() {
    return std::getenv("KDE_FULL_SESSION") != nullptr ? "kfmclient" : "gnome-open";
}

}  // namespace

bool HasBrowser() {
    return IsProgramInstalled(DesktopsOwn()) || IsProgramInstalled("xdg-open");
}

std::string BrowserCommand(const std::string& address) {
    const bool inKde = std::getenv("KDE_FULL_SESSION") != nullptr;
    const std::string quoted = " \"" + WithoutShellCharacters(address) + "\"";
    std::string command;
    if (IsProgramInstalled(DesktopsOwn()))
        command = (inKde ? "kfmclient exec" : "gnome-open") + quoted;
    else
        command = "xdg-open" + quoted;
    // The command text ends at 259 characters: cut there it has lost its closing quote and cannot
    // run.
    return command.size() < kTextBufferSize ? command : std::string();
}

bool OpenInBrowser(const std::string& address) {
    const std::string command = BrowserCommand(address);
    return !command.empty() && StartShellCommand(command.c_str());
}
