// unit_unicode.cpp: UTF-8 and UTF-16 conversion: round trips and what malformed input turns into.
#include <gtest/gtest.h>

#include <string>

#include "UTL_unicode.h"

TEST(Unicode, ConvertsWellFormedTextBothWaysAndMalformedTextAsItStands) {
    enum Way { kBoth, kTo16, kTo8 };
    const struct {
        const char* why;
        Way way;
        std::string utf8;
        std::u16string utf16;
    } cases[] = {
        {"one to four bytes", kBoth, "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z",
         {u'A', 0x00E9, 0x20AC, 0xD83D, 0xDE00, u'z'}},
        {"each length at its bounds", kBoth,
         "\x01\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",
         {0x0001, 0x007F, 0x0080, 0x07FF, 0x0800, 0xFFFF, 0xD800, 0xDC00, 0xDBFF, 0xDFFF}},
        {"empty", kBoth, "", u""},
        {"an embedded zero is kept", kBoth, std::string("a\0b", 3), {u'a', 0, u'b'}},
        // Decoding always resumes at the next byte that is not a continuation byte.
        {"stray continuation bytes at the start become one zero", kTo16, "\x80\xBF\x81" "B", {0, u'B'}},
        {"bytes that cannot lead become zero", kTo16, "\xF8\x80\x80" "A\xFF" "B", {0, u'A', 0, u'B'}},
        {"truncated four bytes", kTo16, "\xF0\x9F\x98", {0xD83D, 0xDE00}},
        {"a high surrogate takes the next unit as its low half", kTo8, "\xF0\x9F\x91\x81", {0xD83D, u'A'}},
        {"a high surrogate at the end pairs with zero", kTo8, "a\xF0\x9F\x90\x80", {u'a', 0xD83D}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        std::u16string wide = u"stale";
        std::string narrow = "stale";
        string_utf_8_to_16(c.utf8, wide);
        string_utf_16_to_8(c.utf16, narrow);
        if (c.way != kTo8) {
            EXPECT_EQ(wide, c.utf16);
        }
        if (c.way != kTo16) {
            EXPECT_EQ(narrow, c.utf8);
        }
    }
}
