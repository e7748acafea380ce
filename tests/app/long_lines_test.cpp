#include "app/text/long_lines.h"

#include <gtest/gtest.h>

namespace {

std::string Repeated(const std::string& text, int times) {
    std::string all;
    for (int time = 0; time < times; ++time)
        all += text;
    return all;
}

TEST(LongLinesTest, LinesAreShortAndTheTextReadsAsItWasInserted) {
    constexpr int kLongest = LongLines::kLongestLine;
    const struct {
        const char* what;
        std::string text;
        int at;  // character before which it is inserted
        int longestLine;
    } cases[] = {
        {"words", Repeated("word ", 200000), 0, kLongest},
        {"words beyond ASCII, and line ends",
         Repeated("\xc3\xa9t\xc3\xa9 h\n", 20) + Repeated("\xe2\x82\xac 5, ", 20000), 7000,
         kLongest},
        {"no blanks", Repeated("a", 100000), 500000, 2 * kLongest},
        {"short", "one two", 1, 2 * kLongest},
        {"words in the middle of a line", Repeated("and ", 5000), 600000, 2 * kLongest},
    };
    auto buffer = GObjectRef<GtkTextBuffer>::Adopt(gtk_text_buffer_new(nullptr));
    LongLines lines;
    lines.Attach(buffer.Get());
    for (const auto& item : cases) {
        SCOPED_TRACE(item.what);
        GtkTextIter at;
        gtk_text_buffer_get_iter_at_offset(buffer.Get(), &at, item.at);
        GtkTextIter start;
        GtkTextIter end;
        gtk_text_buffer_get_bounds(buffer.Get(), &start, &end);
        const std::string expected = lines.Text(start, at) + item.text + lines.Text(at, end);
        gtk_text_buffer_insert(buffer.Get(), &at, item.text.c_str(), -1);
        EXPECT_TRUE(lines.Text() == expected);
        int longest = 0;
        gtk_text_buffer_get_start_iter(buffer.Get(), &start);
        do
            longest = std::max(longest, gtk_text_iter_get_chars_in_line(&start));
        while (gtk_text_iter_forward_line(&start));
        EXPECT_LE(longest, item.longestLine + 1);
    }
}

}  // namespace
