// What an installation places where, in the words of a user.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct LInstallPart {
    const char* what;
    std::string where;  // a folder of this machine
    std::int64_t bytes = 0;
};

// The parts that the tree has, in an order to be read; empty when it cannot be read.
std::vector<LInstallPart> InstallParts(const std::string& tree);

// As "12.3 MB".
std::string SizeText(std::int64_t bytes);
