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
// Beside a file of sound.
std::string SubtitlesPath(const std::string& sound, SubtitleForm form);
std::optional<SubtitleForm> SubtitleFormFromName(std::string_view name);

// Where the engine tells it.
struct SubtitleWord {
    long long begin = 0;  // milliseconds
    std::size_t at = 0;   // in the line
};

struct SubtitleLine {
    long long begin = 0;  // milliseconds
    long long end = 0;
    std::size_t sourceBegin = 0;  // bytes of the text that it is of
    std::size_t sourceEnd = 0;
    std::string text;                      // one line
    std::vector<SubtitleWord> words = {};  // some or all, in order
};

// Of a stretch of text, whose begin, end and words' places are bytes of it.
SubtitleLine SubtitleLineOf(std::string_view text, std::size_t begin, std::size_t end,
                            std::vector<SubtitleWord> words);
void Delay(SubtitleLine& line, long long milliseconds);

std::string SubtitleText(SubtitleForm form, const std::vector<SubtitleLine>& lines);

// As they are kept between runs.
std::string StoreSubtitles(const std::vector<SubtitleLine>& lines);
std::vector<SubtitleLine> LoadSubtitles(std::string_view stored);
