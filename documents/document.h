// The text of a document, whatever kind of file it is in.
#pragma once

#include <functional>
#include <string>
#include <string_view>

struct Document {
    std::string text;     // UTF-8 without NUL; empty when there is a problem
    std::string problem;  // why it cannot be read, in a sentence for the user; empty when it was
};

// Asked now and then during long work; true ends it.
using StopTest = std::function<bool()>;

// Reads a whole regular file of at most kLargestTextFile bytes. Kinds are known by what the file
// holds, not by its name. Any thread.
Document LoadDocument(const char* path, const StopTest& isToStop = {});

// The same from memory.
Document ReadDocument(std::string_view bytes, const StopTest& isToStop = {});
