#include "books/book_estimate.h"

#include <algorithm>

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

int SpeechKilobits(SoundType type, int rate) {
    if (type == SoundType::kOpus)
        return 24;
    if (type == SoundType::kM4b)
        return rate >= 32000 ? 64 : 48;
    return rate >= 32000 ? 64 : rate >= 22050 ? 48 : 32;
}
