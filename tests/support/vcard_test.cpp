// The virtual sound card against the rules of a kernel card, seen through ALSA's own interface.
#include <alsa/asoundlib.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/virtual_card.h"

namespace {

struct Granted {
    unsigned int rate = 0;
    unsigned int channels = 0;
    snd_pcm_uframes_t period = 0;
    snd_pcm_uframes_t buffer = 0;

    bool operator==(const Granted&) const = default;
};

struct PcmCloser {
    void operator()(snd_pcm_t* pcm) const { snd_pcm_close(pcm); }
};
using Pcm = std::unique_ptr<snd_pcm_t, PcmCloser>;

int OpenCard(const char* name, Pcm& pcm) {
    snd_pcm_t* raw = nullptr;
    const int result = snd_pcm_open(&raw, name, SND_PCM_STREAM_PLAYBACK, 0);
    pcm.reset(raw);
    return result;
}

// The player's own order of requests, which is what a card's rules are tried by.
Granted Configure(snd_pcm_t* pcm, unsigned int rate, unsigned int channels) {
    snd_pcm_hw_params_t* params = nullptr;
    snd_pcm_hw_params_malloc(&params);
    snd_pcm_hw_params_any(pcm, params);
    unsigned int periods = 2;
    int direction = 0;
    Granted granted{rate, channels, 8192, 0};
    EXPECT_EQ(snd_pcm_hw_params_set_access(pcm, params, SND_PCM_ACCESS_RW_INTERLEAVED), 0);
    EXPECT_EQ(snd_pcm_hw_params_set_format(pcm, params, SND_PCM_FORMAT_S16_LE), 0);
    EXPECT_EQ(snd_pcm_hw_params_set_rate_near(pcm, params, &granted.rate, &direction), 0);
    EXPECT_EQ(snd_pcm_hw_params_set_period_size_near(pcm, params, &granted.period, &direction), 0);
    EXPECT_EQ(snd_pcm_hw_params_set_periods_near(pcm, params, &periods, &direction), 0);
    granted.buffer = granted.period * periods / 4;
    EXPECT_EQ(snd_pcm_hw_params_set_buffer_size_near(pcm, params, &granted.buffer), 0);
    EXPECT_EQ(snd_pcm_hw_params_set_channels_near(pcm, params, &granted.channels), 0);
    EXPECT_EQ(snd_pcm_hw_params(pcm, params), 0);
    snd_pcm_hw_params_free(params);
    return granted;
}

std::vector<std::int16_t> Ramp(std::size_t samples) {
    std::vector<std::int16_t> ramp(samples);
    for (std::size_t index = 0; index < samples; ++index)
        ramp[index] = static_cast<std::int16_t>(index * 7919);
    return ramp;
}

// Writes until the card answers an error; 0 when it took everything.
snd_pcm_sframes_t WriteAll(snd_pcm_t* pcm, const std::vector<std::int16_t>& mono) {
    std::size_t done = 0;
    while (done < mono.size()) {
        const snd_pcm_sframes_t count = snd_pcm_writei(
            pcm, mono.data() + done, std::min<std::size_t>(mono.size() - done, 5512));
        if (count < 0)
            return count;
        done += static_cast<std::size_t>(count);
    }
    return 0;
}

TEST(VirtualCardTest, GrantsOnlyWhatItIsToldAndKeepsTwoPeriods) {
    struct Case {
        const char* settings;
        unsigned int rate, channels;
        Granted granted;
    };
    const Case cases[] = {
        {"rates 48000\nchannels 2\n", 22050, 1, {48000, 2, 8192, 16384}},
        {"rates 16000\nchannels 1\n", 16000, 1, {16000, 1, 8192, 16384}},
        {"rates 8000 44100\n", 40000, 2, {44100, 2, 8192, 16384}},
        {"", 11025, 1, {11025, 1, 8192, 16384}},
        {"", 40, 1, {4000, 1, 8192, 16384}},
    };
    VirtualCards cards;
    for (const Case& test : cases) {
        SCOPED_TRACE(test.settings);
        cards.Insert(0, test.settings);
        Pcm pcm;
        ASSERT_EQ(OpenCard("hw:0", pcm), 0);
        EXPECT_EQ(Configure(pcm.get(), test.rate, test.channels), test.granted);
    }
}

TEST(VirtualCardTest, ReceivesEverySampleAtThePaceOfItsClock) {
    VirtualCards cards;
    cards.Insert(1, "speed 8\n");
    Pcm pcm;
    ASSERT_EQ(OpenCard("hw:1", pcm), 0);
    Configure(pcm.get(), 16000, 1);
    const std::vector<std::int16_t> ramp = Ramp(48000);
    ASSERT_EQ(WriteAll(pcm.get(), ramp), 0);
    snd_pcm_sframes_t delay = 0;
    ASSERT_EQ(snd_pcm_delay(pcm.get(), &delay), 0);
    EXPECT_GT(delay, 0);
    EXPECT_LE(delay, 16384);
    EXPECT_EQ(snd_pcm_drain(pcm.get()), 0);
    pcm.reset();
    EXPECT_EQ(cards.Received(1), ramp);
    const std::vector<CardEvent> events = cards.Events(1);
    EXPECT_EQ(events.back().name, "close");
    EXPECT_EQ(events.back().played, 48000u);
    // 48000 frames at eight times 16 kHz last 375 ms.
    EXPECT_GE(events.back().microseconds - events.front().microseconds, 375000);
}

TEST(VirtualCardTest, RunsDryAndGoesOnAfterPrepare) {
    VirtualCards cards;
    cards.Insert(0, "speed 100\n");
    Pcm pcm;
    ASSERT_EQ(OpenCard("hw:0", pcm), 0);
    Configure(pcm.get(), 16000, 1);
    const std::vector<std::int16_t> ramp = Ramp(4000);
    ASSERT_EQ(WriteAll(pcm.get(), ramp), 0);
    snd_pcm_sframes_t delay = 0;
    while (snd_pcm_delay(pcm.get(), &delay) == 0) {
    }
    EXPECT_EQ(WriteAll(pcm.get(), ramp), -EPIPE);
    EXPECT_EQ(snd_pcm_prepare(pcm.get()), 0);
    EXPECT_EQ(WriteAll(pcm.get(), ramp), 0);
    EXPECT_EQ(cards.Received(0).size(), 8000u);
}

TEST(VirtualCardTest, FailsAsTold) {
    struct Case {
        const char* fault;
        int opened;
        snd_pcm_sframes_t written;
        int reopened;
    };
    const Case cases[] = {
        {"fault busy", -EBUSY, 0, -EBUSY},       {"fault underrun 9000", 0, -EPIPE, 0},
        {"fault suspend 9000", 0, -ESTRPIPE, 0}, {"fault vanish 9000", 0, -ENODEV, -ENODEV},
        {"fault vanish 0", 0, -ENODEV, -ENODEV}, {"fault again 9000", 0, -EAGAIN, 0},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.fault);
        VirtualCards cards;
        cards.Insert(0, std::string("speed 4\n") + test.fault + "\n");
        Pcm pcm;
        ASSERT_EQ(OpenCard("hw:0", pcm), test.opened);
        if (pcm) {
            Configure(pcm.get(), 22050, 1);
            EXPECT_EQ(WriteAll(pcm.get(), Ramp(40000)), test.written);
        }
        pcm.reset();
        EXPECT_EQ(OpenCard("hw:0", pcm), test.reopened);
    }
    VirtualCards none;
    Pcm pcm;
    EXPECT_EQ(OpenCard("hw:0", pcm), -ENOENT);
}

