// The other speakers that an engine can make of each of its voices. Any thread.
#pragma once

#include <string>
#include <vector>

struct VoiceVariant {
    std::string name;   // as the engine takes it
    std::string title;  // for people
};

void KnowVariants(const std::string& engine, std::vector<VoiceVariant> variants);
// In the order of their titles; empty for an engine that has none.
std::vector<VoiceVariant> VariantsOf(const std::string& engine);
