#include "speech/engine_reserve.h"

#include <fstream>
#include <utility>

#include "speech/voices.h"

namespace {

// An engine that waits takes a third of this.
constexpr long kLeastFreeKilobytes = 1000000;

// What the system could give without writing memory to the disk.
long FreeKilobytes() {
    std::ifstream lines("/proc/meminfo");
    for (std::string name; lines >> name;) {
        long kilobytes = 0;
        if (name == "MemAvailable:" && lines >> kilobytes)
            return kilobytes;
        lines.ignore(256, '\n');
    }
    return 0;
}

}  // namespace

EngineRun::EngineRun(int voice, std::string workFolder, int speed,
                     std::optional<VoiceManner> manner)
    : folder(std::move(workFolder)),
      request{.outputPath = folder.c_str(),
              .voice = voice,
              .speed = speed,
              .manner = std::move(manner)},
      run(request) {}

bool EngineReserve::IsOf(int voice, const std::string& folder) const {
    return waiting_ && waiting_->folder == folder && voiceKey_ == KeyOf(AskedVoiceAt(voice)) &&
           waiting_->run.IsWaiting();
}

void EngineReserve::Keep(int voice, const std::string& folder) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (IsOf(voice, folder)) {
        waiting_->run.KeepWaiting();
        return;
    }
    waiting_.reset();
    const Voice asked = AskedVoiceAt(voice);
    if (!EngineOf(asked).loadsBeforeText || FreeKilobytes() < kLeastFreeKilobytes)
        return;
    voiceKey_ = KeyOf(asked);
    waiting_ = std::make_unique<EngineRun>(voice, folder);
    if (!waiting_->run.StartWaiting())
        waiting_.reset();
}

std::unique_ptr<EngineRun> EngineReserve::Take(int voice, const std::string& folder) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const bool isOfThat = IsOf(voice, folder);
    std::unique_ptr<EngineRun> taken = std::exchange(waiting_, nullptr);
    return isOfThat ? std::move(taken) : nullptr;
}

void EngineReserve::Drop() {
    const std::lock_guard<std::mutex> lock(mutex_);
    waiting_.reset();
}
