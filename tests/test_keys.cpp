// test_keys.cpp: display names of virtual key codes, including the codes that deliberately read "Unknown".
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "TVPM/TVPMUtilities.h"

namespace {

std::string NameOf(int code) { return TVPMGetVirtualKeyDescription(static_cast<char>(code)); }

// Every named key below 0x80, the range a signed char reaches.
const std::vector<std::pair<int, std::string>>& NamedKeys() {
    static const std::vector<std::pair<int, std::string>> keys = [] {
        std::vector<std::pair<int, std::string>> k = {
            {0x08, "Backspace"}, {0x09, "Tab"},       {0x0C, "Clear"},     {0x0D, "Return"},
            {0x1B, "Escape"},    {0x20, "Space"},     {0x21, "Page Up"},   {0x22, "Page Down"},
            {0x23, "End"},       {0x24, "Home"},      {0x25, "Left"},      {0x26, "Up"},
            {0x27, "Right"},     {0x28, "Down"},      {0x29, "Select"},    {0x2A, "Print"},
            {0x2B, "Execute"},   {0x2C, "Snapshot"},  {0x2D, "Insert"},    {0x2E, "Delete"},
            {0x2F, "Help"},      {0x6A, "Numpad-*"},  {0x6B, "Numpad-+"},  {0x6D, "Numpad--"},
            {0x6E, "Numpad-."},  {0x6F, "Numpad-/"},
        };
        for (int d = 0; d <= 9; ++d) {
            k.emplace_back(0x30 + d, std::to_string(d));
            k.emplace_back(0x60 + d, "Numpad-" + std::to_string(d));
        }
        for (int c = 0; c < 26; ++c) k.emplace_back(0x41 + c, std::string(1, char('A' + c)));
        for (int f = 1; f <= 16; ++f) k.emplace_back(0x6F + f, "F" + std::to_string(f));
        return k;
    }();
    return keys;
}

// Stored in the table, but above 0x7F: as a signed char the key never equals
// the unsigned table byte.
const std::vector<int>& CodesBeyondSignedChar() {
    static const std::vector<int> codes = [] {
        std::vector<int> c;
        for (int code = 0x80; code <= 0x87; ++code) c.push_back(code);  // F17 .. F24
        for (int code = 0xB0; code <= 0xBD; ++code) c.push_back(code);  // "=" .. "Numpad-="
        return c;
    }();
    return codes;
}

}  // namespace

TEST(KeyNames, EveryReachableTableEntryHasItsName) {
    EXPECT_EQ(NamedKeys().size() + CodesBeyondSignedChar().size(), 110u);
    for (const auto& key : NamedKeys()) EXPECT_EQ(NameOf(key.first), key.second) << key.first;
}

TEST(KeyNames, CodesAboveSignedCharRangeReadUnknown) {
    for (int code : CodesBeyondSignedChar()) EXPECT_EQ(NameOf(code), "Unknown") << code;
    EXPECT_EQ(NameOf(TVPM_VK_EQUAL), "Unknown");
    EXPECT_EQ(NameOf(TVPM_VK_NUMPAD_EQ), "Unknown");
    EXPECT_EQ(NameOf(TVPM_VK_F24), "Unknown");
}

TEST(KeyNames, CodesOutsideTheTableReadUnknown) {
    for (int code : {0x00, 0x01, 0x07, 0x0A, 0x0B, 0x0E, 0x1A, 0x1C, 0x1F, 0x3A, 0x40, 0x5B,
                     0x5F, 0x6C, 0xFF, 0xC0})
        EXPECT_EQ(NameOf(code), "Unknown") << code;
}
