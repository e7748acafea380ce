#pragma once

#include <vector>

#include "documents/document.h"
#include "speech/voice_stretches.h"

// What a document says of its language, as speech takes it.
inline std::vector<LanguageMark> MarksOf(const std::vector<DocumentLanguage>& languages) {
    std::vector<LanguageMark> marks;
    for (const DocumentLanguage& language : languages)
        marks.push_back({language.begin, language.tag});
    return marks;
}
