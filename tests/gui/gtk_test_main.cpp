// Runs the tests as the program runs: on the GUI thread, holding the GDK lock.
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include "foundation/gdk/gdk_lock.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    gdk_threads_init();
    if (!gtk_init_check(&argc, &argv)) {
        std::fprintf(stderr, "These tests need a display.\n");
        return 1;
    }
    // A GTK complaint is a fault of the code under test.
    g_log_set_always_fatal(GLogLevelFlags(G_LOG_LEVEL_CRITICAL | G_LOG_FLAG_FATAL));
    const GdkLock lock;
    return RUN_ALL_TESTS();
}
