#include "app/text/structure_text.h"

#include <gtest/gtest.h>

#include "app/text/marked_places.h"

namespace {

TEST(StructureText, ComesBackAsItWasAndNoFurtherThanItsTextGoes) {
    KeptStructure structure{.title = "A\nBook",
                            .pages = {0, 7, 7, 90},
                            .languages = {{0, "de"}, {20, ""}},
                            .isPart = true,
                            .isRecognised = true};
    structure.outline = {
        {"Oars", 5, 0, true}, {"More of\noars", 20, 1, false}, {"1 2", 80, 0, true}};
    const std::string lines = LinesOfStructure(structure);
    EXPECT_EQ(lines,
              "title A Book\nchapter 5 0 Oars\nheading 20 1 More of oars\nchapter 80 0 1 2\n"
              "page 0\npage 7\npage 7\npage 90\nlanguage 0 de\nlanguage 20 \npart\nrecognised\n");
    EXPECT_EQ(LinesOfStructure(StructureOfLines(lines, 90)), lines);
    EXPECT_EQ(StructureOfLines(lines, 89).pages.size(), 3U);
    EXPECT_EQ(StructureOfLines(lines, 79).outline.size(), 2U);
    for (const char* wrong : {"page -1\n", "page 9\npage 8\n", "heading 1 0 \n", "chapter 1 99 a\n",
                              "chapter 99999999999999999999 0 a\n", "more\n",
                              "language x de-AT-1996\n", "heading 9 0 a\nheading 8 0 b"})
        EXPECT_LE(LinesOfStructure(StructureOfLines(wrong, 100)).size(), 14U) << wrong;
}

TEST(MarkedPlaces, StayWhereTheyBelongWhileTheTextIsEdited) {
    auto buffer = GObjectRef<GtkTextBuffer>::Adopt(gtk_text_buffer_new(nullptr));
    LongLines lines;
    lines.Attach(buffer.Get());
    MarkedPlaces places;
    places.Attach(buffer.Get(), lines);
    const std::string text = "Ferries\n\nO\xc3\xa4rs\n\nMore of them.";
    gtk_text_buffer_set_text(buffer.Get(), text.data(), static_cast<gint>(text.size()));
    const std::vector<std::size_t> marked = {0, 9, 9, 12, text.find("More"), text.size()};
    places.Set(marked);
    EXPECT_EQ(places.Places(), marked);
    GtkTextIter at = places.At(4);
    gtk_text_buffer_insert(buffer.Get(), &at, "And ", 4);
    EXPECT_EQ(places.Places()[4], marked[4] + 4);
    EXPECT_EQ(places.Places()[3], marked[3]);
}

}  // namespace
