#include "app/reading/kept_places.h"

#include "app/reading/kept_bookmarks.h"

#include <gmock/gmock.h>

#include "tests/support/scratch_folder.h"

namespace {

using testing::Optional;

KeptPlace PlaceIn(const std::string& text, const std::string& sentence, const std::string& key) {
    return {.key = key,
            .digest = KeyOfText(text),
            .size = text.size(),
            .place = text.find(sentence),
            .sentence = sentence};
}

TEST(KeptPlacesTest, TheNewestAreThereAtTheNextStart) {
    const ScratchFolder home;
    const ScopedVariable variable("HOME", home.Path().c_str());
    const std::string text = "One. Two. Three. Four.";
    {
        KeptPlaces places;
        for (std::size_t number = 0; number < KeptPlaces::kMost + 5; ++number)
            EXPECT_EQ(places.Keep(PlaceIn(text, "Three.", std::to_string(number))), 0);
        EXPECT_EQ(places.Keep(PlaceIn(text, "Two.", "7")), 0);
        EXPECT_EQ(places.Forget("9"), 0);
    }
    const KeptPlaces places;
    for (const char* gone : {"0", "4", "9"})
        EXPECT_FALSE(places.Find(gone)) << gone;
    ASSERT_TRUE(places.Find("5"));
    EXPECT_EQ(places.Find("5")->Percent(), 45);
    EXPECT_EQ(places.Find("7")->sentence, "Two.");
    EXPECT_EQ(places.Find("7")->digest, KeyOfText(text));
    // What was forgotten stays so, and what comes later is kept alone.
    KeptPlaces before;
    ForgetKeptPlaces();
    EXPECT_FALSE(before.Find("7"));
    EXPECT_EQ(before.Keep(PlaceIn(text, "Two.", "new")), 0);
    EXPECT_FALSE(before.Find("7") || KeptPlaces().Find("7"));
    EXPECT_TRUE(before.Find("new") && KeptPlaces().Find("new"));
    // Whatever stands in the file.
    for (const char* file : {"reading-places", "bookmarks"})
        home.Write(std::string(".quillon/lectora/") + file, std::string("a\0b\0-1\0x", 8));
    EXPECT_FALSE(KeptPlaces().Find("a"));
    EXPECT_TRUE(KeptBookmarks().Of("a").empty());
}

TEST(KeptBookmarksTest, EachDocumentHasItsOwnInTheOrderOfTheText) {
    const ScratchFolder home;
    const ScopedVariable variable("HOME", home.Path().c_str());
    const std::string text = "One is first. Two is second. Three is third.";
    std::string longName = "H";
    while (longName.size() <= KeptBookmarks::kMostName)
        longName += "é";
    {
        KeptBookmarks kept;
        for (const char* sentence : {"Three", "One", "Two"})
            EXPECT_EQ(kept.Set({.at = PlaceIn(text, sentence, "book")}), 0);
        for (std::size_t number = 3; number < KeptBookmarks::kMost; ++number)
            EXPECT_EQ(kept.Set({.at = PlaceIn(text, "Two", std::to_string(number))}), 0);
        EXPECT_EQ(kept.Set({.at = PlaceIn(text, "Two", "one too many")}), ENOBUFS);
        EXPECT_EQ(kept.Remove({.at = PlaceIn(text, "Two", "3")}), 0);
        EXPECT_EQ(kept.Set({.at = PlaceIn(text, "Three", KeyOfWindowText(text))}), 0);
        std::string gone;
        EXPECT_EQ(kept.Set({.at = PlaceIn(text, "Two", "3")}, &gone), 0) << "makes room";
        EXPECT_EQ(gone, "Three");
        EXPECT_EQ(kept.Set({.at = PlaceIn(text, "Two", "book"), .name = longName}), 0)
            << "another name";
        EXPECT_EQ(kept.Remove({.at = PlaceIn(text, "One", "book")}), 0);
    }
    const std::vector<Bookmark> bookmarks = KeptBookmarks().Of("book");
    ASSERT_EQ(bookmarks.size(), 2u);
    EXPECT_EQ(bookmarks[0].Title(), longName.substr(0, KeptBookmarks::kMostName - 1))
        << "whole characters";
    EXPECT_EQ(bookmarks[1].Title(), "Three");
    EXPECT_THAT(FindPlace(bookmarks[1].at, "New. " + text), Optional(34u));
    ForgetKeptBookmarks();
    EXPECT_FALSE(KeptBookmarks().IsFull());
}

TEST(KeptBookmarksTest, ATextInNoFileKeepsItsOwnThroughItsEdits) {
    const ScratchFolder home;
    const ScopedVariable variable("HOME", home.Path().c_str());
    const std::string text = "The ferries were late. The harbour slept.";
    const std::string edited = "That night the ferries ran. The harbour slept.";
    const std::string other = "Nothing of the kind.";
    const auto titles = [](const std::string& of) {
        KeptBookmarks kept;
        EXPECT_EQ(kept.TakeAlong(KeyOfWindowText(of), of), 0);
        std::vector<std::string> found;
        for (const Bookmark& each : kept.Of(KeyOfWindowText(of)))
            found.push_back(each.Title());
        return found;
    };
    for (const char* sentence : {"The ferries were late.", "The harbour slept."})
        EXPECT_EQ(KeptBookmarks().Set({.at = PlaceIn(text, sentence, KeyOfWindowText(text))}), 0);
    EXPECT_EQ(KeptBookmarks().Set({.at = PlaceIn(text, "The harbour slept.", "a file's")}), 0);
    EXPECT_THAT(titles(other), testing::IsEmpty());
    EXPECT_THAT(titles(edited), testing::ElementsAre("The harbour slept."));
    EXPECT_THAT(titles(text), testing::SizeIs(2)) << "undone";
    const std::string longer = "A new beginning. " + text;
    EXPECT_THAT(titles(longer), testing::SizeIs(2));
    EXPECT_EQ(
        KeptBookmarks().Set({.at = PlaceIn(longer, "A new beginning.", KeyOfWindowText(longer))}),
        0);
    EXPECT_THAT(titles(longer), testing::SizeIs(3)) << "each has its own place by now";
    EXPECT_THAT(KeptBookmarks().Of("a file's"), testing::SizeIs(1));
}

TEST(KeptPlacesTest, TheSentenceIsFoundAgainInAChangedText) {
    const std::string text = "It rains. It pours. It rains. The end.";
    KeptPlace kept = PlaceIn(text, "It rains.", "key");
    kept.place = text.rfind("It rains.");
    EXPECT_THAT(FindPlace(kept, text), Optional(20u));
    EXPECT_THAT(FindPlace(kept, "New. " + text), Optional(25u)) << "the nearest";
    EXPECT_THAT(FindPlace(kept, "It rains."), Optional(0u));
    EXPECT_EQ(FindPlace(kept, "It snows."), std::nullopt);
    kept.sentence.clear();
    EXPECT_EQ(FindPlace(kept, "It snows."), std::nullopt);
}

}  // namespace
