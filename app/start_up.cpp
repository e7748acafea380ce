#include "app/start_up.h"

#include <glib.h>
#include <gtk/gtk.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "app/machine_check.h"
#include "app/main_dialog.h"
#include "app/orderly_end.h"
#include "app/run_once.h"
#include "desktop/dialogs/install_wizard.h"
#include "desktop/dialogs/uninstall_wizard.h"
#include "desktop/install_console.h"
#include "desktop/user_accounts.h"
#include "foundation/child_process.h"
#include "foundation/crash_handler.h"
#include "foundation/file.h"
#include "foundation/machine_root.h"
#include "foundation/text_buffer.h"
#include "gui/accessible.h"
#include "gui/message_box.h"

int gargc = 0;
char** gargv = nullptr;

namespace {

void GLIBLogFunc(const gchar*, GLogLevelFlags, const gchar*, gpointer) {}

void SilenceLibraries() {
    // "Glib" is not the library's own domain name, so its messages keep going to standard error.
    const char* const domains[] = {nullptr, "Glib", "ALSA", "Gtk", "Gdk"};
    for (const char* domain : domains)
        g_log_set_handler(domain, static_cast<GLogLevelFlags>(255), GLIBLogFunc, nullptr);
}

// With what screen readers need, which a session knows only from its next login on after it was
// installed. Sessions without a bus have no screen reader, and NO_AT_BRIDGE refuses it.
void InitToolkit() {
    constexpr const char* kModules = "GTK_MODULES";
    const char* before = std::getenv(kModules);
    const std::string modules = before != nullptr ? before : "";
    const bool adds = modules.find("atk-bridge") == std::string::npos &&
                      std::getenv("DBUS_SESSION_BUS_ADDRESS") != nullptr &&
                      std::getenv("NO_AT_BRIDGE") == nullptr;
    if (adds)
        ::setenv(kModules, (modules + (modules.empty() ? "" : ":") + "gail:atk-bridge").c_str(), 1);
    // A module that is not installed is no news to the user.
    const guint quiet = g_log_set_handler("Gtk", G_LOG_LEVEL_MESSAGE, GLIBLogFunc, nullptr);
    gtk_init(&gargc, &gargv);
    g_log_remove_handler("Gtk", quiet);
    if (adds && before != nullptr)
        ::setenv(kModules, modules.c_str(), 1);
    else if (adds)
        ::unsetenv(kModules);
}

constexpr const char* kInstall = "-install";
constexpr const char* kUninstall = "-uninstall";
constexpr const char* kCheck = "-check";

bool IsFirst(const char* word, int count, const char* const* arguments) {
    return count > 1 && std::strcmp(arguments[1], word) == 0;
}

struct HandOverTarget {
    RunOnceSocket& socket;
    MainDialog& window;
};

struct HandedOver {
    MainDialog& window;
    std::vector<std::string> arguments;
};

gboolean RunHandedOver(gpointer user) {
    auto* handed = static_cast<HandedOver*>(user);
    std::vector<char*> pointers;
    for (std::string& argument : handed->arguments)
        pointers.push_back(argument.data());
    const int count = static_cast<int>(pointers.size());
    for (const char* word : {kInstall, kUninstall}) {
        if (IsFirst(word, count, pointers.data())) {
            MessageBoxRun(handed->window.Widget(), GTK_MESSAGE_INFO, GTK_BUTTONS_OK, "Lectora",
                          "Lectora is running",
                          "Please end it first: choose \"Exit (Turn Off)\" in its first menu. "
                          "Then start the installation or removal again.");
            return FALSE;
        }
    }
    if (IsFirst(kCheck, count, pointers.data())) {
        RunMachineCheck(handed->window.Widget());
        handed->window.EnableControls();  // there may be new voices
        return FALSE;
    }
    handed->window.EvRunArguments(pointers.data(), count);
    // Also when EvRunArguments did so: a start without arguments always brings the window back.
    if (count < 2)
        handed->window.CmOpen();
    return FALSE;
}

void DeleteHandedOver(gpointer user) {
    delete static_cast<HandedOver*>(user);
}

// GUI thread, inside the main loop. The arguments run from a callback of their own: a watch is not
// called again while its callback runs, and reading a file takes as long as the engine does.
gboolean GSRunOnceServerCallback(GIOChannel*, GIOCondition, gpointer user) {
    auto* target = static_cast<HandOverTarget*>(user);
    std::vector<std::string> arguments;
    // A negative count ends listening for the rest of the run; later starts then run by themselves.
    if (!target->socket.Receive(arguments)) {
        target->socket.Close();
        return FALSE;
    }
    gdk_threads_add_idle_full(G_PRIORITY_DEFAULT_IDLE, RunHandedOver,
                              new HandedOver{target->window, std::move(arguments)},
                              DeleteHandedOver);
    return TRUE;
}

int RunFirstInstance(RunOnceSocket& socket) {
    MainDialog window;
    if (socket.ListeningFd() < 0) {
        window.Run();
        gdk_threads_leave();
        return 0;
    }
    HandOverTarget target{socket, window};
    GIOChannel* channel = g_io_channel_unix_new(socket.ListeningFd());
    g_io_add_watch(channel, G_IO_IN, GSRunOnceServerCallback, &target);
    window.Run();
    gdk_threads_leave();
    g_source_remove_by_user_data(&target);
    g_io_channel_unref(channel);  // does not close the descriptor, which is the socket's
    // Before the window goes, so that nobody hands over to an instance that no longer listens.
    socket.Close();
    return 0;
}

// A damaged installer, run as a program of that name, ends without a word: whoever started it finds
// nothing installed and fetches it again. The box is made, never shown.
void MakeCorruptInstallBox() {
    GtkWidget* box = gtk_message_dialog_new(nullptr, GTK_DIALOG_MODAL, GTK_MESSAGE_ERROR,
                                            GTK_BUTTONS_OK, "Install Error");
    gtk_window_set_title(GTK_WINDOW(box), "Lectora");
    gtk_message_dialog_format_secondary_text(
        GTK_MESSAGE_DIALOG(box),
        "Installation file corrupt.\n\nA checksum error was detected in your install file, please "
        "redownload file and install again.");
    g_signal_connect(box, "response", G_CALLBACK(gtk_widget_destroy), nullptr);
}

void UninstallInWindow() {
    if (!LIsUserRoot()) {
        std::fputs("Please remove Lectora as root: sudo lectora -uninstall\n", stderr);
        return;
    }
    RemovalChoice choice;
    LWizard wizard;
    if (!RunUninstallWizard(wizard, choice))
        return;
    LUninstallWindowTalk talk(choice, wizard.Window());
    if (UninstallDialog::Uninstall(talk))
        MessageBoxRun(wizard.Window(), GTK_MESSAGE_INFO, GTK_BUTTONS_OK, "Uninstall Complete",
                      (UninstallDialog::CompleteText() + ".").c_str(), nullptr);
}

bool IsNamedSetup(const char* program) {
    char name[kTextBufferSize];
    LFile::_GetFileFromPath(name, program);
    return std::strstr(name, "setup") != nullptr;
}

int RunProgram(int argc, char** argv) {
    gargc = argc;
    gargv = argv;
    if (std::getenv("DISPLAY") == nullptr) {
        if (argc < 2) {
            std::puts("You must have a display manager running to use this program.");
            return -1;
        }
        if (IsFirst(kInstall, argc, argv))
            return RunInstallConsole() ? 0 : 1;
        if (IsFirst(kUninstall, argc, argv)) {
            RunUninstallConsole();
            return 0;
        }
    }
    gdk_threads_init();
    InitToolkit();
    gdk_threads_enter();
    SilenceLibraries();
    // All its words are English, in whatever language the toolkit's own are.
    gtk_widget_set_default_direction(GTK_TEXT_DIR_LTR);
    TellFocusToLateScreenReader();
    if (std::getenv("HOME") == nullptr) {
        std::fputs("Lectora cannot start: the environment variable HOME is not set.\n", stderr);
        return 1;
    }
    RunOnceSocket socket;
    const RunOnceSocket::Claim claim =
        socket.ClaimPath(RunOnceSocket::DefaultPath(), ArgumentsForHandOver(gargc, gargv));
    if (claim == RunOnceSocket::Claim::kHandedOver)
        return 0;
    if (claim == RunOnceSocket::Claim::kBusy) {
        std::fputs("Lectora is running but does not answer; please try again.\n", stderr);
        return 1;
    }
    if (IsFirst(kInstall, gargc, gargv)) {
        if (RunInstallWizard()) {
            socket.Close();  // or the new one would hand over to this one
            StartShellCommand(MachinePath("/usr/bin/lectora").c_str());
        }
        return 0;
    }
    if (IsFirst(kUninstall, gargc, gargv)) {
        UninstallInWindow();
        return 0;
    }
    if (IsFirst(kCheck, gargc, gargv)) {
        RunMachineCheck(nullptr);
        return 0;
    }
    if (gargc > 0 && IsNamedSetup(gargv[0])) {
        MakeCorruptInstallBox();
        return 0;
    }
    return RunFirstInstance(socket);
}

}  // namespace

int RunLectora(int argc, char** argv) {
    LDebugBlockSignals();
    OrderlyEnd end;
    const int status = RunProgram(argc, argv);
    end.EndProcess();
    return status;
}
