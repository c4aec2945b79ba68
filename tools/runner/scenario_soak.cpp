// Scenario verbs of long runs: a soak that works the plug-in the way a user does for
// hours and measures the process's memory, and pictures for the contact sheet.
#ifdef _WIN32
#include <windows.h>
#include <psapi.h>
#else
#include <sys/resource.h>
#include <unistd.h>
#endif

#include <cstdio>
#include <ostream>
#include <string>

#include "contact_sheet.h"
#include "host/host.h"
#include "host/windows.h"

namespace {

using xphost::ScenarioLine;

#ifdef _WIN32
long residentKilobytes() {
    PROCESS_MEMORY_COUNTERS counters{};
    if (!GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters)) return 0;
    return static_cast<long>(counters.WorkingSetSize / 1024);
}

long peakKilobytes() {
    PROCESS_MEMORY_COUNTERS counters{};
    if (!GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters)) return 0;
    return static_cast<long>(counters.PeakWorkingSetSize / 1024);
}
#else
long residentKilobytes() {
    long pages = 0, resident = 0;
    std::FILE* f = std::fopen("/proc/self/statm", "r");
    if (!f) return 0;
    if (std::fscanf(f, "%ld %ld", &pages, &resident) != 2) resident = 0;
    std::fclose(f);
    return resident * (::sysconf(_SC_PAGESIZE) / 1024);
}

long peakKilobytes() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;  // kilobytes on Linux
}
#endif

// One 2-second cycle of a user at work: the next camera (every seventh time the next
// category, so outside and cockpit cameras and their transitions all come round),
// then a look round with the right button held, dragged across and back.
void soakFrame(int frame, int framesPerCycle) {
    const int cycle = frame / framesPerCycle, inCycle = frame % framesPerCycle;
    if (inCycle == 0)
        xphost::runCommand(cycle % 7 == 6 ? "KVT/Vistarig/Next_Category" : "KVT/Vistarig/Next_Camera",
                           xphost::Phase::Once);
    const int lookStart = framesPerCycle / 4, lookEnd = framesPerCycle * 3 / 4;
    if (inCycle == lookStart) {
        xphost::mouseMove(960, 540);
        xphost::mouseButton(1, 1, 960, 540);
    } else if (inCycle > lookStart && inCycle < lookEnd) {
        const int half = (lookEnd - lookStart) / 2, step = inCycle - lookStart;
        const int dx = step <= half ? step * 6 : (2 * half - step) * 6;
        xphost::mouseMove(960 + dx, 540 + dx / 3);
    } else if (inCycle == lookEnd) {
        xphost::mouseButton(1, 3, 960, 540);
    }
}

std::string soakVerb(ScenarioLine& line) {
    const auto& a = line.args;
    double frames = 0, limit = -1;
    if (a.size() < 2 || a.size() > 3 || !xphost::parseNumber(a[1], frames) || frames < 2 ||
        (a.size() == 3 && !xphost::parseNumber(a[2], limit)))
        return "usage: soak FRAMES [MAX_GROWTH_KB]";
    const int total = static_cast<int>(frames);
    const int framesPerCycle = static_cast<int>(2.0 / xphost::frameStep() + 0.5);
    // A million rows would be the leak: the soak keeps no per-frame record.
    xphost::setFrameRecording(false);
    xphost::runCommand("KVT/Vistarig/Toggle_Control_Panel_on_or_off", xphost::Phase::Once);
    long halfway = 0;
    for (int f = 0; f < total; ++f) {
        soakFrame(f, framesPerCycle > 0 ? framesPerCycle : 60);
        xphost::runFrames(1);
        if (f + 1 == total / 2) halfway = residentKilobytes();
    }
    xphost::runCommand("KVT/Vistarig/Toggle_Control_Panel_on_or_off", xphost::Phase::Once);
    xphost::setFrameRecording(true);
    const long end = residentKilobytes(), growth = end - halfway;
    *line.out << "soak: " << total << " frames, peak resident " << peakKilobytes() << " KB, resident at half "
              << halfway << " KB, at end " << end << " KB, growth over the second half " << growth << " KB\n";
    if (limit >= 0 && growth > limit)
        return "memory grew by " + std::to_string(growth) + " KB over the second half (limit " +
               xphost::formatNumber(limit) + " KB)";
    return "";
}

std::string pictureVerb(ScenarioLine& line) {
    if (!xphost::drawing()) return "";  // a run without drawing takes no pictures
    if (!addContactPicture(line.text)) return "no picture: nothing was drawn";
    return "";
}

xphost::ScenarioVerbRegistration soak("soak", "soak FRAMES [MAX_GROWTH_KB]   (camera changes, mouse look, the Control Panel; memory)",
                                      soakVerb);
xphost::ScenarioVerbRegistration picture("picture", "picture [TEXT]   (the screen onto the contact sheet, captioned TEXT)",
                                         pictureVerb);

}  // namespace
