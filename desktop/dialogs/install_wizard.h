// Installing in a window.
#pragma once

// Leads the user through it: what it is, what will be placed where, the work with its progress, how
// it ended. An ordinary user is asked for the administrator's password, where a program can. True
// when the user wants the installed program to be started now. GUI thread, GDK lock held.
bool RunInstallWizard();
