// What kind of document a file is, by what it holds.
#pragma once

#include <string_view>

enum class DocumentKind {
    kPlainText,
    kHtml,
    kZip,      // EPUB, ODT, DOCX and others
    kFlatOdt,  // an OpenDocument text as a single XML file
    kPdf,
    kForeign,  // known, but without text that could be read
};

DocumentKind KindOf(std::string_view bytes);

// For a kForeign file: the sentence that says what it is.
const char* ForeignKindProblem(std::string_view bytes);
