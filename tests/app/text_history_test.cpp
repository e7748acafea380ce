#include "app/text/text_history.h"

#include <gtest/gtest.h>

#include <random>

#include "app/text/find_text.h"

namespace {

class TextHistoryTest : public testing::Test {
protected:
    TextHistoryTest() {
        history_.Attach(buffer_.Get(), lines_);
        lines_.Attach(buffer_.Get());
    }
    void Type(const char* text) {
        for (const char* letter = text; *letter != '\0'; ++letter)
            gtk_text_buffer_insert_interactive_at_cursor(buffer_.Get(), letter, 1, TRUE);
    }
    GObjectRef<GtkTextBuffer> buffer_ =
        GObjectRef<GtkTextBuffer>::Adopt(gtk_text_buffer_new(nullptr));
    LongLines lines_;
    TextHistory history_;
};

TEST_F(TextHistoryTest, UndoesWordByWordAndEachReplacedTextWhole) {
    Type("one two");
    GtkTextIter end;
    gtk_text_buffer_get_end_iter(buffer_.Get(), &end);
    for (int count = 0; count < 2; ++count)
        gtk_text_buffer_backspace(buffer_.Get(), &end, TRUE, TRUE);
    gtk_text_buffer_begin_user_action(buffer_.Get());
    gtk_text_buffer_set_text(buffer_.Get(), "a file", -1);
    gtk_text_buffer_end_user_action(buffer_.Get());
    const char* const texts[] = {"a file", "one t", "one two", "one ", ""};
    for (const char* text : texts) {
        EXPECT_EQ(text, lines_.Text());
        history_.Undo();
    }
    EXPECT_FALSE(history_.CanUndo());
    history_.Redo();
    EXPECT_EQ("one ", lines_.Text());
    Type("x");
    EXPECT_FALSE(history_.CanRedo());
}

TEST_F(TextHistoryTest, GoesAnyWayBackAndForthThroughTextsOfAnyKind) {
    std::mt19937 random(7);
    const auto below = [&](int end) { return static_cast<int>(random() % unsigned(end)); };
    const std::string pieces[] = {"x",
                                  " ",
                                  "words and\n",
                                  "\xc3\xa9t\xc3\xa9",
                                  std::string(30000, 'a'),
                                  std::string(9000, ' ') + "end"};
    for (int step = 0; step < 300; ++step) {
        const int length = gtk_text_buffer_get_char_count(buffer_.Get());
        GtkTextIter at;
        GtkTextIter end;
        gtk_text_buffer_get_iter_at_offset(buffer_.Get(), &at, below(length + 1));
        gtk_text_buffer_get_iter_at_offset(buffer_.Get(), &end, below(length + 1));
        gtk_text_iter_order(&at, &end);
        gtk_text_buffer_begin_user_action(buffer_.Get());
        if (below(3) == 0)
            gtk_text_buffer_delete(buffer_.Get(), &at, &end);
        if (below(4) != 0)
            gtk_text_buffer_insert(buffer_.Get(), &at, pieces[below(6)].c_str(), -1);
        gtk_text_buffer_end_user_action(buffer_.Get());
        std::vector<std::string> way{lines_.Text()};
        while (history_.CanUndo() && below(3) != 0) {
            history_.Undo();
            way.push_back(lines_.Text());
        }
        for (std::size_t back = way.size() - 1; back-- > 0;) {
            history_.Redo();
            ASSERT_EQ(way[back], lines_.Text()) << step;
        }
    }
    while (history_.CanUndo())
        history_.Undo();
    EXPECT_EQ("", lines_.Text());
}

TEST(FindTextTest, FindsCapitalsAsSmallLettersAndPlacesInBytes) {
    const struct {
        const char* text;
        const char* wanted;
        std::size_t from;
        int begin;
        int end;
    } cases[] = {
        {"One two one", "one", 0, 0, 3},
        {"One two one", "ONE", 1, 8, 11},
        {"One two one", "one", 9, -1, -1},
        {"\xc3\x89t\xc3\xa9 \xc3\xa9T\xc3\x89", "\xc3\xa9t\xc3\xa9", 1 + 1, 6, 11},
        {"aab", "ab", 0, 1, 3},
        {"ab", "abc", 0, -1, -1},
        {"ab", "", 0, -1, -1},
    };
    for (const auto& item : cases) {
        const std::optional<FoundText> found = FindText(item.text, item.wanted, item.from);
        EXPECT_EQ(item.begin, found ? static_cast<int>(found->begin) : -1) << item.wanted;
        EXPECT_EQ(item.end, found ? static_cast<int>(found->end) : -1) << item.wanted;
    }
}

}  // namespace
