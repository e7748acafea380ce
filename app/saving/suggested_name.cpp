#include "app/saving/suggested_name.h"

#include <glib.h>

#include <string_view>

#include "foundation/files/file.h"
#include "foundation/files/path_text.h"
#include "foundation/files/text_buffer.h"
#include "foundation/first_words.h"
#include "foundation/owned_text.h"

namespace {

constexpr glong kMostCharacters = 50;

// As a name can hold it: no dots, so that none begins an ending.
std::string AsName(const std::string& text) {
    const char* end = text.c_str();
    for (glong count = 0; *end != '\0' && count < kMostCharacters; ++count)
        end = g_utf8_next_char(end);
    const std::string whole(text.c_str(), end);
    char name[kTextBufferSize];
    LFile::PreprocessName(whole.c_str(), name);
    std::string kept = name;
    while (!kept.empty() && g_ascii_isalnum(kept.back()) == 0 && g_ascii_isprint(kept.back()) != 0)
        kept.pop_back();
    return kept;
}

}  // namespace

std::string SuggestedName(const std::string& text, const std::string& file) {
    // Of whatever charset the file's name is; a chooser takes UTF-8.
    const OwnedText document(g_filename_display_name(FileOfPath(file).c_str()));
    const std::string ending = EndingOfPath(document.get());
    const std::string_view whole(document.get());
    std::string name = AsName(std::string(whole.substr(0, whole.size() - ending.size())));
    if (name.empty())
        name = AsName(FirstWordsOf(text).words);
    return name.empty() ? "Spoken text" : name;
}
