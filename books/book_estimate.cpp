#include "books/book_estimate.h"

#include <algorithm>
#include <string_view>

#include "books/book_sections.h"
#include "speech/speech_estimate.h"

namespace {

constexpr int kUsualRate = 22050;
constexpr double kFlacPart = 0.5;  // of WAV, for speech

double BytesASecond(const BookOrder& order) {
    if (order.type == SoundType::kWav)
        return 2.0 * kUsualRate;
    if (order.type == SoundType::kFlac)
        return kFlacPart * 2 * kUsualRate;
    const int kilobits =
        order.kilobits > 0 ? order.kilobits : SpeechKilobits(order.type, kUsualRate);
    return kilobits * 1000 / 8.0;
}

// What comes may be said so much more quickly than what is known.
double QuickestPart(const BookOrder& order) {
    constexpr double kVoicesDiffer = 0.85;
    const std::vector<int>& speeds = order.rules.speeds;
    if (!order.rules.byLanguage || speeds.empty())
        return kVoicesDiffer;
    int slowest = order.rules.SpeedOf(order.voice);
    int fastest = slowest;
    for (std::size_t voice = 0; voice < speeds.size(); ++voice) {
        const int speed = order.rules.SpeedOf(static_cast<int>(voice));
        slowest = std::min(slowest, speed);
        fastest = std::max(fastest, speed);
    }
    return kVoicesDiffer * slowest / fastest;
}

}  // namespace

double SecondsOfChapter(const BookOrder& manner, const BookChapter& chapter) {
    return EstimateSpeech(chapter.letters).seconds * 100 / manner.rules.SpeedOf(manner.voice) +
           manner.secondsBetween;
}

BookEstimate EstimateBook(const BookPlan& plan, const BookOrder& manner) {
    BookEstimate whole;
    for (const BookChapter& chapter : plan.chapters)
        whole.seconds += SecondsOfChapter(manner, chapter);
    whole.bytes = static_cast<long long>(whole.seconds * BytesASecond(manner)) +
                  static_cast<long long>(plan.cover.size());
    // Sections as WAV, and the encoded ones beside what is joined of them.
    constexpr double kSectionsAtOnce = 4;
    const double size = plan.chapters.empty() ? 1 : static_cast<double>(plan.chapters.back().end);
    const double section = std::min(kSectionsAtOnce * LongestSection(size) / size, 1.0);
    whole.bytesMeanwhile =
        static_cast<long long>(section * whole.seconds * 2 * kUsualRate) + whole.bytes;
    return whole;
}

double LeastSeconds(const BookOrder& order) {
    return EstimateBook(order.plan, order).seconds * QuickestPart(order);
}

// By letters: scripts differ in how many bytes these take.
double LeastFrames(const BookOrder& order, std::size_t end, double frames, int rate) {
    constexpr double kSaysSomething = 0.125;  // of the letters
    double before = 0;
    double all = 0;
    double ended = 0;
    for (const BookChapter& chapter : order.plan.chapters) {
        const auto letters = static_cast<double>(chapter.letters);
        all += letters;
        ended += chapter.end <= end ? 1 : 0;
        if (chapter.end <= end)
            before += letters;
        else if (chapter.begin < end)
            before += static_cast<double>(
                LettersIn(std::string_view(order.text).substr(chapter.begin, end - chapter.begin)));
    }
    if (before < kSaysSomething * all || before <= 0)
        return frames;
    const double silence = order.secondsBetween * rate;
    const double left = static_cast<double>(order.plan.chapters.size()) - ended;
    return frames + left * silence +
           std::max(all - before, 0.0) * (frames - ended * silence) / before * QuickestPart(order);
}

int SpeechKilobits(SoundType type, int rate) {
    if (type == SoundType::kOpus)
        return 24;
    if (type == SoundType::kM4b)
        return rate >= 32000 ? 64 : 48;
    return rate >= 32000 ? 64 : rate >= 22050 ? 48 : 32;
}
