#include "app/start/start_up.h"

#include <glib.h>
#include <gtk/gtk.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "app/help/machine_check.h"
#include "app/main_dialog.h"
#include "app/process_arguments.h"
#include "app/settings_keys.h"
#include "app/start/command_line.h"
#include "app/start/orderly_end.h"
#include "app/start/run_once.h"
#include "app/start/verb_start.h"
#include "desktop/dialogs/install_wizard.h"
#include "desktop/dialogs/uninstall_wizard.h"
#include "desktop/install_console.h"
#include "desktop/user_accounts.h"
#include "formats/whole_file.h"
#include "foundation/crash/crash_handler.h"
#include "foundation/files/file.h"
#include "foundation/files/machine_root.h"
#include "foundation/files/standard_streams.h"
#include "foundation/files/text_buffer.h"
#include "foundation/processes/child_process.h"
#include "gui/accessible.h"
#include "gui/windows/message_box.h"
#include "gui/x_connection.h"

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
bool InitToolkit() {
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
    const bool isThere = gtk_init_check(&gargc, &gargv) != FALSE;
    g_log_remove_handler("Gtk", quiet);
    if (adds && before != nullptr)
        ::setenv(kModules, modules.c_str(), 1);
    else if (adds)
        ::unsetenv(kModules);
    if (isThere)
        LDebugShutDownOnFault(XConnectionSocket());
    return isThere;
}

constexpr const char* kNoDisplay = "You must have a display manager running to use this program.";
constexpr const char* kInstall = "-install";
constexpr const char* kUninstall = "-uninstall";
constexpr const char* kCheck = "-check";

bool IsFirst(const char* word, int count, const char* const* arguments) {
    return count > 1 && std::strcmp(arguments[1], word) == 0;
}

// What second starts have handed over, until the main loop gets to it.
struct HandOverTarget {
    RunOnceSocket& socket;
    MainDialog& window;
    SpooledInputs inputs{};
    std::deque<HandedOver> waiting{};
};

void DoVerb(MainDialog& window, const VerbFacts& verb, const std::string& operand,
            HandedOver asked) {
    asked.Promise();
    const auto asker = std::make_shared<HandedOver>(std::move(asked));
    const auto reply = std::make_shared<VerbReply>(
        [asker](bool isDone, const std::string& text) { asker->Answer(isDone, text); });
    window.Control().Do(verb.verb, operand, reply);
}

gboolean RunHandedOver(gpointer user) {
    auto* target = static_cast<HandOverTarget*>(user);
    HandedOver handed = std::move(target->waiting.front());
    target->waiting.pop_front();
    std::vector<std::string> arguments = std::move(handed.arguments);
    target->inputs.Note(arguments);
    MainDialog& window = target->window;
    if (const VerbFacts* verb = arguments.size() > 1 ? FindVerb(arguments[1]) : nullptr) {
        DoVerb(window, *verb, arguments.size() > 2 ? arguments[2] : "", std::move(handed));
        return FALSE;
    }
    handed.connection.Reset();  // its start ends now
    std::vector<char*> pointers(arguments.size());
    std::transform(arguments.begin(), arguments.end(), pointers.begin(),
                   [](std::string& argument) { return argument.data(); });
    const int count = static_cast<int>(pointers.size());
    for (const char* word : {kInstall, kUninstall}) {
        if (IsFirst(word, count, pointers.data())) {
            MessageBoxRun(window.Widget(), GTK_MESSAGE_INFO, GTK_BUTTONS_OK, "Lectora",
                          "Lectora is running",
                          "Please end it first: choose \"Exit (Turn Off)\" in its first menu. "
                          "Then start the installation or removal again.");
            return FALSE;
        }
    }
    if (IsFirst(kCheck, count, pointers.data())) {
        RunMachineCheck(window.Widget());
        window.EnableControls();  // there may be new voices
        return FALSE;
    }
    window.EvRunArguments(pointers.data(), count);
    // Also when EvRunArguments did so: a start without arguments always brings the window back.
    if (count < 2)
        window.CmOpen();
    return FALSE;
}

// GUI thread, inside the main loop. The arguments run from a callback of their own: a watch is not
// called again while its callback runs, and reading a file takes as long as the engine does.
gboolean GSRunOnceServerCallback(GIOChannel*, GIOCondition, gpointer user) {
    auto* target = static_cast<HandOverTarget*>(user);
    HandedOver handed;
    // A negative count ends listening for the rest of the run; later starts then run by themselves.
    if (!target->socket.Receive(handed)) {
        target->socket.Close();
        return FALSE;
    }
    if (!handed.arguments.empty()) {
        target->waiting.push_back(std::move(handed));
        gdk_threads_add_idle(RunHandedOver, target);
    }
    return TRUE;
}

