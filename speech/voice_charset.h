// Which bytes a voice reads.
#pragma once

#include <optional>
#include <string_view>

#include "speech/text_preparation.h"

// Charset of the named voice: what its installed description states, else what is known of that
// voice, else ASCII. Reads the engine's voice files (a few kilobytes); any thread.
VoiceCharset CharsetOfVoice(std::string_view voiceName);

// The charset named as "(coding NAME)" in a voice file; nothing when none is named or it is not
// one of ours.
std::optional<VoiceCharset> CharsetInDescription(std::string_view voiceFile);
