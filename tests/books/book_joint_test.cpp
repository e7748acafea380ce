// What is joined, and what no file can hold.
#include "books/book_joint.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "formats/opus_sink.h"
#include "formats/sndfile_file.h"
#include "tests/support/scratch_folder.h"

namespace {

// A FLAC file that says it has so many frames, of which it holds a few.
void WriteFlacOf(const std::string& path, unsigned int frames) {
    {
        const LSoundSink sink = OpenFlacSink(path.c_str(), 16000, 1);
        const std::vector<int> block(4096, 9999);
        sink->Write(block.data(), 4096);
        ASSERT_EQ(sink->Finish(), 0);
    }
    constexpr long kCount = 4 + 4 + 14;  // behind mark and block header: the count's lower 32 bits
    std::FILE* const file = std::fopen(path.c_str(), "r+b");
    ASSERT_EQ(std::fseek(file, kCount, SEEK_SET), 0);
    for (int shift = 24; shift >= 0; shift -= 8)
        std::fputc(static_cast<int>(frames >> shift & 0xFFU), file);
    std::fclose(file);
}

TEST(BookJoint, ChaptersThatAreTogetherLongerThanAFileCanBeAreRefusedBeforeAnyIsWritten) {
    const ScratchFolder folder;
    const std::vector<BookPart> parts = {{folder / "one.flac"}, {folder / "two.flac"}};
    for (const BookPart& part : parts)
        WriteFlacOf(part.path, 0x40000000);
    for (const SoundType type : {SoundType::kFlac, SoundType::kWav}) {
        LSilentProgress progress;
        EXPECT_EQ(JoinBook(type, parts, {}, folder / "book", progress).problem, kBookTooLong);
        EXPECT_FALSE(std::filesystem::exists(folder / "book"));
    }
}

// Stopped when it is asked for the second time.
struct SoonStopped : LSilentProgress {
    int asked = 0;
    bool IsToStop() override { return ++asked > 1; }
};

TEST(BookJoint, IsStoppedWhileItGoesOnAndByACutPart) {
    const ScratchFolder folder;
    const std::vector<int> second(16000, 9999);
    for (const LSoundSink& sink : {OpenFlacSink((folder / "flac").c_str(), 16000, 1),
                                   OpenOpusSink((folder / "opus").c_str(), 1, 24)}) {
        for (int seconds = 0; seconds < 30; ++seconds)
            sink->Write(second.data(), 16000);
        ASSERT_EQ(sink->Finish(), 0);
    }
    {
        std::string frame("\xFF\xF3\x60\xC4", 4);  // MPEG-2, 48 kbit/s, 22,050 Hz: 156 bytes
        frame.resize(156);
        std::ofstream mp3(folder / "mp3");
        for (int frames = 0; frames < 2000; ++frames)
            mp3 << frame;
    }
    for (const auto& [type, part] : {std::pair{SoundType::kFlac, "flac"},
                                     {SoundType::kOpus, "opus"},
                                     {SoundType::kMp3, "mp3"}}) {
        SoonStopped stopped;
        EXPECT_TRUE(JoinBook(type, {{folder / part}}, {}, folder / "book", stopped).isStopped)
            << part;
        EXPECT_EQ(stopped.asked, 2) << part;
        LSilentProgress progress;
        EXPECT_EQ(JoinBook(type, {{folder / part}}, {}, folder / "book", progress).problem, "")
            << part;
    }
    // Of a part that is not whole nothing is made, and it goes.
    for (const auto& [size, frames] : {std::pair{2000 * 156, 2000 * 576}, {2000 * 156 - 1, 0}}) {
        std::filesystem::resize_file(folder / "mp3", static_cast<std::uintmax_t>(size));
        std::filesystem::copy_file(folder / "mp3", folder / "cut");
        LSilentProgress progress;
        EXPECT_NE(JoinBook(SoundType::kMp3, {{folder / "cut"}}, {frames, 22050}, folder / "book",
                           progress)
                      .problem,
                  "");
        EXPECT_FALSE(std::filesystem::exists(folder / "cut"));
    }
}

}  // namespace
