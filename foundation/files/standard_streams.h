// Descriptors 0 to 2, which every library takes for input, output and errors.
#pragma once

// Opens /dev/null on those that the program was started without: otherwise the next file or
// connection that is opened would be written to as one of them. First thing in main().
void OpenStandardStreams();
