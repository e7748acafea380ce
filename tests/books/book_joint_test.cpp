// What is joined, and what no file can hold.
#include "books/book_joint.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

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
    const std::vector<std::string> parts = {folder / "one.flac", folder / "two.flac"};
    for (const std::string& part : parts)
        WriteFlacOf(part, 0x40000000);
    for (const SoundType type : {SoundType::kFlac, SoundType::kWav}) {
        EXPECT_EQ(JoinBook(type, parts, folder / "book").problem, kBookTooLong);
        EXPECT_FALSE(std::filesystem::exists(folder / "book"));
    }
}

}  // namespace
