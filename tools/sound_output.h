// Writing any sound file that can be written, whole or not at all.
#pragma once

#include <optional>
#include <string>

#include "formats/sound_types.h"
#include "formats/whole_file.h"
#include "foundation/threads/progress.h"
#include "sound/sound_sink.h"
#include "sound/sound_source.h"
#include "sound/source_to_sink.h"

struct OutputChoice {
    SoundType type = SoundType::kWav;
    std::optional<SampleEncoding> encoding;  // the type's default
    std::optional<int> rate;                 // the source's; 8000 for GSM and VOX
    std::optional<int> channels;             // the source's; 1 for GSM and VOX
    RateQuality quality = RateQuality::kFine;
};

// What is contradictory about a choice, empty when nothing is.
std::string ProblemWith(const OutputChoice& choice);

// One output, to which one or more sources are written one after the other.
class SoundOutput {
public:
    // Refuses as WholeFile does.
    SoundOutput(const std::string& path, bool overwrite, const OutputChoice& choice);

    // Why the output cannot be made, or what went wrong first; empty while all is well. Without the
    // path.
    const std::string& Error() const { return error_; }

    // Appends the rest of the source. The first one settles what the choice left open, and opens
    // the sink.
    LProcessResult Append(LProgress& progress, const char* title, const LSoundSource& source);

    // Finishes the file and gives it its name, if it is whole; Error() tells otherwise.
    bool Commit();

private:
    bool Fail(const std::string& error);
    bool Prepare(const LSoundSource& source, LPRSourceToSink& request);
    bool OpenSink(const LSoundSource& source);
    bool FitsIntoFile(const LSoundSource& source);
    LProcessResult Judge(LProcessResult result);
    bool FinishSink();
    long long ExpectedSize(long long frames) const;  // bytes, at least

    WholeFile file_;
    OutputChoice choice_;
    LSoundSink sink_;
    bool isOpen_ = false;
    std::string error_;
};
