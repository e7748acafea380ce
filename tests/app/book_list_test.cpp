// Unfinished audiobooks: what they are made of at the next start, and where they lie.
#include "app/books/book_list.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>

#include "app/books/book_text.h"
#include "app/settings_keys.h"
#include "app/text/kept_text.h"
#include "books/book_key.h"
#include "books/book_work.h"
#include "foundation/files/file_io.h"
#include "foundation/files/private_file.h"
#include "tests/support/scratch_folder.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;

constexpr char kTale[] = "Tide\nSome words.\nEbb\nOther words.\n";

BookEntry EditedTale() {
    Document original;
    original.cover = std::string("\x89PNG\r\n\x1a\n\0\t", 10);
    KeptStructure structure;
    structure.outline = {{"Tide", 0, 0, true}, {"Ebb", 17, 1, false}};
    structure.languages = {{0, "de"}};
    return EntryOfText(kTale, structure, original, "Of the Sea");
}

struct BookTexts : testing::Test {
    const ScratchFolder home;
    const ScopedVariable variable{"HOME", home.Path().c_str()};
    ~BookTexts() override { kKeepTextSetting.Set(true); }
};

TEST_F(BookTexts, ComeBackAsTheyWereAndOnlyWhole) {
    BookEntry entry = EditedTale();
    ASSERT_EQ(StoreBookText(entry), 0);
    const std::string path = PrivateFilePath(entry.keptAs.c_str());
    struct stat info = {};
    ASSERT_EQ(::stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0600U);
    std::optional<BookEntry> loaded = LoadBookText(entry.keptAs, "Of the Sea");
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->documentsCover, entry.documentsCover);
    BookOrder before;
    BookOrder after;
    before.target = after.target = "/chapters/";
    for (const auto& [from, order] : {std::pair{&entry, &before}, std::pair{&*loaded, &after}}) {
        order->text = from->text;
        order->plan = from->plan;
        order->rules.marks = from->marks;
    }
    EXPECT_EQ(BookKey(before), BookKey(after)) << "what is finished would be of no use";
    EXPECT_EQ(TagsKey(before), TagsKey(after));
    std::ofstream(path, std::ios::app) << "x";
    EXPECT_FALSE(LoadBookText(entry.keptAs, ""));
    StoreKeptBooks({});
    EXPECT_NE(::stat(path.c_str(), &info), 0);
}

TEST_F(BookTexts, AreNotKeptWhereNothingIsToBe) {
    BookEntry early = EditedTale();
    ASSERT_EQ(StoreBookText(early), 0);
    kKeepTextSetting.Set(false);
    ForgetKeptText();
    EXPECT_FALSE(LoadBookText(early.keptAs, ""));
    BookEntry late = EditedTale();
    EXPECT_EQ(StoreBookText(late), 0);
    EXPECT_EQ(late.keptAs, "");
}

TEST_F(BookTexts, ThatCannotBeKeptAreTold) {
    home.Write(".quillon", "in the way");
    BookList list;
    list.Add(EditedTale(), false);
    BookEntry other = EditedTale();
    other.path = "/tale.html";
    list.Add(other, false);
    BookChoices choices;
    choices.type = SoundType::kFlac;
    choices.folder = home.Path();
    list.TakenTargets(choices);
    EXPECT_THAT(list.Start(choices, 0, {}, false),
                AllOf(HasSubstr("Of the Sea: its text cannot be kept"), HasSubstr("The list")));
}

// With a finished section.
void LeaveUnfinished(const std::string& target, const std::string& key) {
    std::filesystem::create_directory(WorkFolderFor(target));
    for (const auto& [name, content] : {std::pair{"key", key}, {"00001.part", std::string()}})
        std::ofstream(WorkFolderFor(target) + name) << content;
}

struct BegunBook : BookTexts {
    BookChoices choices;
    BookList list;
    BegunBook() {
        choices.folder = home.Path();
        list.Add(EditedTale(), false);
    }
    // As a book of that type.
    std::string KeyAs(SoundType type) {
        choices.type = type;
        BookOrder order = OrderOf(choices, 0);
        order.plan = list.At(0).plan;
        order.text = list.At(0).text;
        order.rules.marks = list.At(0).marks;
        order.target = home / "any.file";
        return BookKey(order);
    }
};

TEST_F(BegunBook, GoesOnInItsOwnFormatUnderAFreeNameOrIsNotStarted) {
    const std::string key = KeyAs(SoundType::kFlac);
    LeaveUnfinished(home / "Of the Sea.wav", key);
    LeaveUnfinished(home / "Of the Sea 2.flac", "another's");
    home.Write("Of the Sea.flac", "a finished one");
    choices.type = SoundType::kWav;
    list.TakenTargets(choices);
    ASSERT_THAT(list.BegunOtherwiseThan(choices, 0).canGoOn, HasSubstr("another format"));
    const std::string lock = WorkFolderFor(home / "Of the Sea.wav") + "key";
    {
        const UniqueFd other = OpenRegularFile(lock.c_str(), O_RDWR);
        ASSERT_EQ(0, ::flock(other.Get(), LOCK_EX));
        EXPECT_THAT(list.Start(choices, 0, {}, true), HasSubstr("cannot be moved"));
        EXPECT_TRUE(list.IsOpen(0));
        EXPECT_EQ(ContentOf(lock), key);
    }
    EXPECT_EQ(list.Start(choices, 0, {}, true), "");
    EXPECT_EQ(list.At(0).target, home / "Of the Sea 3.flac");
    EXPECT_FALSE(home.Has(".Of the Sea.wav.lectora-book"));
}

TEST_F(BegunBook, IsNamedBesideAnotherThatHasItsPlace) {
    const std::string key = KeyAs(SoundType::kFlac);
    LeaveUnfinished(home / "Old.flac", key);
    LeaveUnfinished(home / "Of the Sea.flac", "another's");
    list.Change(0).begunAt = home / "Old.flac";
    list.TakenTargets(choices);
    EXPECT_THAT(list.BegunOtherwiseThan(choices, 0).cannot,
                AllOf(HasSubstr("another text"), HasSubstr("begun as " + (home / "Old.flac"))));
}

}  // namespace
