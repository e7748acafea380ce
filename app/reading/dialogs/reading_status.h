// What the status bar says of a reading, and what a screen reader says.
#pragma once

#include <functional>
#include <string>

#include "app/reading/narrator.h"

// "Reading aloud: 0:00:12 of about 0:00:27 (Esc stops)"; empty when there is nothing to say.
std::string StatusOf(const ReadingNews& news);

// A receiver of the narrator's news. Pause, stop, end and a jump are said in a word, once, and
// nothing over the sentence with which a reading begins. GUI thread.
class ReadingStatus {
public:
    struct Line {
        std::function<void(const char* text)> show;
        std::function<void(const char* text)> tell;  // news to the user: screen readers say it
        std::function<void(const char* text)> say;   // to these alone
        std::function<std::string()> more;           // stands behind the place
    };
    // atRest: what stands there when there is nothing else to say; borrowed.
    ReadingStatus(Narrator& narrator, Line line, const char* atRest);

private:
    void Hear(const ReadingNews& news);
    std::string WithMore(std::string status) const;
    void HearEnd(const ReadingNews& news);
    void SaySoon(const std::string& words);

    Narrator& narrator_;
    const Line line_;
    const char* const atRest_;
    std::string route_;        // told
    bool isWaitTold_ = false;  // of this reading; every further one would be talked over
    LGuiTimer saying_;
    Narrator::Subscription news_;
};
