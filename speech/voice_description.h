// What a Festival voice's own file says of it.
#pragma once

#include <string>
#include <string_view>

#include "speech/voice_charset.h"

struct VoiceDescription {
    VoiceCharset charset = VoiceCharset::kAscii;  // the bytes that it reads
    std::string language = {};                    // tag
    std::string kind = {};                        // "man", "woman"
};

// Of the named voice: what its installed description states, of the charset else what is known of
// that voice, else ASCII. Reads the engine's voice files (a few kilobytes); any thread.
VoiceDescription DescriptionOfVoice(std::string_view voiceName);

// The same for a voice's file, whose charset counts where none of ours is named.
VoiceDescription ReadVoiceDescription(std::string_view voiceFile, VoiceCharset otherwise);
