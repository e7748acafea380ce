// The text in time with the sound, for players.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

enum class SubtitleForm { kSrt, kVtt, kLrc };
inline constexpr SubtitleForm kSubtitleForms[] = {SubtitleForm::kSrt, SubtitleForm::kVtt,
                                                  SubtitleForm::kLrc};

const char* EndingOf(SubtitleForm form);  // "srt"
std::optional<SubtitleForm> SubtitleFormFromName(std::string_view name);

struct SubtitleLine {
    long long begin = 0;  // milliseconds
    long long end = 0;
    std::size_t sourceBegin = 0;  // bytes of the text that it is of
    std::size_t sourceEnd = 0;
    std::string text;  // one line
};

std::string SubtitleText(SubtitleForm form, const std::vector<SubtitleLine>& lines);

// As they are kept between runs.
std::string StoreSubtitles(const std::vector<SubtitleLine>& lines);
std::vector<SubtitleLine> LoadSubtitles(std::string_view stored);
