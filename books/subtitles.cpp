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
    std::snprintf(text, sizeof text, "%02lld:%02lld.%02lld", milliseconds / 60000,
                  milliseconds / 1000 % 60, milliseconds / 10 % 100);
    return text;
}

// What a player of WebVTT would take for a mark.
std::string Escaped(std::string_view text) {
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

// The line with the times of its words before them, and the marks around them: later than its own
// beginning and before its end, each later than the one before, as players want them.
std::string WithWordTimes(const SubtitleLine& line, std::string (*timeOf)(long long),
                          std::string (*written)(std::string_view)) {
    std::string text;
    std::size_t at = 0;
    long long last = line.begin;
    for (const SubtitleWord& word : line.words) {
        const std::size_t blank = line.text.rfind(' ', word.at);
        const std::size_t begin = blank == std::string::npos ? 0 : blank + 1;
        if (word.begin <= last || word.begin >= line.end || begin < at)
            continue;
        text += written(std::string_view(line.text).substr(at, begin - at)) + "<" +
                timeOf(word.begin) + ">";
        at = begin;
        last = word.begin;
    }
    return text + written(std::string_view(line.text).substr(at));
}

std::string CueTime(long long milliseconds) {
    return SubtitleTime(milliseconds, '.');
}

std::string AsItIs(std::string_view text) {
    return std::string(text);
}

// A row behind its line's, which begins with a number.
constexpr std::string_view kWordsRow = "words";

std::vector<SubtitleWord> LoadWords(const char* at) {
    std::vector<SubtitleWord> words;
    for (char* end = nullptr;; at = end) {
        SubtitleWord word;
        word.begin = std::strtoll(at, &end, 10);
        if (end == at)
            return words;
        word.at = std::strtoull(end, &end, 10);
        words.push_back(word);
    }
}

}  // namespace

SubtitleLine SubtitleLineOf(std::string_view text, std::size_t begin, std::size_t end,
                            std::vector<SubtitleWord> words) {
    SubtitleLine line;
    line.sourceBegin = begin;
    line.sourceEnd = end;
    auto word = words.begin();
    for (std::size_t at = begin; at < end; ++at) {
        const bool isBlank = static_cast<unsigned char>(text[at]) <= ' ';
        for (; word != words.end() && word->at <= at; ++word)
            line.words.push_back({word->begin, line.text.size()});
        if (!isBlank)
            line.text += text[at];
        else if (!line.text.empty() && line.text.back() != ' ')
            line.text += ' ';
    }
    while (!line.text.empty() && line.text.back() == ' ')
        line.text.pop_back();
    return line;
}

void Delay(SubtitleLine& line, long long milliseconds) {
    line.begin += milliseconds;
    line.end += milliseconds;
    for (SubtitleWord& word : line.words)
        word.begin += milliseconds;
}

const char* EndingOf(SubtitleForm form) {
    return kEndings[static_cast<std::size_t>(form)];
}

std::string SubtitlesPath(const std::string& sound, SubtitleForm form) {
    const std::size_t slash = sound.rfind('/');
    const std::size_t dot = sound.rfind('.');
    const bool hasEnding =
        dot != std::string::npos && (slash == std::string::npos || dot > slash + 1);
    return sound.substr(0, hasEnding ? dot : std::string::npos) + "." + EndingOf(form);
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
                        "\n" + WithWordTimes(line, CueTime, Escaped) + "\n\n";
                break;
            case SubtitleForm::kLrc:
                text += "[" + LyricsTime(line.begin) + "]" +
                        WithWordTimes(line, LyricsTime, AsItIs) + "\n";
                break;
        }
    }
    return text;
}

std::string StoreSubtitles(const std::vector<SubtitleLine>& lines) {
    std::string stored;
    for (const SubtitleLine& line : lines) {
        stored += std::to_string(line.begin) + " " + std::to_string(line.end) + " " +
                  std::to_string(line.sourceBegin) + " " + std::to_string(line.sourceEnd) + " " +
                  line.text + "\n";
        if (line.words.empty())
            continue;
        stored += kWordsRow;
        for (const SubtitleWord& word : line.words)
            stored += " " + std::to_string(word.begin) + " " + std::to_string(word.at);
        stored += "\n";
    }
    return stored;
}

std::vector<SubtitleLine> LoadSubtitles(std::string_view stored) {
    std::vector<SubtitleLine> lines;
    while (!stored.empty()) {
        const std::size_t end = std::min(stored.find('\n'), stored.size());
        const std::string row(stored.substr(0, end));
        stored.remove_prefix(std::min(end + 1, stored.size()));
        if (row.starts_with(kWordsRow)) {
            if (!lines.empty())
                lines.back().words = LoadWords(row.c_str() + kWordsRow.size());
            continue;
        }
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
