// unit_unicode.cpp: UTF-8 and UTF-16 conversion: round trips and what malformed input turns into.
#include <gtest/gtest.h>

#include <string>

#include "../TVPM/UTL_unicode.cpp"

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
    EXPECT_EQ(To8(To16(utf8)), utf8);
}

TEST(Unicode, EachEncodingLengthAtItsBoundaries) {
    const std::u16string bounds = {0x0001, 0x007F, 0x0080, 0x07FF, 0x0800, 0xFFFF};
    EXPECT_EQ(To8(bounds), "\x01\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF");
    EXPECT_EQ(To16(To8(bounds)), bounds);
    // U+10000 and U+10FFFF, the ends of the surrogate range.
    EXPECT_EQ(To16("\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"),
              (std::u16string{0xD800, 0xDC00, 0xDBFF, 0xDFFF}));
    EXPECT_EQ(To8(std::u16string{0xDBFF, 0xDFFF}), "\xF4\x8F\xBF\xBF");
}

TEST(Unicode, EmptyInputClearsTheOutput) {
    EXPECT_EQ(To16(""), u"");
    EXPECT_EQ(To8(u""), "");
}

TEST(Unicode, EmbeddedZeroIsKept) {
    const std::string withZero("a\0b", 3);
    EXPECT_EQ(To16(withZero), (std::u16string{u'a', 0, u'b'}));
    EXPECT_EQ(To8(std::u16string{u'a', 0, u'b'}), withZero);
}

TEST(Unicode, StrayContinuationBytesAtTheStartBecomeOneZeroUnit) {
    EXPECT_EQ(To16("\x80" "B"), (std::u16string{0, u'B'}));
    EXPECT_EQ(To16("\x80\xBF\x81" "B"), (std::u16string{0, u'B'}))
        << "the whole run of continuation bytes is skipped";
}

TEST(Unicode, StrayContinuationBytesInsideTheTextAreSkipped) {
    // Decoding always resumes at the next byte that is not a continuation
    // byte, so a stray one after a character is passed over with it.
    EXPECT_EQ(To16("A\x80" "B"), (std::u16string{u'A', u'B'}));
    EXPECT_EQ(To16("\xC3\xA9\x80\xBF" "B"), (std::u16string{0x00E9, u'B'}));
}

TEST(Unicode, BytesThatCannotLeadBecomeZero) {
    EXPECT_EQ(To16("\xF8\x80\x80" "A\xFF" "B"), (std::u16string{0, u'A', 0, u'B'}));
}

TEST(Unicode, ContinuationBytesAreNotChecked) {
    // The lead announces two more bytes; "AB" are taken as payload, then
    // decoding resumes at "A" because it is not a continuation byte.
    const char16_t payload = static_cast<char16_t>((0x2 << 12) | (0x01 << 6) | 0x02);
    EXPECT_EQ(To16("\xE2" "AB"), (std::u16string{payload, u'A', u'B'}));
}

TEST(Unicode, ExtraContinuationBytesAreSkipped) {
    EXPECT_EQ(To16("\xC3\xA9\xA9\xA9" "x"), (std::u16string{0x00E9, u'x'}));
}

TEST(Unicode, OverlongAndSurrogateEncodingsAreDecodedAsTheyStand) {
    EXPECT_EQ(To16("\xC0\x81"), (std::u16string{0x0001}));
    EXPECT_EQ(To16("\xED\xA0\x80"), (std::u16string{0xD800}));
}

TEST(Unicode, CodePointsBeyondUnicodeStillMakeAPair) {
    // F7 BF BF BF decodes to 0x1FFFFF; both halves keep only their 10 bits.
    EXPECT_EQ(To16("\xF7\xBF\xBF\xBF"), (std::u16string{0xDBBF, 0xDFFF}));
}

TEST(Unicode, TruncatedSequenceAtTheEndIsCompletedWithZeroBits) {
    EXPECT_EQ(To16("A\xC3"), (std::u16string{u'A', 0x00C0}));
    EXPECT_EQ(To16("\xE2\x82"), (std::u16string{0x2080}));
    EXPECT_EQ(To16("\xF0\x9F\x98"), (std::u16string{0xD83D, 0xDE00}));
    EXPECT_EQ(To16("\xF0"), (std::u16string{0x0000})) << "all payload bits are zero";
}

TEST(Unicode, HighSurrogateTakesTheNextUnitUnchecked) {
    EXPECT_EQ(To8(std::u16string{0xD83D, u'A'}), "\xF0\x9F\x91\x81")
        << "'A' is read as the low half and consumed";
    EXPECT_EQ(To8(std::u16string{0xD83D, 0xD83D, 0xDE00}), "\xF0\x9F\x90\xBD\xED\xB8\x80")
        << "a second high half is consumed as the low one";
}

TEST(Unicode, LoneSurrogatesEncodeAsThreeBytes) {
    EXPECT_EQ(To8(std::u16string{0xDE00, u'x'}), "\xED\xB8\x80x");
}

TEST(Unicode, HighSurrogateAtTheEndPairsWithZero) {
    EXPECT_EQ(To8(std::u16string{u'a', 0xD83D}), "a\xF0\x9F\x90\x80");
}
