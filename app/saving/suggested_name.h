// The name that a file chooser suggests for what is made of a text.
#pragma once

#include <string>

// Without a folder and an ending: the name of the document that the text is from, else the text's
// first words. file is the document's path, empty when there is none.
std::string SuggestedName(const std::string& text, const std::string& file);
