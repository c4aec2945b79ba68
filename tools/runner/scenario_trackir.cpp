// The scenario verb `trackir`: a head tracker for scenarios. It installs the TrackIR
// stand-in (the test double built as NPClient64.so) where the plug-in looks for the
// client library, and queues frames of raw tracker values for it to serve.
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

// Writes the location file that names the stand-in's folder and opens the library;
// the plug-in's own load of the same file gets this instance.
std::string install() {
    Stand& s = stand();
    if (s.installed) return "";
    const std::string folder = VISTARIG_TRACKIR_DOUBLE_DIR;
    const std::string library = folder + "/NPClient64.so";
    struct stat info;
    if (folder.empty() || stat(library.c_str(), &info) != 0)
        return "the TrackIR stand-in " + library + " was not built (target trackir_double)";
    const std::string location = xphost::root() + "Resources/plugins/Vistarig/NPClient Location.txt";
    {
        std::ofstream out(location + ".tmp", std::ios::trunc);
        out << folder << "\n";
        if (!out) return "cannot write " + location;
    }
    if (std::rename((location + ".tmp").c_str(), location.c_str()) != 0) return "cannot write " + location;
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
