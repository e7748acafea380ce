// What becomes of a book whose chapters are all spoken.
#include "books/book_run.h"

#include <gmock/gmock.h>

#include "books/book_sections.h"
#include "books/book_work.h"
#include "formats/opus_sink.h"
#include "formats/sndfile_file.h"
#include "tests/support/scratch_folder.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr int kRunRate = 16000;

BookOrder OrderOf(std::size_t chapters, SoundType type, const std::string& target) {
    Document document;
    for (std::size_t i = 0; i < chapters; ++i) {
        document.headings.push_back({document.text.size(), document.text.size() + 4, 1});
        document.text += "Tide\n\nSome words.\n\n";
    }
    BookOrder order;
    order.plan = PlanBook(document, "Of the Sea");
    order.text = document.text;
    order.type = type;
    order.target = target;
    return order;
}

// As a run leaves it that was ended just then: all the sound is in the first section.
void LeaveSpoken(const BookOrder& order, const std::string& ending, const std::string& sound) {
    BookWork work(order);
    ASSERT_EQ(work.Open(), "");
    const std::size_t sections = SectionsOf(order).size();
    ASSERT_EQ(sections, order.plan.chapters.size());
    for (std::size_t i = 0; i < sections; ++i) {
        SpokenSection spoken;
        spoken.rate = kRunRate;
        spoken.begin = i == 0 ? 0 : kRunRate;
        spoken.frames = i == 0 ? kRunRate : 0;
        std::ofstream(work.Path(i, "spoken")) << StoreSpoken(spoken);
        std::ofstream(work.Path(i, ending.c_str())) << (i == 0 || order.isReadAlong ? sound : "");
        if (!order.isReadAlong)
            continue;
        std::ofstream(work.Path(i, "made")) << "";
        std::ofstream(work.Path(i, "lines")) << StoreSubtitles({{0, 900, 0, 4, "Tide"}});
    }
}

TEST(BookRun, ChaptersThatPlayersDoNotShowAreToldOnce) {
    const ScratchFolder folder;
    const std::vector<int> second(kRunRate, 9999);
    const std::vector<int> resampled(kOpusRate, 9999);
    for (const LSoundSink& sink : {OpenFlacSink((folder / "flac").c_str(), kRunRate, 1),
                                   OpenOpusSink((folder / "opus").c_str(), 1, 24)}) {
        const auto& sound = sink->SampleRate() == kRunRate ? second : resampled;
        sink->Write(sound.data(), static_cast<int>(sound.size()));
        ASSERT_EQ(sink->Finish(), 0);
    }
    const auto remarks = [&folder](std::size_t chapters, SoundType type, const char* sound) {
        const BookOrder order = OrderOf(chapters, type, folder / (std::string("book.") + sound));
        LeaveSpoken(order, "part", folder.Read(sound));
        LSilentProgress progress;
        const BookResult result = MakeBook(order, progress);
        EXPECT_TRUE(result.isDone) << result.problem;
        std::filesystem::remove(order.target);
        return result.remarks;
    };
    const auto told = ElementsAre(HasSubstr("only the first 1000 of the 1001 chapters"));
    EXPECT_THAT(remarks(1000, SoundType::kFlac, "flac"), IsEmpty());
    EXPECT_THAT(remarks(1001, SoundType::kFlac, "flac"), told);
    EXPECT_THAT(remarks(1001, SoundType::kOpus, "opus"), told);
}

struct StoppedAt : LSilentProgress {
    explicit StoppedAt(int number) : at(number) {}
    bool IsToStop() override { return ++asked >= at; }
    int at;
    int asked = 0;
};

TEST(BookRun, IsBrokenOffWhileSoundIsCopiedIntoAnEpubAndLeavesNothingHalf) {
    const ScratchFolder folder;
    BookOrder order = OrderOf(2, SoundType::kMp3, folder / "book.epub");
    order.isReadAlong = true;
    LeaveSpoken(order, "chapter", std::string(4U << 20, 'x'));  // 64 blocks
    for (const int at : {40, 100, 200}) {
        StoppedAt stop(at);
        const BookResult result = MakeBook(order, stop);
        EXPECT_EQ(result.problem, "");
        EXPECT_FALSE(result.isDone);
        EXPECT_EQ(result.chaptersKept, 2U);
        EXPECT_LT(stop.asked - at, 10) << "it goes on";
        for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
            EXPECT_EQ(entry.path().filename(), ".book.epub.lectora-book");
    }
    StoppedAt never(100'000);
    EXPECT_TRUE(MakeBook(order, never).isDone);
    EXPECT_GT(never.asked, 250) << "so all were stopped amid the copy";
    EXPECT_GT(std::filesystem::file_size(order.target), 8U << 20);
}

}  // namespace
