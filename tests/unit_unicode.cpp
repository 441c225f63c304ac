// unit_unicode.cpp: UTF-8 and UTF-16 conversion of well-formed text, and where decoding resumes after a stray byte.
#include <gtest/gtest.h>

#include <string>

#include "UTL_unicode.h"

TEST(Unicode, ConvertsWellFormedTextBothWaysAndAStrayByteToOneZero) {
    const struct {
        const char* why;
        std::string utf8;
        std::u16string utf16;
    } cases[] = {
        {"one to four bytes", "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z",
         {u'A', 0x00E9, 0x20AC, 0xD83D, 0xDE00, u'z'}},
        {"each length at its bounds",
         "\x01\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",
         {0x0001, 0x007F, 0x0080, 0x07FF, 0x0800, 0xFFFF, 0xD800, 0xDC00, 0xDBFF, 0xDFFF}},
        {"empty", "", u""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        std::u16string wide = u"stale";
        std::string narrow = "stale";
        string_utf_8_to_16(c.utf8, wide);
        string_utf_16_to_8(c.utf16, narrow);
        EXPECT_EQ(wide, c.utf16);
        EXPECT_EQ(narrow, c.utf8);
    }
    std::u16string wide;
    string_utf_8_to_16("\x80\xBF\x81" "B", wide);
    EXPECT_EQ(wide, (std::u16string{0, u'B'})) << "decoding resumes at the next byte that is not a continuation";
}
