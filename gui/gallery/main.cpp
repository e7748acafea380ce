// Shows every control, and the dialogs that no window of the program opens.
//
//     gui_gallery                        one window after the other, until each is closed
//     gui_gallery FOLDER THEME FONT      takes their pictures, e.g. "out/light" "Adwaita" "Sans
//     10";
//                                        "" for GTK's own theme
//
// Fails when GTK prints a warning and when something has less room than it asks for.
#include <gtk/gtk.h>

#include <string>

#include "foundation/gdk/gdk_lock.h"
#include "gui/accessible.h"
#include "gui/gallery/gallery_windows.h"
#include "gui/gallery/pictures.h"

int main(int argc, char** argv) {
    if (argc != 1 && argc != 4)
        return 2;
    gdk_threads_init();
    gtk_init(&argc, &argv);
    if (argc == 4) {
        const std::string style =
            std::string("gtk-theme-name=\"") + argv[2] + "\"\ngtk-font-name=\"" + argv[3] + "\"\n";
        gtk_rc_parse_string(style.c_str());
    }
    const GdkLock lock;
    TellFocusToLateScreenReader();
    Pictures pictures(argc == 4 ? argv[1] : "");
    for (const auto show :
         {ShowControls, ShowLists, ShowMenusAndBars, ShowDialogs, ShowSplashAndAbout})
        show(pictures);
    return pictures.IsAllWell() ? 0 : 1;
}
