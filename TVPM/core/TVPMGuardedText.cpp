// TVPMGuardedText.cpp: the log line for a plugin that wrote past a buffer the library gave it.
#include "TVPMGuardedText.h"

#include <string>

#include "TVPM/TVPMUtilities.h"

void TVPMReportBufferOverrun(TVPMPluginID id, const char* writer, const char* buffer) {
    const PluginRecord* r = TVPMGetPluginRecord(id);
    const std::string line = "[" + (r ? r->name : std::string("unknown")) +
                             "]: buffer overrun: " + writer + " wrote past the end of the 256-byte " +
                             buffer + " buffer; the text was cut to 255 characters.\n";
    TVPMDebugString(line.c_str());
}
