#include "books/book_levels.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "books/loudness.h"

namespace {

constexpr double kSettled = 60;        // seconds of a voice
constexpr double kLoudestChange = 20;  // decibels

}  // namespace

void BookLevels::Measure(const LSoundSource& section, const std::vector<VoiceTurn>& stretches) {
    std::map<std::string, LoudnessMeter> meters;
    const int begin = section->GetPositionSample();
    std::vector<int> block(static_cast<std::size_t>(kMaxBlockFrames) * section->Channels());
    for (std::size_t i = 0; i < stretches.size(); ++i) {
        const int end =
            i + 1 < stretches.size() ? begin + stretches[i + 1].first : section->GetEndSample();
        const std::string& voice = stretches[i].voice;
        const auto known = voices_.find(voice);
        if (known != voices_.end() && known->second.seconds >= kSettled) {
            section->Seek(end);
            continue;
        }
        LoudnessMeter& meter = meters.try_emplace(voice, *section).first->second;
        while (section->GetPositionSample() < end) {
            const int frames = std::min(end - section->GetPositionSample(), kMaxBlockFrames);
            section->Read(block.data(), frames);
            meter.Add(block.data(), frames);
        }
    }
    for (const auto& [voice, meter] : meters) {
        const double loudness = meter.Loudness();
        if (!std::isfinite(loudness) || loudness < kSilence)
            continue;
        Measured& all = voices_[voice];
        const double seconds = meter.Seconds();
        all.power = (all.power * all.seconds + std::pow(10, loudness / 10) * seconds) /
                    (all.seconds + seconds);
        all.seconds += seconds;
    }
}

int BookLevels::ChangeOf(const std::string& voice) const {
    const auto known = voices_.find(voice);
    if (known == voices_.end())
        return 0;
    const double change = kBookLoudness - 10 * std::log10(known->second.power);
    return static_cast<int>(std::lround(100 * std::min(change, kLoudestChange)));
}

std::vector<LevelStretch> BookLevels::LevelsOf(const std::vector<VoiceTurn>& stretches) const {
    std::vector<LevelStretch> levels;
    for (const VoiceTurn& stretch : stretches) {
        const int change = ChangeOf(stretch.voice);
        if (levels.empty() || levels.back().change != change)
            levels.push_back({stretch.first, change});
    }
    return levels;
}

std::string BookLevels::Stored() const {
    std::string lines;
    for (const auto& [voice, measured] : voices_) {
        char numbers[64];
        std::snprintf(numbers, sizeof numbers, "%.17g %.17g ", measured.seconds, measured.power);
        lines += numbers + voice + "\n";
    }
    return lines;
}

void BookLevels::Load(std::string_view lines) {
    voices_.clear();
    while (!lines.empty()) {
        const std::size_t end = std::min(lines.find('\n'), lines.size());
        const std::string line(lines.substr(0, end));
        lines.remove_prefix(std::min(end + 1, lines.size()));
        char* at = nullptr;
        Measured measured;
        measured.seconds = std::strtod(line.c_str(), &at);
        measured.power = std::strtod(at, &at);
        if (*at == ' ' && measured.seconds > 0 && measured.power > 0)
            voices_[at + 1] = measured;
    }
}
