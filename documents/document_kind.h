// What kind of document a file is.
#pragma once

#include <string_view>

enum class DocumentKind {
    kPlainText,
    kHtml,
    kZip,      // EPUB, OpenDocument, Office Open XML
    kFlatOdt,  // an OpenDocument text as a single XML file
    kFictionBook,
    kPdf,
    kRtf,
    kDjvu,
    kMail,
    kMarkdown,
    kMobi,
    kPicture,
    kForeign,  // known, but without text that could be read
};

// By what the file holds; its name counts where that says nothing.
DocumentKind KindOf(std::string_view bytes, std::string_view name = {});

// For a kForeign file: the sentence that says what it is.
const char* ForeignKindProblem(std::string_view bytes);
