#include "foundation/gdk/queued_notify.h"

#include <gdk/gdk.h>
#include <gtest/gtest.h>

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
    int calls = 0;
    std::function<void()> also = [] {};

private:
    void EvNotify() override {
        ++calls;
        const std::function<void()> own = also;  // may delete this object
        own();
    }
};

int gEntered = 0;

TEST(QueuedNotify, EveryCallRunsOnceInTheLoopInsideTheGdkLock) {
    gdk_threads_set_lock_functions([] { ++gEntered; }, [] { --gEntered; });
    gdk_threads_init();
    Notified notified;
    notified.also = [] { EXPECT_EQ(gEntered, 1); };
    std::thread([&] { notified.QueueNotify(); }).join();
    EXPECT_EQ(notified.calls, 0);
    RunPendingIdles();
    EXPECT_EQ(notified.calls, 1);
    EXPECT_EQ(gEntered, 0);

    notified.also = [] {};
    std::thread worker([&] {
        for (int i = 0; i < 500; ++i)
            notified.QueueNotify();
    });
    while (notified.calls < 501)
        RunPendingIdles();
    worker.join();

    auto* goes = new Notified;  // deletes itself with another call pending
    goes->also = [&] {
        delete goes;
        goes = nullptr;
    };
    goes->QueueNotify();
    goes->QueueNotify();
    RunPendingIdles();
    EXPECT_EQ(goes, nullptr);
}

class Receiver final : public LQueuedNotifyDataHandler {
public:
    void EvNotifyData(std::uint32_t code, const void* data, std::uint32_t size) override {
        log += std::to_string(code) + ":" +
               (data ? std::string(static_cast<const char*>(data), size) : "none") + " ";
    }
    std::string log;
};

TEST(QueuedNotify, MessagesCarryTheirOwnCopiesInOrderToAHandlerThatIsThere) {
    EXPECT_EQ(LQueuedNotifyDataSender().NotifyData(1, "x", 1), 0u);
    Receiver receiver;
    const LQueuedNotifyDataSender sender(&receiver);
    char text[] = "first";
    EXPECT_NE(sender.NotifyData(1, text, 5), 0u);
    text[0] = 'F';
    {
        Receiver goes;
        LQueuedNotifyDataSender(&goes).NotifyData(9, "x", 1);
    }
    std::thread([&] {
        sender.NotifyData(2, text, 5);
        sender.NotifyData(0xFFFFFFFFu, nullptr, 0);
    }).join();
    EXPECT_EQ(receiver.log, "");
    RunPendingIdles();
    EXPECT_EQ(receiver.log, "1:first 2:First 4294967295:none ");
}

}  // namespace
