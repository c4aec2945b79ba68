// Any bytes as the aircraft's camera file, loaded and saved through the plug-in's own
// file operations on a real folder: the save must write a file that reads back as the
// set in memory, and no row of the file may vanish unless its original bytes were kept
// in the backups folder.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "data/aircraft_files.h"
#include "data/camera_file.h"
#include "data/camera_set.h"
#include "data/kept_copies.h"
#include "host/host.h"

namespace fs = std::filesystem;

namespace {

std::string root;
std::string cameraPath;
std::string backups;

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void startHost() {
    xphost::reset();
    xphost::setRoot(root);
    xphost::setUserAircraft("Aircraft/Fuzz/Fuzz.acf");
    overridePluginDirectory((root + "Resources/plugins/Vistarig/").c_str());
}

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

bool originalKept(const char* data, size_t size) {
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(backups, error))
        if (entry.path().filename().string().find(".unread-") != std::string::npos &&
            readFile(entry.path().string()) == std::string(data, size))
            return true;
    return false;
}

int cameraCount() {
    int count = 0;
    for (int i = 0; i < workingSet().categoryCount; ++i) count += workingSet().categories[i].cameraCount;
    return count;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    std::string base = fs::exists("/dev/shm") ? "/dev/shm" : fs::temp_directory_path().string();
    root = base + "/vistarig-fuzz-save-" + std::to_string(::getpid()) + "/";
    fs::create_directories(root + "Aircraft/Fuzz");
    backups = root + "Resources/plugins/Vistarig/AircraftCameraBackups/";
    fs::create_directories(backups);
    std::ofstream(root + "Aircraft/Fuzz/Fuzz.acf") << "I\n1100 Version\n";
    cameraPath = root + "Aircraft/Fuzz/Vistarig_Fuzz.csv";
    startHost();
    std::atexit([] {
        std::error_code ignored;
        fs::remove_all(root, ignored);
    });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    const char* data = reinterpret_cast<const char*>(bytes);
    static int runs = 0;
    if (++runs % 500 == 0) startHost();  // the host's log grows with every rejected row
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(backups, ignored)) fs::remove(entry.path(), ignored);
    {
        std::ofstream out(cameraPath, std::ios::binary | std::ios::trunc);
        out.write(data, std::streamsize(size));
    }
    setActiveFile(nullptr);
    clearWorkingSet();
    clearReplacingRefusals();
    cameraFileListHead()->readFromPath = 0;

    loadCameraFile(nullptr);
    bool kept = originalKept(data, size);
    int loaded = cameraCount();
    if (!kept && loaded < rowsAtLeast(data, size) && size > 0) {
        std::fprintf(stderr, "%d cameras from %d rows, and the original was not kept\n", loaded,
                     rowsAtLeast(data, size));
        std::abort();
    }
    if (!saveCameraFile(false, false)) {
        std::fprintf(stderr, "the save failed\n");
        std::abort();
    }
    std::string inMemory = formatCameraSet(workingSet(), *activeFile(), true);
    std::string written = readFile(cameraPath);
    static CameraFile reread;
    std::memset(&reread, 0, sizeof reread);
    clearWorkingSet();
    readCameraText(written.data(), written.size(), reread);
    std::string readBack = formatCameraSet(workingSet(), reread, true);
    if (readBack != inMemory) {
        std::fprintf(stderr, "the saved file does not read back as the set:\n%s\n----\n%s\n", inMemory.c_str(),
                     readBack.c_str());
        std::abort();
    }
    setActiveFile(nullptr);
    return 0;
}
