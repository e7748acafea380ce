#include "gui/display_text.h"

#include <glib.h>

namespace {

void AppendLatin1(std::string& out, unsigned char byte) {
    if (byte == 0) {
        out += "\xEF\xBF\xBD";
    } else {
        out += static_cast<char>(0xC0 | (byte >> 6));
        out += static_cast<char>(0x80 | (byte & 0x3F));
    }
}

}  // namespace

std::string DisplayText(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const char* end = nullptr;
        // Stops at a NUL byte as well as at the first invalid byte.
        g_utf8_validate(text.data(), static_cast<gssize>(text.size()), &end);
        const auto valid = static_cast<std::size_t>(end - text.data());
        out.append(text.substr(0, valid));
        text.remove_prefix(valid);
        if (!text.empty()) {
            AppendLatin1(out, static_cast<unsigned char>(text.front()));
            text.remove_prefix(1);
        }
    }
    return out;
}
