// The text of a document that is one XML file.
#pragma once

#include <string>
#include <string_view>

#include "documents/markup_listener.h"
#include "documents/reading_watch.h"
#include "documents/text_flow.h"

// The listener fills the flow. Why it cannot be read, or empty.
std::string ReadXml(std::string_view bytes, MarkupListener& listener, const TextFlow& flow,
                    const ReadingWatch& watch);
