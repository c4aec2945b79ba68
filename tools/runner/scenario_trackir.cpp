// The scenario verb `trackir`: a head tracker for scenarios. It installs the TrackIR
// stand-in (the test double built as NPClient64.so, on Windows NPClient64.dll beside
// the runner) where the plug-in looks for the client library: the location file, or on
// Windows the vendor's registry value, and queues frames of raw tracker values for it
// to serve.
#include "host/portable.h"
#include <sys/stat.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>

#include "host/host.h"

#ifndef VISTARIG_TRACKIR_DOUBLE_DIR
#define VISTARIG_TRACKIR_DOUBLE_DIR ""
#endif

namespace {

constexpr int kFrameBytes = 80;

struct Stand {
    bool installed = false;
    void (*queueFrame)(const unsigned char*) = nullptr;
    uint16_t signature = 0;
};

Stand& stand() {
    static Stand s;
    return s;
}

void putFloat(unsigned char* at, float value) {
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    for (int b = 0; b < 4; ++b) at[b] = static_cast<unsigned char>(bits >> (8 * b));
}

#ifdef _WIN32
// The folder of the runner, where the Windows build puts the stand-in.
std::string doubleFolder() {
    char path[MAX_PATH] = {};
    const DWORD n = GetModuleFileNameA(nullptr, path, sizeof path);
    std::string folder(path, n);
    const size_t slash = folder.find_last_of("\\/");
    return slash == std::string::npos ? std::string() : folder.substr(0, slash);
}
const char* const doubleName = "\\NPClient64.dll";

// Where the vendor's software records its folder, and the plug-in reads it.
std::string recordLocation(const std::string& folder) {
    HKEY key = nullptr;
    if (RegCreateKeyExA(HKEY_CURRENT_USER, "Software\\NaturalPoint\\NATURALPOINT\\NPClient Location", 0, nullptr, 0,
                        KEY_WRITE, nullptr, &key, nullptr) != ERROR_SUCCESS)
        return "cannot create the NPClient Location registry key";
    const LONG written = RegSetValueExA(key, "Path", 0, REG_SZ, reinterpret_cast<const BYTE*>(folder.c_str()),
                                        static_cast<DWORD>(folder.size() + 1));
    RegCloseKey(key);
    return written == ERROR_SUCCESS ? "" : "cannot write the NPClient Location registry value";
}
#else
std::string doubleFolder() { return VISTARIG_TRACKIR_DOUBLE_DIR; }
const char* const doubleName = "/NPClient64.so";

// The location file in the plug-in's folder names the stand-in's folder.
std::string recordLocation(const std::string& folder) {
    const std::string location = xphost::root() + "Resources/plugins/Vistarig/NPClient Location.txt";
    {
        std::ofstream out(location + ".tmp", std::ios::trunc);
        out << folder << "\n";
        if (!out) return "cannot write " + location;
    }
    if (std::rename((location + ".tmp").c_str(), location.c_str()) != 0) return "cannot write " + location;
    return "";
}
#endif

// Records the stand-in's folder where the plug-in looks and opens the library; the
// plug-in's own load of the same file gets this instance.
std::string install() {
    Stand& s = stand();
    if (s.installed) return "";
    const std::string folder = doubleFolder();
    const std::string library = folder + doubleName;
    struct stat info;
    if (folder.empty() || stat(library.c_str(), &info) != 0)
        return "the TrackIR stand-in " + library + " was not built (target trackir_double)";
    const std::string recorded = recordLocation(folder);
    if (!recorded.empty()) return recorded;
    void* handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) return std::string("cannot load the TrackIR stand-in: ") + dlerror();
    s.queueFrame = reinterpret_cast<void (*)(const unsigned char*)>(dlsym(handle, "trackirDoubleQueueFrame"));
    if (!s.queueFrame) return "the TrackIR stand-in has no trackirDoubleQueueFrame";
    s.installed = true;
    return "";
}

xphost::ScenarioVerbRegistration trackirVerb(
    "trackir",
    "trackir X Y Z YAW PITCH ROLL   (raw head tracker values for the next frame the TrackIR stand-in serves; "
    "translations to +-32766, rotations to +-16383; the plug-in finds the tracker at its next camera enable)",
    [](xphost::ScenarioLine& line) {
        if (line.args.size() != 7) return std::string("usage: trackir X Y Z YAW PITCH ROLL");
        double v[6];
        for (int i = 0; i < 6; ++i)
            if (!xphost::parseNumber(line.args[i + 1], v[i])) return "not a number: " + line.args[i + 1];
        std::string error = install();
        if (!error.empty()) return error;
        Stand& s = stand();
        unsigned char bytes[kFrameBytes];
        std::memset(bytes, 0, sizeof bytes);
        // Status 0 (usable) and a new signature, so the plug-in takes the frame as new.
        s.signature = static_cast<uint16_t>(s.signature == 0xffff ? 1 : s.signature + 1);
        bytes[2] = static_cast<unsigned char>(s.signature & 0xff);
        bytes[3] = static_cast<unsigned char>(s.signature >> 8);
        // The frame holds roll, pitch, yaw, then x, y, z.
        const double ordered[6] = {v[5], v[4], v[3], v[0], v[1], v[2]};
        for (int i = 0; i < 6; ++i) putFloat(bytes + 8 + 4 * i, static_cast<float>(ordered[i]));
        s.queueFrame(bytes);
        return std::string();
    });

}  // namespace
