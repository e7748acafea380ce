// Asking for the voices without keeping anybody waiting.
//
// Festival answers within a tenth of a second when it is warm, and after many seconds on a busy
// machine or from a cold disk. A query asks all engines on a thread of its own until it knows.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "foundation/threads/progress.h"
#include "foundation/threads/thread.h"
#include "speech/speech_engines.h"

class LPipeInOut;

enum class VoiceListState {
    kAsking,    // not asked yet, or not answered yet
    kKnown,     // the table in voice_table.h holds them
    kNoEngine,  // no engine's program is installed
    kNoVoices,  // they answer without a voice, or end without an answer
};

// Belongs to one thread, which starts and destroys it and asks for its state.
class VoiceListQuery : private LThread {
public:
    // `answered` runs on the query's thread each time that an answer is there: it may do no more
    // than queue a notification. What it refers to outlives this object.
    explicit VoiceListQuery(std::function<void()> answered = {});
    ~VoiceListQuery() override;  // ends an engine that has not answered

    // Asks, unless it is asking already or knows. Returns at once; asking again after kNoEngine or
    // kNoVoices finds an engine that was installed meanwhile.
    void Ask();
    // Asks even when it knows, for voices that were installed meanwhile.
    void AskAnew() { StartAsking(true); }
    VoiceListState State() const { return state_.load(); }
    LSignalObjectRef Answered() const { return answeredSignal_.Ref(); }  // the state is not kAsking

private:
    void StartAsking(bool anew);
    void ThreadFunction() override;
    VoiceListState AskUntilAnswered();
    VoiceListState AskAll(const std::vector<SpeechEngine>& engines);
    bool Converse(const SpeechEngine& engine, std::chrono::seconds patience,
                  std::vector<Voice>& voices) const;
    bool ReadAnswer(LPipeInOut& pipe, const SpeechEngine& engine, std::chrono::seconds patience,
                    std::string& answer) const;

    std::function<void()> answered_;
    bool anew_ = false;  // changed while no thread runs
    std::atomic<VoiceListState> state_{VoiceListState::kAsking};
    LSignalObject answeredSignal_;
};

// Waits for the answer, for as long as it takes. Done: the voices are known; stopped by the
// progress object; failed: there are none, the query's state says why.
LProcessResult Process(LProgress& progress, VoiceListQuery& query);
