#include "speech/voice_list_query.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>

#include "foundation/processes/pipes.h"
#include "speech/engine_input.h"
#include "speech/voice_table.h"

namespace {

// An engine that is silent for so long hangs; the next one may not. Where others speak, nobody
// waits for it that long.
constexpr std::chrono::seconds kReplyPatience(60);
constexpr std::chrono::seconds kReplyPatienceBesideOthers(20);
constexpr unsigned int kPauseMilliseconds = 500;  // between two attempts
constexpr std::size_t kLargestAnswer = 1 << 20;
constexpr int kMaxSilentEnds = 3;  // rounds in a row that end without an answer

std::string FirstWord(const std::string& command) {
    return command.substr(0, command.find(' '));
}

bool IsInstalled(const SpeechEngine& engine) {
    const std::string program =
        engine.listCommand.empty() ? engine.program : FirstWord(engine.listCommand);
    return program.find('/') == std::string::npos ? IsProgramInstalled(program.c_str())
                                                  : ::access(program.c_str(), X_OK) == 0;
}

std::vector<SpeechEngine> InstalledEngines() {
    std::vector<SpeechEngine> engines = SpeechEngines();
    std::erase_if(engines, [](const SpeechEngine& engine) { return !IsInstalled(engine); });
    return engines;
}

int MillisecondsUntil(std::chrono::steady_clock::time_point end) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        end - std::chrono::steady_clock::now());
    return static_cast<int>(std::max<long long>(left.count(), 0));
}

}  // namespace

VoiceListQuery::VoiceListQuery(std::function<void()> answered) : answered_(std::move(answered)) {}

VoiceListQuery::~VoiceListQuery() {
    StopThreadSoon();
    Join();
}

void VoiceListQuery::Ask() {
    if (State() != VoiceListState::kKnown)
        StartAsking(false);
}

void VoiceListQuery::StartAsking(bool anew) {
    if (State() == VoiceListState::kAsking && IsRunning())
        return;
    Join();
    anew_ = anew;
    state_.store(VoiceListState::kAsking);
    answeredSignal_.Reset();
    Start(0);
}

void VoiceListQuery::ThreadFunction() {
    const VoiceListState state = AskUntilAnswered();
    if (IsStopping())
        return;
    state_.store(state);
    if (answered_)
        answered_();
    answeredSignal_.Signal();
}

VoiceListState VoiceListQuery::AskUntilAnswered() {
    for (int silentEnds = 0; !IsStopping(); StopSignal().WaitSignal(kPauseMilliseconds)) {
        if (!anew_ && CountVoices() > 0)
            return VoiceListState::kKnown;
        const std::vector<SpeechEngine> engines = InstalledEngines();
        if (engines.empty())
            return VoiceListState::kNoEngine;
        const VoiceListState state = AskAll(engines);
        if (state == VoiceListState::kKnown)
            return state;
        if (state == VoiceListState::kNoVoices && ++silentEnds == kMaxSilentEnds)
            return state;
    }
    return VoiceListState::kAsking;
}

// The table gets the voices of all at once, in the order of the rows.
VoiceListState VoiceListQuery::AskAll(const std::vector<SpeechEngine>& engines) {
    const std::chrono::seconds patience =
        engines.size() > 1 ? kReplyPatienceBesideOthers : kReplyPatience;
    std::vector<Voice> voices;
    VoiceListState state = VoiceListState::kNoVoices;
    for (const SpeechEngine& engine : engines) {
        std::vector<Voice> more = engine.ownVoices;
        if (!engine.listCommand.empty() && !Converse(engine, patience, more))
            state = VoiceListState::kAsking;
        voices.insert(voices.end(), more.begin(), more.end());
    }
    if (voices.empty() || IsStopping())
        return state;
    AddVoices(voices);
    return VoiceListState::kKnown;
}

// False when it gave no answer in time or could not be started.
bool VoiceListQuery::Converse(const SpeechEngine& engine, std::chrono::seconds patience,
                              std::vector<Voice>& voices) const {
    LPipeInOut pipe;
    if (!pipe._Open(engine.listCommand.c_str()))
        return false;
    WriteToEngine(pipe.WriteFd(), engine.listInput);
    std::string answer;
    if (!ReadAnswer(pipe, engine, patience, answer)) {
        pipe.Kill();
        return false;
    }
    voices = engine.voicesIn(engine, answer);
    return true;
}

// Until the list or the engine's end; false when neither came, or on a request to stop.
bool VoiceListQuery::ReadAnswer(LPipeInOut& pipe, const SpeechEngine& engine,
                                std::chrono::seconds patience, std::string& answer) const {
    const auto end = std::chrono::steady_clock::now() + patience;
    while ((engine.isWhole == nullptr || !engine.isWhole(answer)) &&
           answer.size() < kLargestAnswer) {
        pollfd events[] = {{pipe.ReadFd(), POLLIN, 0}, {StopSignal().ReadFd(), POLLIN, 0}};
        const int ready = ::poll(events, 2, MillisecondsUntil(end));
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0 || events[1].revents != 0)
            return false;
        char block[4096];
        const ssize_t got = ::read(pipe.ReadFd(), block, sizeof block);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return true;
        answer.append(block, static_cast<std::size_t>(got));
    }
    return true;
}

LProcessResult Process(LProgress& progress, VoiceListQuery& query) {
    constexpr unsigned int kPatienceMilliseconds = 20000;  // between two looks at nothing new
    progress.SetFirstLabel("Waiting for the Speech Engine");
    progress.SetSecondLabel("Please wait");
    query.Ask();
    LProcessResult waited = kProcessFailed;
    while (waited == kProcessFailed)
        waited = progress.ProcessWaitSignal(query.Answered(), kPatienceMilliseconds);
    if (waited == kProcessStopped)
        return kProcessStopped;
    return query.State() == VoiceListState::kKnown ? kProcessDone : kProcessFailed;
}
