// Pauses what is read for who falls asleep over it.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "app/reading/narrator.h"
#include "gui/gui_timer.h"

enum class SleepAt : std::uint8_t { kNever, kIn15, kIn30, kIn60, kEndOfChapter };
constexpr std::size_t kSleepChoices = 5;

// In minutes, which pass whether something is read or not, or where the next chapter begins (the
// next heading in a text without chapters); where there is none, at the end of the text. The last
// ten seconds fade. Then the reading is paused, and goes on from there as after every pause. A
// receiver of the narrator's news. GUI thread.
class SleepTimer {
public:
    using Milliseconds = std::chrono::milliseconds;
    using Clock = std::function<Milliseconds()>;
    struct Listener {
        std::function<void(const char*)> tell;  // a sentence for the user
        std::function<void()> changed;          // Chosen() is another
    };
    SleepTimer(Narrator& narrator, Listener listener, Clock clock = Now);
    SleepTimer(const SleepTimer&) = delete;
    SleepTimer& operator=(const SleepTimer&) = delete;

    void Choose(SleepAt when);  // from now on; told
    void ChooseNext();
    SleepAt Chosen() const { return chosen_; }
    // "sleeps in 14 min"; empty when it never does.
    std::string Status() const;

    static Milliseconds Now();  // never goes back

private:
    void Hear(const ReadingNews& news);
    void Look();
    std::optional<Milliseconds> Left() const;
    Milliseconds LeftTo(std::size_t place) const;  // as it is heard
    void Sleep();
    void Set(SleepAt when);
    std::size_t EndOfChapter() const;

    Narrator& narrator_;
    const Listener listener_;
    const Clock clock_;
    SleepAt chosen_ = SleepAt::kNever;
    Milliseconds end_{0};           // of the minutes
    std::size_t passed_ = 0;        // a chapter that was as good as reached when it was chosen
    std::size_t endOfChapter_ = 0;  // when it was looked at last
    bool isNearEnd_ = false;        // of that, then
    LGuiTimer next_;
    Narrator::Subscription news_;
};
