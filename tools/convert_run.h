// What lectora-convert does once its command line is understood.
#pragma once

#include "tools/convert_options.h"

int RunConvert(const ConvertOptions& options);  // the exit status
