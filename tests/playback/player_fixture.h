// A player on a virtual card, with a listener that writes down what it is told.
#pragma once

#include <glib.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "playback/sound_player.h"
#include "tests/support/memory_sound.h"
#include "tests/support/virtual_card.h"

class LogListener : public LSoundPlayerNotify {
public:
    void spntfPlay(int id) override { Add("play", id); }
    void spntfStop(int id) override { Add("stop", id); }
    void spntfCue(int id) override { Add("cue", id); }
    void spntfTime(LSoundTime time, int id) override {
        Add("time " + std::to_string(time.Milliseconds()), id);
    }
    void spntfLevel(const LDBMC& levels, int id) override {
        std::string text = "level";
        for (int channel = 0; channel < levels.Channels(); ++channel)
            text += " " + std::to_string(levels[channel].Value());
        Add(text, id);
    }

    bool Has(const std::string& entry) const {
        return std::find(log.begin(), log.end(), entry) != log.end();
    }

    std::vector<std::string> log;
    std::function<void(const std::string&)> onEntry;

private:
    void Add(const std::string& entry, int id) {
        EXPECT_EQ(id, 7);
        EXPECT_EQ(std::this_thread::get_id(), thread_);
        log.push_back(entry);
        if (onEntry)
            onEntry(entry);
    }

    const std::thread::id thread_ = std::this_thread::get_id();
};

class PlayerTest : public testing::Test {
protected:
    // Runs the main loop until the condition holds, twenty seconds at most.
    template <typename Condition>
    static bool RunUntil(Condition condition) {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!condition() && std::chrono::steady_clock::now() < limit) {
            while (g_main_context_iteration(nullptr, FALSE)) {
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return condition();
    }
    bool RunUntilTold(const std::string& entry) {
        return RunUntil([&] { return listener_.Has(entry); });
    }

    // Each frame tells its number; every channel holds the same.
    static std::vector<int> Numbered(int frames, int channels = 1) {
        std::vector<int> samples;
        for (int frame = 0; frame < frames; ++frame)
            samples.insert(samples.end(), static_cast<std::size_t>(channels), frame % 32000 * 16);
        return samples;
    }
    static LSoundSource NumberedSource(int frames, int rate = 16000, unsigned char channels = 1) {
        return LSoundSource(new MemorySource(Numbered(frames, channels), rate, channels));
    }
    static std::vector<std::int16_t> NumbersFrom(int first, int end) {
        std::vector<std::int16_t> numbers;
        for (int number = first; number < end; ++number)
            numbers.push_back(static_cast<std::int16_t>(number % 32000));
        return numbers;
    }

    VirtualCards cards_;
    LogListener listener_;
    std::unique_ptr<LSoundPlayer> player_ =
        std::make_unique<LSoundPlayer>(&listener_, 7, LSoundPlayDevice(0));
};
