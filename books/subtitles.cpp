#include "books/subtitles.h"

#include <array>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr std::array<const char*, 3> kEndings = {"srt", "vtt", "lrc"};

std::string SubtitleTime(long long milliseconds, char point) {
    char text[32];
    std::snprintf(text, sizeof text, "%02lld:%02lld:%02lld%c%03lld", milliseconds / 3600000,
                  milliseconds / 60000 % 60, milliseconds / 1000 % 60, point, milliseconds % 1000);
    return text;
}

// Minutes are not limited.
std::string LyricsTime(long long milliseconds) {
    char text[32];
    std::snprintf(text, sizeof text, "[%02lld:%02lld.%02lld]", milliseconds / 60000,
                  milliseconds / 1000 % 60, milliseconds / 10 % 100);
    return text;
}

// What a player of WebVTT would take for a mark.
std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char character : text) {
        if (character == '&')
            escaped += "&amp;";
        else if (character == '<')
            escaped += "&lt;";
        else if (character == '>')
            escaped += "&gt;";
        else
            escaped += character;
    }
    return escaped;
}

}  // namespace

const char* EndingOf(SubtitleForm form) {
    return kEndings[static_cast<std::size_t>(form)];
}

std::optional<SubtitleForm> SubtitleFormFromName(std::string_view name) {
    for (std::size_t i = 0; i < kEndings.size(); ++i)
        if (name == kEndings[i])
            return static_cast<SubtitleForm>(i);
    return std::nullopt;
}

std::string SubtitleText(SubtitleForm form, const std::vector<SubtitleLine>& lines) {
    std::string text = form == SubtitleForm::kVtt ? "WEBVTT\n\n" : "";
    std::size_t number = 0;
    for (const SubtitleLine& line : lines) {
        switch (form) {
            case SubtitleForm::kSrt:
                text += std::to_string(++number) + "\n" + SubtitleTime(line.begin, ',') + " --> " +
                        SubtitleTime(line.end, ',') + "\n" + line.text + "\n\n";
                break;
            case SubtitleForm::kVtt:
                text += SubtitleTime(line.begin, '.') + " --> " + SubtitleTime(line.end, '.') +
                        "\n" + Escaped(line.text) + "\n\n";
                break;
            case SubtitleForm::kLrc:
                text += LyricsTime(line.begin) + line.text + "\n";
                break;
        }
    }
    return text;
}

std::string StoreSubtitles(const std::vector<SubtitleLine>& lines) {
    std::string stored;
    for (const SubtitleLine& line : lines)
        stored += std::to_string(line.begin) + " " + std::to_string(line.end) + " " +
                  std::to_string(line.sourceBegin) + " " + std::to_string(line.sourceEnd) + " " +
                  line.text + "\n";
    return stored;
}

std::vector<SubtitleLine> LoadSubtitles(std::string_view stored) {
    std::vector<SubtitleLine> lines;
    while (!stored.empty()) {
        const std::size_t end = std::min(stored.find('\n'), stored.size());
        const std::string row(stored.substr(0, end));
        stored.remove_prefix(std::min(end + 1, stored.size()));
        char* at = nullptr;
        SubtitleLine line;
        line.begin = std::strtoll(row.c_str(), &at, 10);
        line.end = std::strtoll(at, &at, 10);
        line.sourceBegin = std::strtoull(at, &at, 10);
        line.sourceEnd = std::strtoull(at, &at, 10);
        line.text = *at == ' ' ? at + 1 : at;
        lines.push_back(line);
    }
    return lines;
}
