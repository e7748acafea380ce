#include "speech/voice_variants.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>

namespace {

// Of the process, as the voice table is.
struct Variants {
    std::mutex mutex;
    std::map<std::string, std::vector<VoiceVariant>> byEngine;
};
Variants& TheVariants() {
    static Variants variants;
    return variants;
}

}  // namespace

void KnowVariants(const std::string& engine, std::vector<VoiceVariant> variants) {
    std::ranges::sort(variants, {}, &VoiceVariant::title);
    Variants& all = TheVariants();
    const std::lock_guard<std::mutex> lock(all.mutex);
    all.byEngine[engine] = std::move(variants);
}

std::vector<VoiceVariant> VariantsOf(const std::string& engine) {
    Variants& all = TheVariants();
    const std::lock_guard<std::mutex> lock(all.mutex);
    return all.byEngine[engine];
}
