// Fetching a component from a local server with all kinds of manners.
#include "formats/component_download.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <thread>

#include "formats/mp3_sink.h"
#include "formats/settings_keys.h"
#include "foundation/settings_keys.h"
#include "tests/formats/format_files.h"

namespace {

// Waits as a dialog does; stops when told to.
class PatientProgress : public LSilentProgress {
public:
    bool IsShown() const { return true; }
    void SetFraction(double fraction) { fractions.push_back(fraction); }
    bool IsToStop() { return isStopped; }
    std::atomic<bool> isStopped = false;
    std::vector<double> fractions;
};

class ComponentDownload : public FormatTest {
protected:
    ComponentDownload() {
        ::setenv("HOME", Path("").c_str(), 1);
        ::setenv("LECTORA_ROOT", Path("root").c_str(), 1);
        ::setenv("MP3EL", FORMATS_TESTS_FOLDER "/../../share/components/mp3el", 1);
        std::filesystem::create_directories(Path("root/opt/quillon/lectora"));
        const LPipePair output = LPipePair::Make();
        const LPipePair input = LPipePair::Make();
        serverInput_ = UniqueFd(::dup(input.writeEnd.Get()));
        ::fcntl(serverInput_.Get(), F_SETFD, FD_CLOEXEC);
        LChildStreams streams;
        streams.input = input.readEnd.Get();
        streams.output = output.writeEnd.Get();
        server_ = LChildProcess::StartShell(
            "exec python3 " FORMATS_TESTS_FOLDER "/../support/component_server.py", streams);
        char port[16] = "";
        EXPECT_TRUE(LSignalObjectRef(output.readEnd.Get()).WaitSignal(60000));
        EXPECT_GT(::read(output.readEnd.Get(), port, sizeof(port) - 1), 0);
        host_ = "127.0.0.1:" + std::string(port, std::strcspn(port, "\n"));
        kComponentsHostSetting.Set("127.0.0.1:1");  // refuses
        kWebHostSetting.Set(host_.c_str());
    }
    ~ComponentDownload() override { serverInput_.Reset(); }

    LProcessResult Get(const char* name) {
        request_ = {};
        request_.name = name;
        return Process(progress_, request_);
    }
    bool IsThere(const std::string& name) const {
        return std::filesystem::exists(Path("components/" + name));
    }

    UniqueFd serverInput_;  // the server ends with it
    LChildProcess server_;
    std::string host_;
    PatientProgress progress_;
    LProcessGetComponentPath request_;
};

TEST_F(ComponentDownload, TakesWhatIsWholeAndNothingElse) {
    const struct {
        const char* name;
        LProcessResult result;
        const char* message;
    } cases[] = {{"good", kProcessDone, ""},
                 {"moved", kProcessDone, ""},
                 {"gone", kProcessFailed, ""},
                 {"half", kProcessFailed, ""},
                 {"unmeasured", kProcessFailed, ""},
                 {"huge", kProcessFailed, ""},
                 {"garbled", kProcessFailed, ""},
                 {"empty", kProcessFailed, ""},
                 {"unwilling", kProcessFailed, "Something is missing."}};
    for (const auto& test : cases) {
        EXPECT_EQ(Get(test.name), test.result) << test.name;
        EXPECT_EQ(IsThere(test.name), test.result == kProcessDone) << test.name;
        EXPECT_EQ(request_.message, test.message) << test.name;
    }
    const std::string path = Path("components/good/good");
    EXPECT_EQ(Get("good"), kProcessDone);
    EXPECT_EQ(request_.path, path);
    EXPECT_FALSE(progress_.fractions.empty());
}

TEST_F(ComponentDownload, ACancelLeavesNothingAndAsksNobodyElse) {
    kComponentsHostSetting.Set(host_.c_str());
    kWebHostSetting.Set("127.0.0.1:1");
    for (const char* name : {"mute", "stalling"}) {
        std::thread user([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            progress_.isStopped = true;
        });
        EXPECT_EQ(Get(name), kProcessStopped) << name;
        user.join();
        progress_.isStopped = false;
        EXPECT_FALSE(IsThere(name));
    }
}

TEST_F(ComponentDownload, AnInstallerWithAnotherSumIsNotRun) {
    const auto sum = ComponentSumSetting("good");
    sum.Set(std::string(64, 'a'));
    EXPECT_EQ(Get("good"), kProcessFailed);
    EXPECT_FALSE(IsThere("good"));
    EXPECT_NE(request_.message, "");
    // Of the script in component_server.py.
    sum.Set("c4daf55006719dedfc48d92cca87041b09b9fd112efd88179f86a325f4c25147");
    EXPECT_EQ(Get("good"), kProcessDone);
}

// The component as it is served, over the real LAME.
TEST_F(ComponentDownload, TheEncoderKeepsTheSound) {
    ASSERT_EQ(Get("mp3el"), kProcessDone) << request_.message;
    const LMp3EncodeSettings vbr{.constantBitRate = false, .vbrMinBitRate = 32};
    const struct {
        const char* name;
        LMp3EncodeSettings settings;
        int rate;
        unsigned char channels;
        int decodedChannels;
    } cases[] = {{"joint", {}, 44100, 2, 2},
                 {"downmix", {.errorProtection = true, .channelMode = 3}, 44100, 2, 1},
                 {"variable", vbr, 22050, 1, 1},
                 {"slow", {.cbrBitRate = 16, .highQuality = false}, 8000, 1, 1},
                 {"fast", {.cbrBitRate = 320, .channelMode = 0}, 44100, 2, 2}};
    for (auto test : cases) {
        SCOPED_TRACE(test.name);
        const std::string path = Path(test.name) + ".mp3";
        LSoundSink sink = OpenMp3Sink(path.c_str(), test.settings, test.rate, test.channels);
        ASSERT_EQ(sink->SampleRate(), test.rate);
        std::vector<int> sound;
        for (int i = 0; i < 2 * test.rate * sink->Channels(); i++) {
            const int frame = i / sink->Channels();
            sound.push_back(static_cast<int>(200000 * std::sin(2765.0 * frame / test.rate)));
        }
        WriteAll(sink, sound);
        ASSERT_EQ(sink->Finish(), 0);
        ASSERT_EQ(std::system(("lame --quiet --decode -t " + path + " " + Path("out.raw")).c_str()),
                  0);
        const std::string bytes = Load(Path("out.raw"));
        const auto channels = static_cast<std::size_t>(test.decodedChannels);
        const std::size_t frames = bytes.size() / 2 / channels;
        ASSERT_NEAR(static_cast<double>(frames), 2.0 * test.rate, 4000);
        double sine = 0;  // the tone's share, whatever the delay
        double cosine = 0;
        double power = 0;
        for (std::size_t i = 4000; i < 8000; i++) {
            const double phase = 2765.0 * static_cast<double>(i) / test.rate;
            std::int16_t sample;
            std::memcpy(&sample, &bytes[i * channels * 2], 2);
            sine += sample * std::sin(phase);
            cosine += sample * std::cos(phase);
            power += std::pow(sample, 2);
        }
        EXPECT_GT((sine * sine + cosine * cosine) / 2000, 0.96 * power);
        EXPECT_NEAR(std::sqrt(power / 4000), 12500 / std::sqrt(2), 1000);
    }
}

}  // namespace
