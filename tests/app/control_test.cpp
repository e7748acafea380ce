#include <gtest/gtest.h>

#include "app/control/jump_watch.h"
#include "app/control/verb_reply.h"

namespace {

TEST(VerbReply, AnswersOnceAndRefusesWhatIsDropped) {
    std::vector<bool> answers;
    const auto ask = [&answers] {
        return std::make_shared<VerbReply>([&answers](bool isDone, const std::string& text) {
            answers.push_back(isDone);
            EXPECT_EQ(isDone, text.empty());
        });
    };
    VerbReplyRef waiting = ask();
    const std::function<void()> queued = [waiting] { waiting->Done(); };
    waiting.reset();
    queued();
    queued();
    EXPECT_EQ(answers, std::vector<bool>{true});
    ask();
    EXPECT_EQ(answers, (std::vector<bool>{true, false}));
}

TEST(JumpWatch, TellsJumpsFromTimesThatAreToldLateEarlyOrNotAtAll) {
    constexpr std::int64_t kMillisecond = 1000;
    struct Told {
        int time;
        int now;
        double pace;
        bool isJump;
    };
    constexpr Told kTold[] = {
        {0, 0, 2, false},       {500, 250, 2, false},     // in its course, at twice the speed
        {500, 900, 2, false},   {1900, 950, 2, false},    // late, and the next caught up
        {2000, 1000, 0, false}, {2000, 90000, 2, false},  // paused for long
        {4000, 90100, 2, true}, {4200, 90200, 2, false},  // ahead
        {4100, 90300, 2, true},                           // back
    };
    JumpWatch watch;
    for (const Told& told : kTold)
        EXPECT_EQ(watch.IsJump(LSoundTime(told.time), told.pace, told.now * kMillisecond),
                  told.isJump)
            << told.time << " at " << told.now;
}

}  // namespace
