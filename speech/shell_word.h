#pragma once

#include <string>
#include <string_view>

// The word as the shell reads it back: quoted when it holds anything but A-Z a-z 0-9 _ . / -
std::string ShellWord(std::string_view word);
