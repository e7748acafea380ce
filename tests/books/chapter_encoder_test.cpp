// What encoders of chapters may do wrong, and what is then there.
#include "books/chapter_encoder.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <cstdlib>
#include <filesystem>
#include <vector>

#include "books/codec_frames.h"
#include "books/part_file.h"
#include "formats/aac_sink.h"
#include "formats/wave_file.h"
#include "tests/support/scratch_folder.h"

namespace {

using namespace std::chrono_literals;

TEST(ChapterEncoder, EncodersThatFailAndHangAreToldOfAndLeaveNothing) {
    ::signal(SIGPIPE, SIG_IGN);
    const ScratchFolder folder;
    const std::string home = folder / "home";
    ::setenv("HOME", home.c_str(), 1);
    ::setenv("LECTORA_ROOT", (home + "/root").c_str(), 1);
    std::filesystem::create_directories(home + "/components/mp3el");
    struct Case {
        const char* encoder;
        const char* problem;
    };
    for (const Case& test :
         {Case{"exit 3", "one: the MP3 encoder component failed"},
          Case{"head -c 9000 >/dev/null", "one: the MP3 encoder component failed"},
          Case{"exec sleep 1000", "one: the MP3 encoder component takes no more"},
          Case{"cat >/dev/null; exec sleep 1000", "takes no more sound"}}) {
        SCOPED_TRACE(test.encoder);
        folder.WriteProgram("home/components/mp3el/mp3el", std::string(test.encoder) + "\n");
        {
            LSoundSink sink = LWaveFile::OpenSinkPCM((folder / "one.wav").c_str(), 16000, 1, 16, 0);
            const std::vector<int> block(8000, 9999);
            for (int i = 0; i < 40; ++i)
                sink->Write(block.data(), 8000);
        }
        ChapterToEncode chapter;
        chapter.speech = folder / "one.wav";
        chapter.path = folder / "one.mp3";
        chapter.name = "one";
        LSilentProgress progress;
        ChapterEncoder encoder(1s);
        EXPECT_TRUE(encoder.Add(chapter, progress));
        EXPECT_FALSE(encoder.Finish(progress));
        EXPECT_NE(encoder.Problem().find(test.problem), std::string::npos) << encoder.Problem();
        std::size_t left = 0;
        for (const auto& entry : std::filesystem::directory_iterator(folder / ""))
            left += entry.path().filename() == "home" ? 0 : 1;
        EXPECT_EQ(left, 0U);
    }
}

// AAC has some rates only, and what is not there need not be tried.
TEST(ChapterEncoder, SpeechOfAnyRateBecomesAac) {
    if (!HasFfmpeg())
        GTEST_SKIP() << "without ffmpeg";
    const ScratchFolder folder;
    LWaveFile::OpenSinkPCM((folder / "one.wav").c_str(), 9000, 1, 16, 0)
        ->Write(std::vector<int>(8192, 9999).data(), 8192);
    ChapterToEncode chapter;
    chapter.speech = folder / "one.wav";
    chapter.path = folder / "one.aac";
    chapter.type = SoundType::kM4b;
    LSilentProgress progress;
    ChapterEncoder encoder;
    EXPECT_TRUE(encoder.Add(chapter, progress) && encoder.Finish(progress)) << encoder.Problem();
    const FileHandle file(std::fopen(chapter.path.c_str(), "rbe"));
    ASSERT_TRUE(file);
    CodecFrames frames(file.get(), AdtsFrame);
    ASSERT_TRUE(frames.Next());
    EXPECT_EQ(frames.Frame().rate, 11025);
}

}  // namespace
