#include "app/process_arguments.h"

int gargc = 0;
char** gargv = nullptr;
