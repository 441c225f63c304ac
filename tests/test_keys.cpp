// test_keys.cpp: display names of virtual key codes, including the codes that deliberately read "Unknown".
#include <gtest/gtest.h>

#include <string>

#include "TVPM/TVPMUtilities.h"

TEST(KeyNames, NamedGroupsAtTheirEndsAndEverythingElseUnknown) {
    // Codes from 0x80 up are in the table, but as a signed char the key never
    // equals the unsigned table byte.
    const struct {
        int code;
        const char* name;
    } keys[] = {
        {0x08, "Backspace"}, {0x1B, "Escape"}, {0x20, "Space"}, {0x2F, "Help"}, {0x30, "0"}, {0x39, "9"}, {0x41, "A"},
        {0x5A, "Z"}, {0x60, "Numpad-0"}, {0x6D, "Numpad--"}, {0x6F, "Numpad-/"}, {0x70, "F1"}, {0x7F, "F16"},
        {0x00, "Unknown"}, {0x07, "Unknown"}, {0x1C, "Unknown"}, {0x3A, "Unknown"}, {0x40, "Unknown"},
        {0x5B, "Unknown"}, {0x6C, "Unknown"}, {0x80, "Unknown"}, {0xB0, "Unknown"}, {0xFF, "Unknown"},
    };
    for (const auto& key : keys)
        EXPECT_EQ(std::string(TVPMGetVirtualKeyDescription(static_cast<char>(key.code))), key.name)
            << key.code;
}
