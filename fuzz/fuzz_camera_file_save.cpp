// Any bytes as the aircraft's camera file, through what a load and a save do with them,
// in memory: the loader's reader with its account of what it could not read, then the
// very text a save hands to the atomic file writer, read back. Two promises: no row
// vanishes unless the reader reports a loss (the load then keeps the original in the
// backups folder), and the text a save writes reads back, whole, as the set in memory.
// Choosing the file, keeping the original and replacing the file on disk are tested by
// camera_file_test and user_file_safety_test: through the disk this target ran under a
// hundred times a second.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "data/camera_file.h"
#include "data/camera_set.h"
#include "data/kept_copies.h"
#include "host/host.h"

namespace {

// Lines with anything but separators, blanks and quotes, less those that may be the
// header: the rows a reader that drops nothing turns into cameras, at the least.
int rowsAtLeast(const char* data, size_t size) {
    int rows = 0;
    size_t start = 0;
    for (size_t i = 0; i <= size; ++i) {
        if (i < size && data[i] != '\n' && data[i] != '\r') continue;
        std::string line(data + start, i - start);
        start = i + 1;
        bool content = false;
        for (char c : line)
            if (!std::strchr(" \t,;\"", c) && c != 0) content = true;
        if (content && line.find("Category Name") == std::string::npos) ++rows;
    }
    return rows;
}

int cameraCount() {
    int count = 0;
    for (int i = 0; i < workingSet().categoryCount; ++i) count += workingSet().categories[i].cameraCount;
    return count;
}

void startHost() {
    // No root: the host then keeps its log in memory only, not in a file.
    xphost::reset();
    xphost::setUserAircraft("/Aircraft/Fuzz/Fuzz.acf");
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    startHost();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    const char* data = reinterpret_cast<const char*>(bytes);
    static int runs = 0;
    if (++runs % 2000 == 0) startHost();  // the host's log grows with every rejected row

    // As the load reads the chosen file into the working set.
    static CameraFile file;
    std::memset(&file, 0, sizeof file);
    clearWorkingSet();
    setActiveFile(&file);
    ReadLosses losses;
    readCameraText(data, size, file, &losses);
    int loaded = cameraCount();
    if (!losses.any() && size > 0 && loaded < rowsAtLeast(data, size)) {
        std::fprintf(stderr, "%d cameras from %d rows, and no loss reported\n", loaded, rowsAtLeast(data, size));
        std::abort();
    }

    // As the save writes it.
    if (categoryCount() > 0) refreshHomePose(currentCamera());
    std::string written = cameraFileText(file);
    std::string inMemory = formatCameraSet(workingSet(), file, true);

    static CameraFile reread;
    std::memset(&reread, 0, sizeof reread);
    clearWorkingSet();
    ReadLosses again;
    readCameraText(written.data(), written.size(), reread, &again);
    std::string readBack = formatCameraSet(workingSet(), reread, true);
    if (readBack != inMemory || again.any()) {
        std::fprintf(stderr, "the saved text does not read back whole as the set (%s):\n%s\n----\n%s\n",
                     again.describe().c_str(), inMemory.c_str(), readBack.c_str());
        std::abort();
    }
    setActiveFile(nullptr);
    return 0;
}
