#include "speech/voices_instead.h"

#include <algorithm>

#include "speech/text_language.h"
#include "speech/voice_table.h"

int VoicesInstead::Of(int voice) const {
    const auto found = std::ranges::find(instead_, voice, &std::pair<int, int>::first);
    return found == instead_.end() ? voice : found->second;
}

bool VoicesInstead::IsGone(int voice) const {
    return goneVoices_.contains(voice) || goneEngines_.contains(VoiceAt(voice).engine);
}

bool VoicesInstead::Replace(int voice, bool isEngineMissing) {
    const Voice gone = VoiceAt(voice);
    goneVoices_.insert(voice);
    if (isEngineMissing)
        goneEngines_.insert(gone.engine);
    // The nearest first: of the same region, and so on.
    int next = -1;
    for (const bool sameRegion : {true, false}) {
        for (int index = 0; next < 0 && index < CountVoices(); ++index) {
            const Voice other = VoiceAt(index);
            if (!IsGone(index) && !gone.language.empty() &&
                (sameRegion ? other.language == gone.language
                            : LanguageOnly(other.language) == LanguageOnly(gone.language)))
                next = index;
        }
    }
    if (next < 0)
        return false;
    for (auto& [former, now] : instead_)
        if (now == voice)
            now = next;
    instead_.emplace_back(voice, next);
    return true;
}

std::string VoicesInstead::Message() const {
    std::string message;
    for (const auto& [former, now] : instead_) {
        message += message.empty() ? "" : " ";
        message += "The voice " + VoiceAt(former).title + " could not speak any more; " +
                   VoiceAt(now).title + " read on.";
    }
    return message;
}
