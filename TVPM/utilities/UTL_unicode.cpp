// UTL_unicode.cpp: lenient conversion between UTF-8 and UTF-16 strings.
#include "UTL_unicode.h"

namespace {

bool IsContinuation(UTF8 b) { return (b & 0xC0) == 0x80; }

struct LeadByte {
    int continuations;  // -1: the byte cannot start a sequence
    UTF8 mask;          // payload bits of the lead byte
};

LeadByte ClassifyLead(UTF8 lead) {
    if ((lead & 0xE0) == 0xC0) return {1, 0x1F};
    if ((lead & 0xF0) == 0xE0) return {2, 0x0F};
    if ((lead & 0xF8) == 0xF0) return {3, 0x07};
    return {-1, 0};
}

UTF8 ByteAt(const std::string& in, size_t i) {
    return i < in.size() ? static_cast<UTF8>(in[i]) : 0;
}

// Decodes the sequence at i without checking its continuation bytes, its
// length or the range of the result.
char32_t DecodeAt(const std::string& in, size_t i) {
    const UTF8 lead = ByteAt(in, i);
    if (lead < 0x80) return lead;
    const LeadByte kind = ClassifyLead(lead);
    if (kind.continuations < 0) return 0;
    char32_t cp = lead & kind.mask;
    for (int k = 1; k <= kind.continuations; ++k) cp = (cp << 6) | (ByteAt(in, i + k) & 0x3F);
    return cp;
}

// Whatever the lead announced, decoding goes on at the next byte that is not a
// continuation byte.
size_t NextPosition(const std::string& in, size_t i) {
    size_t next = i + 1;
    while (next < in.size() && IsContinuation(static_cast<UTF8>(in[next]))) ++next;
    return next;
}

void AppendUTF16(char32_t cp, std::u16string& out) {
    if (cp > 0xFFFF) {
        out.push_back(static_cast<UTF16>(0xD800 | (((cp - 0x10000) >> 10) & 0x3FF)));
        out.push_back(static_cast<UTF16>(0xDC00 | (cp & 0x3FF)));
    } else {
        out.push_back(static_cast<UTF16>(cp));
    }
}

void AppendByte(std::string& out, unsigned v) { out.push_back(static_cast<char>(v & 0xFF)); }

void AppendUTF8(char32_t cp, std::string& out) {
    if (cp < 0x80) {
        AppendByte(out, cp);
    } else if (cp < 0x800) {
        AppendByte(out, 0xC0 | (cp >> 6));
        AppendByte(out, 0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        AppendByte(out, 0xE0 | (cp >> 12));
        AppendByte(out, 0x80 | ((cp >> 6) & 0x3F));
        AppendByte(out, 0x80 | (cp & 0x3F));
    } else {
        AppendByte(out, 0xF0 | (cp >> 18));
        AppendByte(out, 0x80 | ((cp >> 12) & 0x3F));
        AppendByte(out, 0x80 | ((cp >> 6) & 0x3F));
        AppendByte(out, 0x80 | (cp & 0x3F));
    }
}

bool IsHighSurrogate(UTF16 u) { return (u & 0xFC00) == 0xD800; }

}  // namespace

void string_utf_8_to_16(const std::string& in, std::u16string& out) {
    out.clear();
    for (size_t i = 0; i < in.size(); i = NextPosition(in, i)) AppendUTF16(DecodeAt(in, i), out);
}

void string_utf_16_to_8(const std::u16string& in, std::string& out) {
    out.clear();
    for (size_t i = 0; i < in.size();) {
        const UTF16 u = in[i];
        if (IsHighSurrogate(u)) {
            const UTF16 low = i + 1 < in.size() ? in[i + 1] : 0;
            AppendUTF8(0x10000 + ((u & 0x3FFu) << 10) + (low & 0x3FFu), out);
            i += 2;
        } else {
            AppendUTF8(u, out);
            i += 1;
        }
    }
}
