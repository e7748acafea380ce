#include "app/loaded_text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using std::string_literals::operator""s;

TEST(LoadedTextTest, ShowsWhateverAFileHolds) {
    const struct {
        const char* what;
        std::string bytes;
        std::string shown;
    } cases[] = {
        {"empty", "", ""},
        {"ASCII with both line ends", "one\r\ntwo\n", "one\r\ntwo\n"},
        {"UTF-8", "caf\xc3\xa9 \xe2\x80\x9cx\xe2\x80\x9d", "caf\xc3\xa9 \xe2\x80\x9cx\xe2\x80\x9d"},
        {"UTF-8 byte order mark", "\xef\xbb\xbftext", "text"},
        {"UTF-16 little-endian", "\xff\xfeh\0i\0\xe9\0"s, "hi\xc3\xa9"},
        {"UTF-16 big-endian", "\xfe\xff\0h\0i"s, "hi"},
        {"UTF-16 cut in half a character", "\xff\xfeh\0i"s, "h"},
        {"byte order mark alone", "\xff\xfe"s, "\xc3\xbf\xc3\xbe"},
        {"Windows-1252", "caf\xe9 \x93x\x94 \x80",
         "caf\xc3\xa9 \xe2\x80\x9cx\xe2\x80\x9d \xe2\x82\xac"},
        {"bytes that Windows-1252 lacks",
         "a\x81"
         "b\xff",
         "a?b\xc3\xbf"},
        {"NUL bytes", "a\0b"s, "ab"},
    };
    for (const auto& item : cases)
        EXPECT_EQ(item.shown, TextForDisplay(item.bytes)) << item.what;
}

}  // namespace
