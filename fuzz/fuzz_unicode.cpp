// fuzz_unicode.cpp: UTF-8 and UTF-16 conversion never overruns, and well-formed text survives a round trip.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "UTL_unicode.h"

namespace {

// Length of the well-formed UTF-8 sequence at s[i], or 0.
size_t Utf8SequenceAt(const std::string& s, size_t i) {
    const auto b = [&](size_t k) { return static_cast<unsigned char>(s[k]); };
    const unsigned char c = b(i);
    if (c < 0x80) return 1;
    size_t n = c >= 0xF0 ? 4 : c >= 0xE0 ? 3 : c >= 0xC2 ? 2 : 0;
    if (n == 0 || c > 0xF4 || i + n > s.size()) return 0;
    for (size_t k = 1; k < n; ++k)
        if ((b(i + k) & 0xC0) != 0x80) return 0;
    if (c == 0xE0 && b(i + 1) < 0xA0) return 0;   // overlong
    if (c == 0xED && b(i + 1) >= 0xA0) return 0;  // surrogate
    if (c == 0xF0 && b(i + 1) < 0x90) return 0;   // overlong
    if (c == 0xF4 && b(i + 1) >= 0x90) return 0;  // past U+10FFFF
    return n;
}

bool WellFormedUtf8(const std::string& s) {
    for (size_t i = 0; i < s.size();) {
        const size_t n = Utf8SequenceAt(s, i);
        if (!n) return false;
        i += n;
    }
    return true;
}

bool WellFormedUtf16(const std::u16string& s) {
    for (size_t i = 0; i < s.size(); ++i) {
        if (s[i] >= 0xDC00 && s[i] <= 0xDFFF) return false;
        if (s[i] >= 0xD800 && s[i] <= 0xDBFF) {
            if (i + 1 >= s.size() || s[i + 1] < 0xDC00 || s[i + 1] > 0xDFFF) return false;
            ++i;
        }
    }
    return true;
}

void Require(bool ok) {
    if (!ok) abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    std::u16string wide;
    std::string narrow;
    string_utf_8_to_16(bytes, wide);
    Require(wide.size() <= 2 * bytes.size());
    string_utf_16_to_8(wide, narrow);
    if (WellFormedUtf8(bytes)) {
        Require(WellFormedUtf16(wide));
        Require(narrow == bytes);
    }

    std::u16string units(size / 2, u'\0');
    for (size_t i = 0; i < units.size(); ++i)
        units[i] = static_cast<char16_t>(data[2 * i] | (data[2 * i + 1] << 8));
    string_utf_16_to_8(units, narrow);
    Require(narrow.size() <= units.size() * 3 + 1);
    if (WellFormedUtf16(units)) {
        Require(WellFormedUtf8(narrow));
        string_utf_8_to_16(narrow, wide);
        Require(wide == units);
    }
    return 0;
}
