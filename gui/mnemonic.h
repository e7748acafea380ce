// Texts of controls with the letter that reaches them from the keyboard.
#pragma once

#include <string>

// "&" marks the letter behind it, and "&&" stands for itself.
std::string MnemonicText(const char* text);     // as GTK takes it, with "_"
std::string WithoutMnemonic(const char* text);  // as it reads
