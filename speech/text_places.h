// Places of a text to read on from: where its sentences and paragraphs begin. Each question looks
// at some kilobytes around the place, so that it costs the same in a text of any length.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

// All places are bytes of the text (UTF-8). Any thread.

// Of the sentence that stands at the place, else of the first one behind it; at the end of the
// text of the last one. 0 where there is no sentence.
std::size_t SentenceAt(std::string_view text, std::size_t place);
// Of the last one that begins before the place, and of the first that begins behind it.
std::optional<std::size_t> SentenceBefore(std::string_view text, std::size_t place);
std::optional<std::size_t> SentenceBehind(std::string_view text, std::size_t place);

// The same of paragraphs, which begin behind an empty line; in a text without one each line does,
// unless it goes on with the sentence of the line before.
std::optional<std::size_t> ParagraphBefore(std::string_view text, std::size_t place);
std::optional<std::size_t> ParagraphBehind(std::string_view text, std::size_t place);

// Of the word that stands at the place, else of the next one; the text's size where there is none.
std::size_t WordAt(std::string_view text, std::size_t place);
