// The engine that a jump finds ready: started, its voice loaded, waiting for a text.
//
// Loading is most of what a short run of such an engine costs. Engines that are quick to start have
// none. One at most, of the voice that spoke last; it ends when nothing was spoken for two minutes,
// with this object, and with the program. Any thread.
#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "speech/synthesis.h"

// A run with the request that it is for.
struct EngineRun {
    EngineRun(int voice, std::string workFolder, int speed = 100,
              std::optional<VoiceManner> manner = {});

    const std::string folder;  // where its files stand
    LTTS request;
    SynthesisRun run;
};

class EngineReserve {
public:
    // There is to be one for this voice, whose sound file stands in the folder (with its slash).
    // None is started on a machine that is short of memory.
    void Keep(int voice, const std::string& folder);
    // The one that waits, if it is of that voice and works there, else null; any other is ended.
    std::unique_ptr<EngineRun> Take(int voice, const std::string& folder);
    void Drop();

private:
    bool IsOf(int voice, const std::string& folder) const;

    std::mutex mutex_;  // guards what follows
    std::unique_ptr<EngineRun> waiting_;
    std::string voiceKey_;
};
