#include "app/text/edited_places.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "app/text/long_lines.h"

namespace {

// Every word is found where it stands, whatever was done around it, and no other is.
TEST(EditedPlacesTest, WordsThatNobodyTouchedAreFoundWhereTheyAre) {
    std::mt19937 random(1);
    const auto number = [&](std::size_t most) { return random() % (most + 1); };
    std::string then;
    for (int word = 100; word < 300; ++word)
        then += std::to_string(word) + " ";
    for (int turn = 0; turn < 50; ++turn) {
        std::string now = then;
        EditedPlaces places;
        EXPECT_FALSE(places.HasEdits());
        for (int edit = 0; edit < 8; ++edit) {
            const std::size_t at = number(now.size());
            const std::size_t removed = number(std::min<std::size_t>(now.size() - at, 20));
            const std::string added(1 + number(5), 'x');
            now.replace(at, removed, added);
            places.Note(at, removed, added.size());
        }
        for (std::size_t begin = 0; begin < then.size(); begin += 4) {
            const std::string word = then.substr(begin, 3);
            const auto found = places.Now(begin, begin + 3);
            ASSERT_EQ(found.has_value(), now.find(word) != std::string::npos) << word << now;
            if (!found)
                continue;
            EXPECT_EQ(now.substr(*found, 3), word);
            EXPECT_EQ(places.Then(*found + 1), begin + 1);
        }
    }
}

TEST(LongLinesTest, BytesAndPlacesAreThoseOfTheTextWithoutItsBreaks) {
    std::string text;
    for (int word = 0; word < 9000; ++word)
        text += word % 1000 == 0 ? std::string(9000, 'a') + "\n" : "w\xc3\xb6rd ";
    auto buffer = GObjectRef<GtkTextBuffer>::Adopt(gtk_text_buffer_new(nullptr));
    LongLines lines;
    lines.Attach(buffer.Get());
    gtk_text_buffer_set_text(buffer.Get(), text.data(), static_cast<gint>(text.size()));
    GtkTextIter start;
    gtk_text_buffer_get_start_iter(buffer.Get(), &start);
    for (std::size_t bytes = 0; bytes < text.size(); bytes += 4001) {
        if ((static_cast<unsigned char>(text[bytes]) & 0xC0U) == 0x80U)
            ++bytes;
        GtkTextIter at = start;
        lines.Forward(at, bytes);
        EXPECT_EQ(lines.Bytes(start, at), bytes);
        EXPECT_EQ(lines.Text(start, at).size(), bytes);
    }
}

}  // namespace
