// Waiting for what has no event of its own.
#pragma once

#include <chrono>
#include <thread>

// Whether the condition came true within 20 seconds.
template <typename Condition>
bool Eventually(Condition condition) {
    for (int i = 0; i < 2000 && !condition(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return condition();
}
