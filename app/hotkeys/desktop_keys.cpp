#include "app/hotkeys/desktop_keys.h"

#include <gtk/gtk.h>

#include <cstdlib>

#include "app/control/shortcut_portal.h"
#include "app/control/verb.h"

namespace {

bool IsForKeys(const VerbFacts& verb) {
    return verb.verb != Verb::kReadFile && verb.verb != Verb::kStatus;
}

std::string ShellCommandOf(const VerbFacts& verb) {
    return std::string("lectora ") + verb.word;
}

}  // namespace

bool IsWaylandSession() {
    if (const char* type = std::getenv("XDG_SESSION_TYPE"); type != nullptr && *type != '\0')
        return std::string(type) == "wayland";
    return std::getenv("WAYLAND_DISPLAY") != nullptr;
}

bool HotKeysReachEveryProgram() {
    return !IsWaylandSession() || ShortcutPortal::GivesKeys();
}

std::string DesktopKeyHints() {
    std::string lines;
    for (const VerbFacts& verb : AllVerbs()) {
        if (IsForKeys(verb))
            lines += (lines.empty() ? "" : "\n") + ShellCommandOf(verb) + ": " + verb.does;
    }
    return lines;
}

void CopyDesktopKeyCommands() {
    GtkClipboard* clipboard = gtk_clipboard_get(GDK_SELECTION_CLIPBOARD);
    std::string commands;
    for (const VerbFacts& verb : AllVerbs()) {
        if (IsForKeys(verb))
            commands += ShellCommandOf(verb) + "\n";
    }
    gtk_clipboard_set_text(clipboard, commands.data(), static_cast<gint>(commands.size()));
    gtk_clipboard_set_can_store(clipboard, nullptr, 0);  // also once the program has ended
}
