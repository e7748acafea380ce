// What an EPUB book says about itself: which of its files are chapters, and their order.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The package file's name in "META-INF/container.xml"; empty when it is none.
std::string EpubPackageName(std::string_view container);

// The names in the archive of the chapters, in reading order, from the package file of this name.
// Contents pages and what is shown beside the text are no chapters.
std::vector<std::string> EpubChapters(std::string_view packageName, std::string_view package);

// The names of the files that "META-INF/encryption.xml" lists.
std::vector<std::string> EpubEncryptedFiles(std::string_view encryption);
