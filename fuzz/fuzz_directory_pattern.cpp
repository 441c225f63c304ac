// fuzz_directory_pattern.cpp: the directory listing's name rule against a plain reference.
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "TVPMDLLUtils.h"

namespace {

std::string Upper(std::string s) {
    for (char& c : s) c = static_cast<char>(toupper(static_cast<unsigned char>(c)));
    return s;
}

bool Reference(const std::string& name, const std::string& pattern) {
    if (pattern == "*.*") return true;
    const std::string suffix = Upper(!pattern.empty() && pattern[0] == '*' ? pattern.substr(1) : pattern);
    const std::string upper = Upper(name);
    return upper.size() >= suffix.size() &&
           upper.compare(upper.size() - suffix.size(), suffix.size(), suffix) == 0;
}

}  // namespace

// Input: pattern, a zero byte, then the name (both without further zeros).
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    const size_t split = input.find('\0');
    if (split == std::string::npos) return 0;
    const std::string pattern = input.substr(0, split);
    const std::string name = input.substr(split + 1);
    if (name.find('\0') != std::string::npos) return 0;
    if (TVPMNameMatchesPattern(name.c_str(), pattern.c_str()) != Reference(name, pattern)) abort();
    return 0;
}
