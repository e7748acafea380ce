// What the harnesses share: the input as a file, and what one does to a reader.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "sound/sound_source.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// The input in a file of this process, in a memory-backed folder where there is one. It is written
// anew by each object and removed when the process ends.
class FuzzFile {
public:
    FuzzFile(const std::uint8_t* data, std::size_t size);
    const char* Path() const;
    void Cut(std::size_t size) const;  // as if the file shrank while it is read
};

// Opens with `open(path)`, reads from several places in several block sizes, and cuts the file
// half-way through. Aborts on a count that makes no sense, a write past the buffer, and a sample
// whose magnitude no int holds.
void ExerciseSource(const FuzzFile& file, std::size_t size, LSoundSource (*open)(const char* path));
