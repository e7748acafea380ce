#include "foundation/files/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <initializer_list>

void OpenStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // A new descriptor is the lowest that is free, which is this one.
        if (::fcntl(stream, F_GETFD) < 0)
            ::open("/dev/null", O_RDWR);
    }
}