// Beside the start, because the folder may be slow to read.
void RemoveWhatAKilledSaveLeft() {
    const std::string folder = kSaveFolderSetting.Get();
    if (!folder.empty())
        std::thread([folder] { RemoveUnfinishedFiles(folder); }).detach();
}

int RunFirstInstance(RunOnceSocket& socket) {
    MainDialog window;
    if (socket.ListeningFd() < 0) {
        SpooledInputs inputs;
        inputs.Note({gargv, gargv + gargc});
        window.Run();
        gdk_threads_leave();
        return 0;
    }
    RemoveWhatAKilledSaveLeft();
    HandOverTarget target{socket, window};
    target.inputs.Note({gargv, gargv + gargc});
    GIOChannel* channel = g_io_channel_unix_new(socket.ListeningFd());
    g_io_add_watch(channel, G_IO_IN, GSRunOnceServerCallback, &target);
    window.Run();
    gdk_threads_leave();
    while (g_source_remove_by_user_data(&target) != FALSE) {
    }
    g_io_channel_unref(channel);  // does not close the descriptor, which is the socket's
    // Whoever comes while this ends waits until everything is kept and closed, and then takes over.
    for (HandedOver& handed : target.waiting)
        handed.Refuse();
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

void TellBusy(int process) {
    std::string text =
        "Please wait a moment and try again. If it still does not answer, end it by logging out";
    text += process > 0 ? ", or by the command: kill -9 " + std::to_string(process) : ".";
    std::fputs("lectora: Lectora is running but does not answer.\n", stderr);
    MessageBoxRun(nullptr, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora",
                  "Lectora is running but does not answer", text.c_str());
}

bool IsNamedSetup(const char* program) {
    char name[kTextBufferSize];
    LFile::_GetFileFromPath(name, program);
    return std::strstr(name, "setup") != nullptr;
}

// The one that the first argument asks for, else the window.
int RunFirst(RunOnceSocket& socket) {
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

int RunProgram(int argc, char** argv) {
    gargc = argc;
    gargv = argv;
    if (const std::optional<int> status = AnswerOnTerminal(argc, argv))
        return *status;
    std::vector<std::string> commandLine;
    if (const std::optional<int> status = AnswerByRunning(argc, argv, commandLine))
        return *status;
    if (std::getenv("DISPLAY") == nullptr) {
        if (argc < 2) {
            std::puts(kNoDisplay);
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
    if (!InitToolkit()) {
        std::puts(kNoDisplay);
        return -1;
    }
    gdk_threads_enter();
    SilenceLibraries();
    // All its words are English, in whatever language the toolkit's own are.
    gtk_widget_set_default_direction(GTK_TEXT_DIR_LTR);
    TellFocusToLateScreenReader();
    if (std::getenv("HOME") == nullptr) {
        std::fputs("Lectora cannot start: the environment variable HOME is not set.\n", stderr);
        return 1;
    }
    if (commandLine.empty())
        commandLine = TakeCommandLine(gargc, gargv);
    if (commandLine.empty() && gargc > 0)
        return 2;
    std::vector<char*> pointers(commandLine.size() + 1);  // the last ends the list
    std::transform(commandLine.begin(), commandLine.end(), pointers.begin(),
                   [](std::string& argument) { return argument.data(); });
    gargc = static_cast<int>(commandLine.size());
    gargv = pointers.data();
    RunOnceSocket socket;
    switch (socket.ClaimPath(RunOnceSocket::DefaultPath(), commandLine)) {
        case RunOnceSocket::Claim::kHandedOver:
            // No window of this start ever tells the desktop that it has come up.
            gdk_notify_startup_complete();
            gdk_flush();
            return TellAnswer(commandLine, socket);
        case RunOnceSocket::Claim::kBusy:
            SpooledInputs().Note(commandLine);
            TellBusy(socket.BusyProcess());
            return 1;
        default:
            return RunFirst(socket);
    }
}

}  // namespace

int RunLectora(int argc, char** argv) {
    OpenStandardStreams();
    LDebugBlockSignals();
    OrderlyEnd end;
    const int status = RunProgram(argc, argv);
    end.EndProcess();
    return status;
}
