// What desktops keep about the programs of the machine, so as not to read every menu entry.
#pragma once

// Brings them up to date after menu entries or icons have come or gone. Only what the machine keeps
// already: nothing is begun that nobody would take away again. Waits for it.
void RefreshDesktopDatabases();
