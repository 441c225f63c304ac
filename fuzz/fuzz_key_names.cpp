// fuzz_key_names.cpp: every virtual key code has a stable, printable name.
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "TVPM/TVPMUtilities.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    for (size_t i = 0; i < size; ++i) {
        const char key = static_cast<char>(data[i]);
        const char* name = TVPMGetVirtualKeyDescription(key);
        if (!name || !*name || strlen(name) > 32) abort();
        for (const char* c = name; *c; ++c)
            if (!isprint(static_cast<unsigned char>(*c))) abort();
        if (TVPMGetVirtualKeyDescription(key) != name) abort();  // the table's own text
        // Codes from 0x80 up never match: the table holds unsigned bytes.
        if (data[i] >= 0x80 && strcmp(name, "Unknown") != 0) abort();
    }
    return 0;
}
