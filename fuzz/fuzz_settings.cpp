// Any bytes as "Vistarig.ini": the reader must survive them, and the file written from
// what it read must read back to the same record.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "data/settings.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Settings read = builtInSettings();
    parseSettingsText(reinterpret_cast<const char*>(data), size, read);
    if (read.SMOOTH_WINDOW < kSmoothWindowFloor) std::abort();
    std::string first = formatSettingsText(read);
    Settings again = builtInSettings();
    parseSettingsText(first.data(), first.size(), again);
    std::string second = formatSettingsText(again);
    if (first != second) {
        std::fprintf(stderr, "settings do not read back the same:\n%s\n----\n%s\n", first.c_str(), second.c_str());
        std::abort();
    }
    return 0;
}
