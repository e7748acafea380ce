// Sentences about documents that cannot be read, where more than one reader says them.
#pragma once

#include <string>
#include <utility>

#include "documents/document.h"

constexpr const char* kDamagedDocument = "The document is damaged or not complete.";
constexpr const char* kTooLongDocument = "The document holds more text than can be read.";
constexpr const char* kProtectedDocument =
    "The document is protected by a password or against copying.";

inline Document DocumentProblem(std::string sentence) {
    Document document;
    document.problem = std::move(sentence);
    return document;
}
