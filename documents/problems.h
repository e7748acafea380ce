// Sentences about documents that cannot be read, where more than one reader says them.
#pragma once

constexpr const char* kDamagedDocument = "The document is damaged or not complete.";
constexpr const char* kTooLongDocument = "The document holds more text than can be read.";
