// Mail as it is kept in files: what stands in its head, its text, the names of what is attached.
#pragma once

#include <string_view>

#include "documents/document.h"
#include "documents/reading_watch.h"

Document ReadMail(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules);

// Whether a file begins with the head of a mail.
bool BeginsAsMail(std::string_view bytes);
