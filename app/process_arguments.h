// This process's own arguments, read again when the window processes them.
#pragma once

extern int gargc;
extern char** gargv;
