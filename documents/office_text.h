// The text of word processors' documents: OpenDocument (ODT) and Office Open XML (DOCX).
//
// Paragraphs, headings and list items become paragraphs, a table's row one with its cells parted by
// commas. Notes, comments, what was deleted under tracked changes and hidden text are not read.
#pragma once

#include <memory>

#include "documents/document.h"
#include "documents/markup_reader.h"
#include "documents/reading_watch.h"
#include "documents/text_flow.h"

// An ODT document in a single XML file.
Document ReadFlatOdt(std::string_view bytes, const ReadingWatch& watch);

// Listeners for "content.xml" of an ODT document and for "word/document.xml". The flow must
// outlive them.
std::unique_ptr<MarkupListener> MakeOdtListener(TextFlow& flow);
std::unique_ptr<MarkupListener> MakeDocxListener(TextFlow& flow);
