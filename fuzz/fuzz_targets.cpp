// Any bytes as "MyTargets.csv": the reader must survive them, keep every target in its
// cell, and a written grid must read back to the same file.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "data/targets.h"
#include "host/host.h"

namespace {

std::string readAndWrite(const char* data, size_t size) {
    clearTargets();
    readTargetsText(data, size);
    // Every target of the grid is written, once.
    std::string text = formatTargets();
    int listed = 0;
    for (size_t at = text.find('\n'); at != std::string::npos && at + 1 < text.size(); at = text.find('\n', at + 1))
        ++listed;
    if (listed != targetCount()) std::abort();
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    xphost::reset();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    static int runs = 0;
    if (++runs % 2000 == 0) xphost::reset();  // the host's log grows with every dropped line
    // One read brings every number to six decimals (which may move a target to the next
    // cell); from then on the file is a fixed point.
    std::string first = readAndWrite(reinterpret_cast<const char*>(data), size);
    std::string second = readAndWrite(first.data(), first.size());
    std::string third = readAndWrite(second.data(), second.size());
    if (second != third) {
        std::fprintf(stderr, "targets do not read back the same:\n%s\n----\n%s\n", second.c_str(), third.c_str());
        std::abort();
    }
    clearTargets();
    return 0;
}
