#include "foundation/gdk/queued_notify.h"

#include <gdk/gdk.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>

namespace {

void RunPendingIdles() {
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
}

class Notified final : public LThreadQueuedNotify {
public:
    using LThreadQueuedNotify::QueueNotify;
    std::atomic<int> newest{0};
    int calls = 0;
    int seen = -1;
    std::thread::id thread;
    std::function<void()> also;

private:
    void EvNotify() override {
        ++calls;
        seen = newest;
        thread = std::this_thread::get_id();
        const std::function<void()> own = also;  // may delete this object
        if (own)
            own();
    }
};

class QueuedNotify : public ::testing::Test {
protected:
    static void SetUpTestSuite() { gdk_threads_init(); }
};

TEST_F(QueuedNotify, EveryCallRunsOnTheLoopsThreadAndSeesTheNewestValue) {
    Notified notified;
    std::thread worker([&] {
        for (int i = 1; i <= 3; ++i) {
            notified.newest = i;
            notified.QueueNotify();
        }
    });
    worker.join();
    EXPECT_EQ(notified.calls, 0);
    RunPendingIdles();
    EXPECT_EQ(notified.calls, 3);
    EXPECT_EQ(notified.seen, 3);
    EXPECT_EQ(notified.thread, std::this_thread::get_id());
    RunPendingIdles();
    EXPECT_EQ(notified.calls, 3) << "a call runs once";
}

TEST_F(QueuedNotify, ACallRunsInsideTheGdkLock) {
    Notified notified;
    std::atomic<bool> entered{false};
    bool enteredDuringCall = true;
    std::thread contender;
    notified.also = [&] {
        contender = std::thread([&] {
            gdk_threads_enter();
            entered = true;
            gdk_threads_leave();
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        enteredDuringCall = entered;
    };
    notified.QueueNotify();
    RunPendingIdles();
    contender.join();
    EXPECT_FALSE(enteredDuringCall);
    EXPECT_TRUE(entered);
}

TEST_F(QueuedNotify, QueueingFromACallAndWhileTheLoopRuns) {
    Notified notified;
    notified.also = [&] {
        if (notified.calls < 5)
            notified.QueueNotify();
    };
    notified.QueueNotify();
    std::atomic<bool> done{false};
    std::thread worker([&] {
        for (int i = 0; i < 500; ++i)
            notified.QueueNotify();
        done = true;
    });
    while (!done)
        RunPendingIdles();
    worker.join();
    RunPendingIdles();
    EXPECT_EQ(notified.calls, 505);
}

TEST_F(QueuedNotify, DestructionTakesBackWhatIsPending) {
    auto* notified = new Notified;
    notified->QueueNotify();
    notified->QueueNotify();
    delete notified;
    RunPendingIdles();

    notified = new Notified;  // one that deletes itself with another call pending
    notified->also = [&] {
        delete notified;
        notified = nullptr;
    };
    notified->QueueNotify();
    notified->QueueNotify();
    RunPendingIdles();
    EXPECT_EQ(notified, nullptr);
}

class Receiver final : public LQueuedNotifyDataHandler {
public:
    void EvNotifyData(std::uint32_t code, const void* data, std::uint32_t size) override {
        log += std::to_string(code) + ":" +
               (data ? std::string(static_cast<const char*>(data), size) : "none") + " ";
    }
    std::string log;
};

TEST_F(QueuedNotify, MessagesCarryTheirOwnCopiesInOrder) {
    Receiver receiver;
    const LQueuedNotifyDataSender sender(&receiver);
    char text[] = "first";
    EXPECT_NE(sender.NotifyData(1, text, 5), 0u);
    text[0] = 'F';
    std::thread([&] {
        sender.NotifyData(2, text, 5);
        sender.NotifyData(0xFFFFFFFFu, nullptr, 0);
    }).join();
    EXPECT_EQ(receiver.log, "");
    RunPendingIdles();
    EXPECT_EQ(receiver.log, "1:first 2:First 4294967295:none ");
}

TEST_F(QueuedNotify, WithoutAHandlerNothingIsSent) {
    EXPECT_EQ(LQueuedNotifyDataSender().NotifyData(1, "x", 1), 0u);
    Receiver stays;
    {
        Receiver goes;
        LQueuedNotifyDataSender(&goes).NotifyData(1, "x", 1);
        LQueuedNotifyDataSender(&stays).NotifyData(2, "y", 1);
    }
    RunPendingIdles();
    EXPECT_EQ(stays.log, "2:y ");
}

}  // namespace
