// The texts that lectora-say is given.
#pragma once

#include <string>

#include "documents/document.h"

// The document in this file, or on standard input when the path is empty. What is missing of it has
// been said.
Document ReadSayDocument(const std::string& path, const DocumentRules& rules);

// For messages about it.
std::string NameOfText(const std::string& path);
