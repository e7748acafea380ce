// The system's packages that the program works with, and having them installed.
#pragma once

#include <span>
#include <string>
#include <vector>

constexpr const char* kEnginePackage = "festival";
constexpr const char* kFirstVoicePackage = "festvox-kallpc16k";
constexpr const char* kEncoderPackage = "lame";
constexpr const char* kRecognitionPackage = "tesseract-ocr";

// A voice that Debian has for the speech engine; with the package of its language, behind a blank,
// where it is mute without.
struct LVoicePackage {
    const char* language;
    const char* speaker;
    const char* package;
};
// In the order of the languages.
std::span<const LVoicePackage> VoicePackages();

bool IsPackageInstalled(const char* packages);  // one, or several with blanks between

// What to type in a terminal to install these.
std::string InstallCommandToType(const std::vector<std::string>& packages);

// The shell command that installs these after asking for the password: through the desktop's
// package service, else as root by the prompt that the desktop has. Empty where neither is there.
std::string InstallCommandToRun(const std::vector<std::string>& packages);
