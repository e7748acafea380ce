// One tells, any number hear, and none of them has to outlive the other.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

// Who tells news of a kind. One thread; news are values, so that each receiver hears each of them
// as it was, and in the order in which they came about: what is told from within a call is told to
// everybody once all have heard what came before. Receivers may come, go and tell from within a
// call, and may end the broadcast itself. They run no main loop of their own in it, which would
// keep the others from what comes next.
template <typename News>
class LBroadcast {
    struct Receiver {
        std::function<void(const News&)> call;  // empty once it has gone
    };
    struct Hall {
        std::vector<std::shared_ptr<Receiver>> receivers;
        std::deque<News> waiting;
        bool isTelling = false;
    };

public:
    // A receiver's hold on what it hears: a member, which takes the receiver out when it goes.
    class Subscription {
    public:
        Subscription() = default;
        Subscription(LBroadcast& broadcast, std::function<void(const News&)> call) {
            Begin(broadcast, std::move(call));
        }
        ~Subscription() { End(); }
        Subscription(const Subscription&) = delete;
        Subscription& operator=(const Subscription&) = delete;

        void Begin(LBroadcast& broadcast, std::function<void(const News&)> call) {
            End();
            receiver_ = std::make_shared<Receiver>(Receiver{std::move(call)});
            hall_ = broadcast.hall_;
            broadcast.hall_->receivers.push_back(receiver_);
        }
        void End() {
            if (!receiver_)
                return;
            receiver_->call = nullptr;
            if (const auto hall = hall_.lock())
                std::erase(hall->receivers, receiver_);
            receiver_.reset();
        }

    private:
        std::shared_ptr<Receiver> receiver_;
        std::weak_ptr<Hall> hall_;
    };

    LBroadcast() = default;
    ~LBroadcast() { hall_->waiting.clear(); }
    LBroadcast(const LBroadcast&) = delete;
    LBroadcast& operator=(const LBroadcast&) = delete;

    void Tell(News news) {
        hall_->waiting.push_back(std::move(news));
        if (hall_->isTelling)
            return;
        const std::shared_ptr<Hall> hall = hall_;  // this object may go meanwhile
        hall->isTelling = true;
        while (!hall->waiting.empty()) {
            const News told = std::move(hall->waiting.front());
            hall->waiting.pop_front();
            for (const auto& receiver : std::vector(hall->receivers)) {
                const auto call = receiver->call;  // may go with its own receiver
                if (call)
                    call(told);
            }
        }
        hall->isTelling = false;
    }

private:
    const std::shared_ptr<Hall> hall_ = std::make_shared<Hall>();
};