TEST(VirtualCardTest, ResumesASuspendedStreamWhereItStopped) {
    VirtualCards cards;
    cards.Insert(0, "speed 4\nfault suspend 9000\n");
    Pcm pcm;
    ASSERT_EQ(OpenCard("hw:0", pcm), 0);
    Configure(pcm.get(), 22050, 1);
    const std::vector<std::int16_t> ramp = Ramp(40000);
    ASSERT_EQ(WriteAll(pcm.get(), ramp), -ESTRPIPE);
    ASSERT_EQ(snd_pcm_resume(pcm.get()), 0);
    EXPECT_EQ(WriteAll(pcm.get(), ramp), 0);
}

TEST(VirtualCardTest, AMixerSetsItsElements) {
    VirtualCards cards;
    cards.Insert(0, "name Left Card\nelement Master 0 87\nelement Mic Capture -10 20\n");
    snd_mixer_t* mixer = nullptr;
    ASSERT_EQ(snd_mixer_open(&mixer, 0), 0);
    ASSERT_EQ(snd_mixer_attach(mixer, "hw:0"), 0);
    ASSERT_EQ(snd_mixer_selem_register(mixer, nullptr, nullptr), 0);
    ASSERT_EQ(snd_mixer_load(mixer), 0);
    std::string names;
    for (snd_mixer_elem_t* element = snd_mixer_first_elem(mixer); element != nullptr;
         element = snd_mixer_elem_next(element)) {
        names += std::string(snd_mixer_selem_get_name(element)) + ";";
        EXPECT_EQ(snd_mixer_selem_set_playback_volume_all(element, 5), 0);
    }
    snd_mixer_close(mixer);
    EXPECT_EQ(names, "Master;Mic Capture;");
    EXPECT_EQ(cards.Mixer(0), "Master 5 5\nMic Capture 5 5\n");
}

}  // namespace
