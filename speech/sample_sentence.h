#pragma once

#include <string>
#include <string_view>

// Something to hear a voice by: a sentence in its language, else its numbers, which every engine
// says.
std::string SampleSentence(std::string_view languageTag);
