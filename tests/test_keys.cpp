// test_keys.cpp: display names of virtual key codes, including the codes that deliberately read "Unknown".
#include <gtest/gtest.h>

#include <string>

#include "TVPM/TVPMUtilities.h"

namespace {

std::string NameOf(int code) { return TVPMGetVirtualKeyDescription(static_cast<char>(code)); }

}  // namespace

TEST(KeyNames, EachGroupOfNamedKeysAtItsEnds) {
    const struct {
        int code;
        const char* name;
    } keys[] = {
        {0x08, "Backspace"}, {0x0D, "Return"},   {0x1B, "Escape"},   {0x20, "Space"},
        {0x21, "Page Up"},   {0x2F, "Help"},     {0x30, "0"},        {0x39, "9"},
        {0x41, "A"},         {0x5A, "Z"},        {0x60, "Numpad-0"}, {0x69, "Numpad-9"},
        {0x6A, "Numpad-*"},  {0x6D, "Numpad--"}, {0x6F, "Numpad-/"}, {0x70, "F1"},
        {0x7F, "F16"},
    };
    for (const auto& key : keys) EXPECT_EQ(NameOf(key.code), key.name) << key.code;
}

TEST(KeyNames, CodesAboveSignedCharRangeReadUnknown) {
    // F17 .. F24 and "=" .. "Numpad-=" are in the table, but as a signed char
    // the key never equals the unsigned table byte.
    for (int code = 0x80; code <= 0x87; ++code) EXPECT_EQ(NameOf(code), "Unknown") << code;
    for (int code = 0xB0; code <= 0xBD; ++code) EXPECT_EQ(NameOf(code), "Unknown") << code;
    EXPECT_EQ(NameOf(TVPM_VK_EQUAL), "Unknown");
    EXPECT_EQ(NameOf(TVPM_VK_NUMPAD_EQ), "Unknown");
    EXPECT_EQ(NameOf(TVPM_VK_F24), "Unknown");
}

TEST(KeyNames, CodesOutsideTheTableReadUnknown) {
    for (int code : {0x00, 0x01, 0x07, 0x0A, 0x0B, 0x0E, 0x1A, 0x1C, 0x1F, 0x3A, 0x40, 0x5B,
                     0x5F, 0x6C, 0xFF, 0xC0})
        EXPECT_EQ(NameOf(code), "Unknown") << code;
}
