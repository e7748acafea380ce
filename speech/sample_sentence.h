#pragma once

#include <string>
#include <string_view>

// Something to hear a voice by: a sentence in its language, else its numbers, which nearly every
// voice says.
std::string SampleSentence(std::string_view languageTag);
