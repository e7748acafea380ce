#include "app/start_up.h"

#include <glib.h>
#include <gtk/gtk.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>

#include "app/main_dialog.h"
#include "app/run_once.h"
#include "foundation/crash_handler.h"

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

struct HandOverTarget {
    RunOnceSocket& socket;
    MainDialog& window;
};

// GUI thread, inside the main loop, which has released the GDK lock for the callback.
gboolean GSRunOnceServerCallback(GIOChannel*, GIOCondition, gpointer user) {
    auto* target = static_cast<HandOverTarget*>(user);
    std::vector<std::string> arguments;
    // A negative count ends listening for the rest of the run; later starts then run by themselves.
    if (!target->socket.Receive(arguments))
        return FALSE;
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    gdk_threads_enter();
    const int count = static_cast<int>(pointers.size());
    target->window.EvRunArguments(pointers.data(), count);
    if (count < 2)
        target->window.CmOpen();
    gdk_threads_leave();
    return TRUE;
}

int RunFirstInstance(RunOnceSocket& socket) {
    MainDialog window;
    HandOverTarget target{socket, window};
    GIOChannel* channel = g_io_channel_unix_new(socket.ListeningFd());
    const guint watch = g_io_add_watch(channel, G_IO_IN, GSRunOnceServerCallback, &target);
    window.Run();
    gdk_threads_leave();
    if (g_main_context_find_source_by_id(nullptr, watch) != nullptr)
        g_source_remove(watch);
    g_io_channel_shutdown(channel, FALSE, nullptr);
    g_io_channel_unref(channel);
    return 0;
}

}  // namespace

int RunLectora(int argc, char** argv) {
    LDebugBlockSignals();
    gargc = argc;
    gargv = argv;
    umask(0);
    if (std::getenv("DISPLAY") == nullptr && argc < 2) {
        std::puts("You must have a display manager running to use this program.");
        return -1;
    }
    gdk_threads_init();
    gtk_init(&gargc, &gargv);
    gdk_threads_enter();
    SilenceLibraries();
    if (std::getenv("HOME") == nullptr) {
        std::fputs("Lectora cannot start: the environment variable HOME is not set.\n", stderr);
        return 1;
    }
    RunOnceSocket socket;
    const RunOnceSocket::Claim claim =
        socket.ClaimPath(RunOnceSocket::DefaultPath(), ArgumentsForHandOver(gargc, gargv));
    if (claim == RunOnceSocket::Claim::kHandedOver)
        return 0;
    return RunFirstInstance(socket);
}
