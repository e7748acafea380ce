// MP3 output: the encoder's command line, and the sink that feeds it.
#include <signal.h>

#include "formats/mp3_component.h"
#include "formats/mp3_sink.h"
#include "tests/formats/format_files.h"

namespace {

class Mp3Test : public FormatTest {
protected:
    Mp3Test() {
        ::signal(SIGPIPE, SIG_IGN);
        std::filesystem::create_directory(home_);
        ::setenv("HOME", home_.c_str(), 1);
        ::setenv("LECTORA_ROOT", (home_ + "/root").c_str(), 1);
    }

    void InstallEncoder(const std::string& base, const std::string& script) const {
        std::filesystem::create_directories(Path(base + "/components/mp3el"));
        folder_.WriteProgram(base + "/components/mp3el/mp3el", script + "\n");
    }
    const std::string home_ = Path("home");
};

TEST_F(Mp3Test, CommandLineFollowsTheSettings) {
    InstallEncoder("home", "exit 0");
    const std::string encoder = "\"" + home_ + "/components/mp3el/mp3el\"";
    struct Case {
        LMp3EncodeSettings settings;
        int inRate;
        unsigned char inChannels;
        int rate;
        int channels;
        std::string options;
    };
    const LMp3EncodeSettings vbr{.constantBitRate = false, .vbrMinBitRate = 8};
    const LMp3EncodeSettings fast{.highQuality = false, .errorProtection = true, .channelMode = 7};
    std::vector<Case> cases = {
        {{}, 44100, 2, 44100, 2, " -m j -b 128 -h"},
        {fast, 48000, 2, 48000, 2, " -m j -p -b 128"},
        {{.channelMode = 3}, 44100, 2, 44100, 2, " -a -m m -b 128 -h"},
        {{.channelMode = 0}, 8000, 2, 8000, 2, " -m s -b 128 -h"},
        {{.channelMode = 2}, 22050, 1, 22050, 1, " -m m -b 128 -h"},
        {{.cbrBitRate = 16, .channelMode = 2}, 8000, 2, 8000, 1, " -m m -b 16 -h"},
        {vbr, 44100, 2, 22050, 1, " -m m -v -b 8 -B 128 -V 4"},
        {{.cbrBitRate = 192}, 22050, 2, 44100, 2, " -m j -b 192 -h"},
        {{.cbrBitRate = 31}, 22050, 2, 22050, 2, " -m j -b 31 -h"},
    };
    const int rates[][2] = {{96000, 48000}, {44099, 44100}, {31999, 32000}, {23999, 22050},
                            {16001, 22050}, {15999, 11025}, {8000, 8000},   {6000, 8000}};
    for (const auto& rate : rates)
        cases.push_back({{}, rate[0], 2, rate[1], 2, " -m j -b 128 -h"});
    for (Case& c : cases) {
        char line[kMp3CommandLineSize];
        int rate = 0;
        unsigned char channels = 0;
        ASSERT_TRUE(Mp3CreateEncoderCommandLine(line, rate, channels, "/tmp/a b.mp3", c.settings,
                                                c.inRate, c.inChannels));
        const std::string thousandths = std::to_string(1000 + c.rate % 1000).substr(1);
        EXPECT_EQ(line, encoder + c.options + " -r -x -s " + std::to_string(c.rate / 1000) + "." +
                            thousandths + " -S - \"/tmp/a b.mp3\"");
        EXPECT_EQ(rate, c.rate) << line;
        EXPECT_EQ(channels, c.channels) << line;
    }
}

TEST_F(Mp3Test, NoNameReachesTheShellAsCodeAndNoLineIsCut) {
    InstallEncoder("home", "for a; do :; done; cat > \"$a\"");
    const std::string path = home_ + "/$(touch x) `touch y` \"z\" \\ .mp3";
    LMp3EncodeSettings settings;
    {
        LSoundSink sink = OpenMp3Sink(path.c_str(), settings, 44100, 2);
        ASSERT_EQ(sink->Status(), 0);
        sink->Write(std::vector<int>(20).data(), 10);
    }
    EXPECT_EQ(std::filesystem::file_size(path), 40u);
    EXPECT_FALSE(std::filesystem::exists("x") || std::filesystem::exists("y"));
    EXPECT_NE(
        OpenMp3Sink(std::string(kMp3CommandLineSize, 'n').c_str(), settings, 44100, 2)->Status(),
        0);
}

TEST_F(Mp3Test, HomeComponentWinsOverTheSharedOneAndNoneIsAnErrorSink) {
    char path[260];
    EXPECT_FALSE(GetComponentPath("mp3el", path));
    EXPECT_TRUE(std::filesystem::is_empty(path)) << "the stray file that a download goes on to use";
    std::filesystem::remove(path);
    LMp3EncodeSettings settings;
    const LSoundSink sink = OpenMp3Sink((home_ + "/a.mp3").c_str(), settings, 44100, 2);
    EXPECT_TRUE(sink->Status() == 1 && sink->Channels() == 1);
    for (const char* base : {"home/root/opt/quillon", "home"}) {
        InstallEncoder(base, "exit 0");
        EXPECT_TRUE(GetComponentPath("mp3el", path));
        EXPECT_EQ(path, Path(base) + "/components/mp3el/mp3el");
    }
}

}  // namespace
