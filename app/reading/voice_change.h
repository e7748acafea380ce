// Another voice for what is being read, or another way of speaking for the voice.
#pragma once

#include <optional>

#include "app/reading/narrator.h"

// A receiver of the narrator's news. GUI thread.
class VoiceChange {
public:
    explicit VoiceChange(Narrator& narrator);
    VoiceChange(const VoiceChange&) = delete;
    VoiceChange& operator=(const VoiceChange&) = delete;

    // The sentence that is heard is heard to its end; the next one comes by that voice, as all that
    // is not heard yet. False: there is nothing to change.
    bool Begin(int voice);
    // The same for rules of speaking that have changed, with the voice as it is. A speed that the
    // engine itself is to speak at needs no call.
    void BeginAnew();

private:
    bool ReadOnWith(int voice);
    void Hear(const ReadingNews& news);
    void Act();
    void FollowTempo();

    Narrator& narrator_;
    std::optional<int> voice_;      // that waits for its sentence
    bool isForSpeedAlone_ = false;  // nothing else is to change there
    LGuiTimer sentenceEnd_;
    LGuiTimer tempoRest_;
    Narrator::Subscription news_;
    LPlayerTransport::Subscription changes_;
};
