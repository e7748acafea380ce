#include "documents/text_charset.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using std::string_literals::operator""s;

TEST(TextCharset, WhateverAFileHoldsCanBeShown) {
    const struct {
        const char* what;
        std::string bytes;
        std::string shown;
    } cases[] = {
        {"empty", "", ""},
        {"ASCII with both line ends", "one\r\ntwo\n", "one\r\ntwo\n"},
        {"UTF-8 with and without mark", "\xef\xbb\xbf“café” 😀", "“café” 😀"},
        {"UTF-16 little-endian", "\xff\xfeh\0\xe9\0\x3d\xd8\x00\xde\x3d\xd8"s, "hé😀\uFFFD"},
        {"UTF-16 big-endian, half a unit", "\xfe\xff\0h\0i\0"s, "hi\uFFFD"},
        {"UTF-16 without mark", "h\0e\0l\0l\0o\0\xe9\0"s, "helloé"},
        {"UTF-16 without mark, big-endian", "\0h\0e\0l\0l\0o\x20\x14"s, "hello—"},
        {"byte order mark alone", "\xff\xfe"s, ""},
        {"Windows-1252", "caf\xe9 \x93x\x94 \x80\xe9\x94", "café “x” €é”"},
        {"Windows-1252 with a pair that is UTF-8", "\xe9\xe8\xe0\xfc\xf6\xdf\xe9\xe9\xe9\xe9\xe9 é",
         "éèàüößééééé Ã©"},
        {"bytes that Windows-1252 lacks",
         "a\x81"
         "b\xff",
         "a\uFFFD"
         "bÿ"},
        {"NUL bytes", "a\0b, \0“it”"s, "a b,  “it”"},
        {"UTF-8 whose end is cut off", "“It’s a naïve caf\xc3", "“It’s a naïve caf\uFFFD"},
        {"UTF-8 with foreign bytes", "“It’s” \xe9t\xe9 \x93too\x94 \xe2\x80 x",
         "“It’s” été “too” \uFFFD x"},
    };
    for (const auto& item : cases)
        EXPECT_EQ(item.shown, DecodeText(item.bytes)) << item.what;
}

}  // namespace
