// What stands in for characters that a voice cannot read. All texts are ASCII; null means "not in
// this table".
#pragma once

#include <string_view>

#include "speech/voice_charset.h"

// Typographic characters in the form of a plain keyboard, for every voice; "" for what is
// invisible.
const char* PlainForm(char32_t character);

// Signs in English words, for voices that read ASCII.
const char* SpokenSign(char32_t character);

// The name of a Greek letter, to be said where it stands alone.
const char* GreekLetterName(char32_t character);

// Letters whose plain form does not follow from their decomposition.
const char* PlainLetters(char32_t character);

struct Currency {
    const char* one;   // "1 euro", and the sign by itself
    const char* many;  // "5 euros"
};
const Currency* FindCurrency(char32_t character);

// The same for other languages, in UTF-8 that the charset of their voices holds; null when none is
// known. many: for a currency, null otherwise.
struct ForeignSign {
    const char* one;
    const char* many;
};
const ForeignSign* FindForeignSign(std::string_view language, char32_t character);

// The digit of a superscript, '\0' for every other character.
char SuperscriptDigit(char32_t character);

// The byte for a character in a one-byte charset, -1 when it has none. Not for Utf8.
int ByteInCharset(char32_t character, VoiceCharset charset);
// The other way; ASCII bytes stand for themselves.
char32_t CharacterOfByte(unsigned char byte, VoiceCharset charset);
