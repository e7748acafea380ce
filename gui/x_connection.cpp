#include "gui/x_connection.h"

#include <X11/Xlib.h>
#include <gdk/gdkx.h>

int XConnectionSocket() {
    return ConnectionNumber(gdk_x11_get_default_xdisplay());
}
