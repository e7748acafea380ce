#include "speech/voice_list_query.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>

#include "foundation/pipes.h"
#include "speech/engine_input.h"
#include "speech/voices.h"

namespace {

// An engine that is silent for so long hangs; the next one may not.
constexpr std::chrono::seconds kReplyPatience(60);
constexpr unsigned int kPauseMilliseconds = 500;  // between two attempts
constexpr int kMaxSilentEnds = 3;                 // engines in a row that end without an answer

bool IsWhole(const std::string& reply) {
    const std::size_t prompt = reply.find("festival>");
    return prompt != std::string::npos && reply.find(')', prompt) != std::string::npos;
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
        if (!anew_ && AreVoicesKnown())
            return VoiceListState::kKnown;
        if (!IsProgramInstalled("festival"))
            return VoiceListState::kNoEngine;
        const VoiceListState state = Converse();
        if (state == VoiceListState::kKnown)
            return state;
        if (state == VoiceListState::kNoVoices && ++silentEnds == kMaxSilentEnds)
            return state;
    }
    return VoiceListState::kAsking;
}

// One engine: kAsking when it gave no answer in time or could not be started.
VoiceListState VoiceListQuery::Converse() {
    LPipeInOut engine;
    if (!engine._Open("festival -i"))
        return VoiceListState::kAsking;
    WriteToEngine(engine.WriteFd(), kVoiceListCommand);
    std::string reply;
    if (!ReadReply(engine, reply)) {
        engine.Kill();
        return VoiceListState::kAsking;
    }
    if (!IsWhole(reply))
        return VoiceListState::kNoVoices;
    std::vector<std::string> names = ParseVoiceList(reply);
    const bool hasVoice = std::any_of(names.begin(), names.end(),
                                      [](const std::string& name) { return !name.empty(); });
    if (!hasVoice)
        return VoiceListState::kNoVoices;
    KeepVoices(std::move(names));
    return VoiceListState::kKnown;
}

// Until the list or the engine's end; false when neither came, or on a request to stop.
bool VoiceListQuery::ReadReply(LPipeInOut& engine, std::string& reply) const {
    const auto end = std::chrono::steady_clock::now() + kReplyPatience;
    while (!IsWhole(reply)) {
        pollfd events[] = {{engine.ReadFd(), POLLIN, 0}, {StopSignal().ReadFd(), POLLIN, 0}};
        const int ready = ::poll(events, 2, MillisecondsUntil(end));
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0 || events[1].revents != 0)
            return false;
        char block[4096];
        const ssize_t got = ::read(engine.ReadFd(), block, sizeof block);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return true;
        reply.append(block, static_cast<std::size_t>(got));
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
