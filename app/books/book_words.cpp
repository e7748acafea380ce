#include "app/books/book_words.h"

#include <cmath>
#include <cstdio>

std::string LengthText(double seconds) {
    const auto whole = static_cast<long long>(std::lround(seconds));
    char text[32];
    std::snprintf(text, sizeof text, "%lld:%02lld:%02lld", whole / 3600, whole / 60 % 60,
                  whole % 60);
    return text;
}

std::string SizeText(double bytes) {
    const double megabytes = bytes / 1e6;
    char text[32];
    if (megabytes >= 1000)
        std::snprintf(text, sizeof text, "%.1f GB", megabytes / 1000);
    else
        std::snprintf(text, sizeof text, megabytes < 10 ? "%.1f MB" : "%.0f MB", megabytes);
    return text;
}

std::string SilenceText(int seconds) {
    return std::to_string(seconds) + (seconds == 1 ? " second" : " seconds") + " after chapters";
}

std::string TimeLeftText(double seconds) {
    if (seconds < 60)
        return "less than a minute left";
    const auto minutes = static_cast<int>(std::lround(seconds / 60));
    if (minutes < 100)
        return std::to_string(minutes) + (minutes == 1 ? " minute left" : " minutes left");
    return std::to_string((minutes + 30) / 60) + " hours left";
}

std::string StateText(const BookState& state, bool isPaused) {
    const std::string left = state.secondsLeft ? ", " + TimeLeftText(*state.secondsLeft) : "";
    const std::string percent = std::to_string(static_cast<int>(state.fraction * 100)) + " %";
    switch (state.stage) {
        case BookStage::kWaiting:
            return isPaused ? "Waiting" : "Waiting" + left;
        case BookStage::kAtWork:
            return isPaused ? "Paused, " + percent : percent + left;
        case BookStage::kDone:
            return state.result.remarks.empty() ? "Done" : "Done, see details";
        default:
            return state.result.problem.empty() ? "Broken off" : "Failed, see details";
    }
}

std::string StateDetails(const BookState& state, const std::string& target) {
    std::string text;
    switch (state.stage) {
        case BookStage::kWaiting:
            return "Waits to become " + target + ".";
        case BookStage::kAtWork:
            return state.label;
        case BookStage::kDone:
            text = "Saved as " + target + ".";
            break;
        case BookStage::kBrokenOff:
            text = state.result.problem.empty() ? "Broken off." : state.result.problem + ".";
            if (state.result.chaptersKept > 0)
                text +=
                    " Finished chapters are kept: " + std::to_string(state.result.chaptersKept) +
                    ". Start goes on with the next.";
            break;
    }
    for (const std::string& remark : state.result.remarks)
        text += "\n" + remark;
    return text;
}
