// What the bytes of a prepared text mean to a voice.
#pragma once

// English voices read ASCII.
// kUnicode: UTF-8 of which the engine also says the signs.
enum class VoiceCharset { kAscii, kLatin1, kLatin2, kLatin9, kUtf8, kUnicode };
inline bool IsUtf8(VoiceCharset charset) {
    return charset >= VoiceCharset::kUtf8;
}
