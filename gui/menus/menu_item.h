// Rows of menu tables.
#pragma once

#include <cstdint>
#include <span>

// command -1 with a text begins a menu or a sub-menu, whose rows follow; -1 without a text ends it.
// 0 without a text is a separator. Below -1 with a text: a check item of the negated command. All
// else: an item of that command. "&" in a text marks the mnemonic, "&&" is an ampersand.
struct LMenuItem {
    std::int16_t command;
    const char* text;
};
using LMenuItems = std::span<const LMenuItem>;
