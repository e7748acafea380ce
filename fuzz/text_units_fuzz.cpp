// Text preparation: whatever the text, each unit holds something to say, fits the engine, and
// stands for a stretch of the text behind the one before it.
#include <glib.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "fuzz/fuzz_file.h"
#include "speech/text_preparation.h"

namespace {

constexpr std::size_t kLongestUnit = 2500;  // 500 characters, with punctuation and white space

bool IsControl(char character) {
    return (static_cast<unsigned char>(character) < ' ' && character != '\n' &&
            character != '\t') ||
           character == 0x7F;
}

void Exercise(std::string_view text, VoiceCharset charset) {
    TextUnits units(text, charset);
    TextUnit unit;
    std::size_t begin = 0;
    while (units.Next(unit)) {
        if (unit.sourceBegin < begin || unit.sourceEnd <= unit.sourceBegin ||
            unit.sourceEnd > text.size() || unit.text.size() > kLongestUnit)
            std::abort();
        begin = unit.sourceBegin;
        for (const UnitWord& word : unit.words)
            if (word.at + word.size > unit.text.size() || word.sourceBegin > word.sourceEnd ||
                unit.sourceBegin + word.sourceEnd > unit.sourceEnd)
                std::abort();
        if (std::any_of(unit.text.begin(), unit.text.end(), IsControl))
            std::abort();
        if (charset == VoiceCharset::kAscii &&
            std::none_of(unit.text.begin(), unit.text.end(),
                         [](char character) { return g_ascii_isalnum(character); }))
            std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    for (const VoiceCharset charset :
         {VoiceCharset::kAscii, VoiceCharset::kLatin2, VoiceCharset::kUtf8})
        Exercise(text, charset);
    return 0;
}
