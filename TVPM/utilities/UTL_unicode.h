// UTL_unicode.h: lenient conversion between UTF-8 and UTF-16 strings.
#pragma once

#include <cstdint>
#include <string>

typedef uint8_t UTF8;
typedef char16_t UTF16;

// Both conversions clear out first, never fail and never report: malformed
// input still yields some output. A sequence cut short by the end of the input
// is completed with zero bits.

// A stray continuation byte or a byte from 0xF8 up becomes U+0000; decoding
// resumes at the next byte that is not a continuation byte.
void string_utf_8_to_16(const std::string& in, std::u16string& out);
// A high surrogate takes the next unit as its low half unchecked; a lone low
// surrogate is encoded as a 3-byte sequence.
void string_utf_16_to_8(const std::u16string& in, std::string& out);
