// lectora-convert: converts sound files. One process a file, with nothing shared.
#include "foundation/files/standard_streams.h"
#include "tools/convert_run.h"
#include "tools/interruption.h"

int main(int argc, char** argv) {
    OpenStandardStreams();
    CatchInterruptions();
    ConvertOptions options;
    if (const std::optional<int> status = ParseConvertOptions(argc, argv, options))
        return *status;
    return StatusOfRun(RunConvert(options));
}
