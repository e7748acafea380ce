// What is true of every document that a reader gives.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "documents/document.h"
#include "fuzz/fuzz_file.h"

void MustBeText(std::string_view text);
// Its text, its structure, and the contents made of them.
void MustBeSound(const Document& document);

// The rules as they are at first, with all and with nothing left out.
const std::vector<DocumentRules>& RulesToTry();

inline std::string_view InputOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}
// The input's parts between bytes of 0x1f, which no document holds; as many as are asked for.
std::vector<std::string> PartsOf(std::string_view input, std::size_t count);

// An archive of these files, as they are: a fuzzer cannot guess checksums.
std::string ArchiveOf(const std::vector<std::pair<std::string, std::string>>& files);
// Reads the archive by all rules.
void TryArchive(const std::vector<std::pair<std::string, std::string>>& files);
