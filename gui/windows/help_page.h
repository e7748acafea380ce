// The program's help pages.
#pragma once

// Opens the page ("index", "general", ...) in the desktop's browser: the installed file, or the
// page of the same name on the web site when it is not installed.
void DisplayHelpPage(const char* page);
