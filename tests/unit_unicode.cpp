// unit_unicode.cpp: UTF-8 and UTF-16 conversion: round trips and what malformed input turns into.
#include <gtest/gtest.h>

#include <string>

#include "UTL_unicode.h"

namespace {

std::u16string To16(const std::string& in) {
    std::u16string out = u"stale";
    string_utf_8_to_16(in, out);
    return out;
}

std::string To8(const std::u16string& in) {
    std::string out = "stale";
    string_utf_16_to_8(in, out);
    return out;
}

}  // namespace

TEST(Unicode, WellFormedTextRoundTrips) {
    const std::string utf8 = "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z";
    const std::u16string utf16 = {u'A', 0x00E9, 0x20AC, 0xD83D, 0xDE00, u'z'};
    EXPECT_EQ(To16(utf8), utf16);
    EXPECT_EQ(To8(utf16), utf8);
    // Each encoding length at its boundaries, and the ends of the surrogate range.
    const std::u16string bounds = {0x0001, 0x007F, 0x0080, 0x07FF, 0x0800, 0xFFFF, 0xD800, 0xDC00,
                                   0xDBFF, 0xDFFF};
    const std::string bounds8 =
        "\x01\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF";
    EXPECT_EQ(To8(bounds), bounds8);
    EXPECT_EQ(To16(bounds8), bounds);
    // Empty input clears the output; an embedded zero is kept.
    EXPECT_EQ(To16(""), u"");
    EXPECT_EQ(To8(u""), "");
    const std::string withZero("a\0b", 3);
    EXPECT_EQ(To16(withZero), (std::u16string{u'a', 0, u'b'}));
    EXPECT_EQ(To8(std::u16string{u'a', 0, u'b'}), withZero);
}

TEST(Unicode, MalformedUtf8DecodesAsItStands) {
    // Decoding always resumes at the next byte that is not a continuation byte.
    const struct {
        const char* why;
        std::string in;
        std::u16string out;
    } cases[] = {
        {"stray continuation bytes at the start become one zero unit", "\x80\xBF\x81" "B",
         {0, u'B'}},
        {"a stray continuation byte after a character is passed over", "A\x80" "B", {u'A', u'B'}},
        {"... also after a multi-byte character", "\xC3\xA9\x80\xBF" "B", {0x00E9, u'B'}},
        {"extra continuation bytes are skipped", "\xC3\xA9\xA9\xA9" "x", {0x00E9, u'x'}},
        {"bytes that cannot lead become zero", "\xF8\x80\x80" "A\xFF" "B", {0, u'A', 0, u'B'}},
        {"continuation bytes are not checked: \"AB\" is payload, then \"A\" again", "\xE2" "AB",
         {(0x2 << 12) | (0x01 << 6) | 0x02, u'A', u'B'}},
        {"overlong encoding", "\xC0\x81", {0x0001}},
        {"encoded surrogate", "\xED\xA0\x80", {0xD800}},
        {"beyond Unicode: both halves keep only their 10 bits", "\xF7\xBF\xBF\xBF",
         {0xDBBF, 0xDFFF}},
        {"truncated two-byte sequence", "A\xC3", {u'A', 0x00C0}},
        {"truncated three-byte sequence", "\xE2\x82", {0x2080}},
        {"truncated four-byte sequence", "\xF0\x9F\x98", {0xD83D, 0xDE00}},
        {"lone four-byte lead", "\xF0", {0x0000}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        EXPECT_EQ(To16(c.in), c.out);
    }
}

TEST(Unicode, MalformedUtf16EncodesAsItStands) {
    const struct {
        const char* why;
        std::u16string in;
        std::string out;
    } cases[] = {
        {"a high surrogate takes the next unit as its low half, unchecked", {0xD83D, u'A'},
         "\xF0\x9F\x91\x81"},
        {"even a second high surrogate", {0xD83D, 0xD83D, 0xDE00}, "\xF0\x9F\x90\xBD\xED\xB8\x80"},
        {"a lone low surrogate takes three bytes", {0xDE00, u'x'}, "\xED\xB8\x80x"},
        {"a high surrogate at the end pairs with zero", {u'a', 0xD83D}, "a\xF0\x9F\x90\x80"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        EXPECT_EQ(To8(c.in), c.out);
    }
}
