#include "app/document_text.h"

#include <utility>
#include <vector>

#include "speech/speech_pieces.h"
#include "speech/voice_stretches.h"

ReadingText DocumentText(const TextPane& pane, std::string text, std::size_t offset) {
    ReadingText spoken{.text = std::move(text)};
    const std::vector<DocumentLanguage> languages = pane.Structure().Languages();
    std::vector<LanguageMark> marks;
    marks.reserve(languages.size());
    for (const DocumentLanguage& language : languages)
        marks.push_back({language.begin, language.tag});
    spoken.languages = MarksFrom(marks, offset);
    for (const std::size_t heading : HeadingsFrom(pane.Structure().Places(), offset))
        if (heading < spoken.text.size())
            spoken.headings.push_back(heading);
    return spoken;
}
