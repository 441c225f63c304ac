// TVPMGuardedText.h: text buffers the library hands to plugin code to fill, with a guard area that absorbs and reveals overruns.
#pragma once

#include <cstddef>
#include <cstring>

#include "TVPMPluginTable.h"

// A buffer whose contract with the plugin is kContractSize bytes, followed by
// a guard area filled with a known pattern. A plugin that writes past the
// contract scribbles on the guard instead of on the library's memory; Seal()
// notices, and the text is cut to kContractSize - 1 characters either way.
// Keep these on the heap: the guard is large.
class TVPMGuardedText {
public:
    static constexpr size_t kContractSize = 256;
    static constexpr size_t kGuardSize = 4096 - kContractSize;

    TVPMGuardedText() {
        memset(text_, 0, kContractSize);
        memset(guard_, kPattern, kGuardSize);
    }
    char* data() { return text_; }
    const char* c_str() const { return text_; }

    // Terminates the text within the contract; true when the plugin wrote
    // past it.
    bool Seal() {
        // The guard is compared with itself shifted by one byte: untouched
        // iff every byte equals its neighbour and the first is the pattern.
        const bool overrun =
            guard_[0] != kPattern || memcmp(guard_, guard_ + 1, kGuardSize - 1) != 0;
        text_[kContractSize - 1] = 0;
        return overrun;
    }

private:
    static constexpr unsigned char kPattern = 0xA5;
    char text_[kContractSize];
    unsigned char guard_[kGuardSize];
};

// Logs "[<plugin name>]: buffer overrun: <writer> wrote past the end of the
// 256-byte <buffer> buffer; the text was cut to 255 characters."
void TVPMReportBufferOverrun(TVPMPluginID id, const char* writer, const char* buffer)
    __attribute__((cold, noinline));
