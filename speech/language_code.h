#pragma once

#include <string>

// The three letters of ISO 639-2 for a language tag ("de-AT": "deu"); empty when it is unknown.
std::string ThreeLetterLanguage(const std::string& tag);
