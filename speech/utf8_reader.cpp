#include "speech/utf8_reader.h"

#include <glib.h>

#include <algorithm>

char32_t Utf8Reader::Next() {
    const auto first = static_cast<unsigned char>(text_[at_]);
    if (first < 0x80) {
        ++at_;
        return first;
    }
    const auto left = static_cast<gssize>(std::min<std::size_t>(text_.size() - at_, 4));
    const gunichar character = g_utf8_get_char_validated(text_.data() + at_, left);
    if (character == static_cast<gunichar>(-1) || character == static_cast<gunichar>(-2)) {
        ++at_;
        return 0;
    }
    at_ += static_cast<std::size_t>(g_unichar_to_utf8(character, nullptr));
    return character;
}

char32_t Utf8Reader::Peek() const {
    Utf8Reader ahead = *this;
    return ahead.AtEnd() ? 0 : ahead.Next();
}
