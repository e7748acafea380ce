#include "speech/language_code.h"

#include <unicode/uloc.h>

std::string ThreeLetterLanguage(const std::string& tag) {
    return uloc_getISO3Language(tag.c_str());
}
