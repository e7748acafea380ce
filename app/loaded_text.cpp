#include "app/loaded_text.h"

#include <glib.h>

#include <memory>

namespace {

struct GFree {
    void operator()(char* text) const { g_free(text); }
};

// Unrepresentable input gives the empty text; bytes that end in half a character are cut there.
std::string Converted(std::string_view bytes, const char* charset) {
    gsize written = 0;
    const std::unique_ptr<char, GFree> text(
        g_convert_with_fallback(bytes.data(), static_cast<gssize>(bytes.size()), "UTF-8", charset,
                                "?", nullptr, &written, nullptr));
    return text ? std::string(text.get(), written) : std::string();
}

std::string FromWindows1252(std::string_view bytes) {
    // The five bytes that the charset leaves undefined would make the whole conversion fail.
    std::string defined(bytes);
    for (char& byte : defined) {
        const auto code = static_cast<unsigned char>(byte);
        if (code == 0x81 || code == 0x8d || code == 0x8f || code == 0x90 || code == 0x9d)
            byte = '?';
    }
    return Converted(defined, "WINDOWS-1252");
}

std::string WithoutNul(std::string text) {
    std::erase(text, '\0');
    return text;
}

}  // namespace

std::string TextForDisplay(std::string_view bytes) {
    if (bytes.starts_with("\xef\xbb\xbf"))
        bytes.remove_prefix(3);
    if (bytes.starts_with("\xff\xfe") || bytes.starts_with("\xfe\xff")) {
        const char* charset = bytes[0] == '\xff' ? "UTF-16LE" : "UTF-16BE";
        std::string text =
            Converted(bytes.substr(2, (bytes.size() - 2) & ~std::size_t{1}), charset);
        if (!text.empty())
            return WithoutNul(std::move(text));
    }
    std::string text = WithoutNul(std::string(bytes));
    if (g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr))
        return text;
    return FromWindows1252(text);
}
