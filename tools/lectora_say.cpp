// lectora-say: speaks texts into sound files. One process a file, with nothing shared.
#include "foundation/files/standard_streams.h"
#include "tools/interruption.h"
#include "tools/say_run.h"

int main(int argc, char** argv) {
    OpenStandardStreams();
    CatchInterruptions();
    SayOptions options;
    if (const std::optional<int> status = ParseSayOptions(argc, argv, options))
        return *status;
    return StatusOfRun(RunSay(options));
}
