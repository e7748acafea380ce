#include "app/reading/reading_times.h"

#include <algorithm>
#include <limits>

#include "foundation/whole_characters.h"
#include "speech/speech_estimate.h"

namespace {

// Long texts are longer than a time can tell: then all of it is squeezed into what it can.
constexpr double kMostMs = std::numeric_limits<std::int32_t>::max();

double Share(std::size_t part, std::size_t whole) {
    return whole == 0 ? 0 : static_cast<double>(part) / static_cast<double>(whole);
}

}  // namespace

double UsualPace(std::string_view text) {
    constexpr std::size_t kEnough = 64 << 10;
    const std::string_view beginning = WholeCharacters(text, kEnough);
    return beginning.empty() ? 0
                             : 1000 * EstimateSpeech(LettersIn(beginning)).seconds /
                                   static_cast<double>(beginning.size());
}

ReadingTimes::ReadingTimes(std::size_t size, std::size_t begin, double usualPace)
    : size_(size), begin_(std::min(begin, size)), end_(begin_), usualPace_(usualPace) {
    beginMs_ = static_cast<int>(std::min(usualPace_ * static_cast<double>(size), kMostMs) *
                                Share(begin_, size));
}

void ReadingTimes::SetSpoken(std::size_t end, LSoundTime sound) {
    end_ = std::clamp(end, begin_, size_);
    soundMs_ = sound.Milliseconds();
}

void ReadingTimes::GoOnFrom(std::size_t place) {
    place = std::min(place, size_);
    const int at = TimeOf(place).Milliseconds();
    earlierBytes_ += static_cast<double>(end_ - begin_);
    earlierMs_ += soundMs_;
    begin_ = end_ = place;
    beginMs_ = at;
    soundMs_ = 0;
}

double ReadingTimes::Pace() const {
    const double bytes = earlierBytes_ + static_cast<double>(end_ - begin_);
    const double pace = bytes > 0 ? (earlierMs_ + soundMs_) / bytes : usualPace_;
    const double room = kMostMs - beginMs_ - soundMs_;
    return end_ < size_ ? std::min(pace, room / static_cast<double>(size_ - end_)) : 0;
}

LSoundTime ReadingTimes::TimeOf(std::size_t place) const {
    place = std::min(place, size_);
    double time = 0;
    if (place < begin_)
        time = beginMs_ * Share(place, begin_);
    else if (place < end_)
        time = beginMs_ + soundMs_ * Share(place - begin_, end_ - begin_);
    else
        time =
            beginMs_ + static_cast<double>(soundMs_) + Pace() * static_cast<double>(place - end_);
    return LSoundTime(static_cast<std::int32_t>(std::min(time, kMostMs)));
}

std::size_t ReadingTimes::PlaceAt(LSoundTime time) const {
    const double at = std::max(time.Milliseconds(), 0);
    const double spokenMs = beginMs_ + static_cast<double>(soundMs_);
    double place = 0;
    if (at < beginMs_)
        place = static_cast<double>(begin_) * at / beginMs_;
    else if (at < spokenMs)
        place = static_cast<double>(begin_) +
                static_cast<double>(end_ - begin_) * (at - beginMs_) / soundMs_;
    else
        place = Pace() > 0 ? static_cast<double>(end_) + (at - spokenMs) / Pace()
                           : static_cast<double>(size_);
    return place < static_cast<double>(size_) ? static_cast<std::size_t>(place) : size_;
}
