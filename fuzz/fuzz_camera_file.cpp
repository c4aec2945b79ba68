// Any bytes as a camera file: the reader must survive them, and whatever it made of
// them must write out and read back to the very same file.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "data/camera_file.h"
#include "data/camera_set.h"
#include "host/host.h"

namespace {

std::string readAndWrite(const char* data, size_t size, CameraFile& file) {
    clearWorkingSet();
    readCameraText(data, size, file);
    relinkSet(true);
    prepareSetForWriting(file);
    return formatCameraFile(file);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // No root: the host then keeps its log in memory only, not in a file.
    xphost::reset();
    xphost::setUserAircraft("/Aircraft/Fuzz/Fuzz.acf");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    // The host's log grows with every rejected row; start it afresh now and then.
    static int runs = 0;
    if (++runs % 2000 == 0) {
        xphost::reset();
        xphost::setUserAircraft("/Aircraft/Fuzz/Fuzz.acf");
    }
    static CameraFile file;
    std::memset(&file, 0, sizeof file);
    setActiveFile(&file);
    std::string first = readAndWrite(reinterpret_cast<const char*>(data), size, file);
    if (first.empty()) return 0;
    std::string second = readAndWrite(first.data(), first.size(), file);
    if (second != first) {
        std::fprintf(stderr, "camera file does not read back the same:\n%s\n----\n%s\n", first.c_str(), second.c_str());
        std::abort();
    }
    setActiveFile(nullptr);
    return 0;
}
