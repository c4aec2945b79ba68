#include "platform/runtime.h"

#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "XPLMUtilities.h"

namespace {

using Clock = std::chrono::steady_clock;
Clock::time_point gClockZero;
bool gClockStarted = false;
char gVersionText[32];
double gSimulatorSeconds = 0.0;

}  // namespace

void logMessage(const char* format, ...) {
    char text[2048];
    std::memcpy(text, "Vistarig: ", 10);
    va_list args;
    va_start(args, format);
    int room = static_cast<int>(sizeof text) - 10 - 2;
    int n = std::vsnprintf(text + 10, static_cast<size_t>(room) + 1, format, args);
    va_end(args);
    if (n < 0) n = 0;
    if (n > room) n = room;
    int end = 10 + n;
    // A format that already ends in a newline doesn't get a second one.
    if (end == 10 || text[end - 1] != '\n') text[end++] = '\n';
    text[end] = '\0';
    XPLMDebugString(text);
}

int64_t monotonicMilliseconds() {
    Clock::time_point now = Clock::now();
    if (!gClockStarted) {
        gClockStarted = true;
        // One millisecond before the first call, so that no real time reads as 0
        // ("not set").
        gClockZero = now - std::chrono::milliseconds(1);
    }
    return std::chrono::duration_cast<std::chrono::milliseconds>(now - gClockZero).count();
}

double simulatorSeconds() { return gSimulatorSeconds; }

void advanceSimulatorClock(float seconds) {
    if (seconds > 0.0f) gSimulatorSeconds += seconds;
}

const char* versionText() {
    if (!gVersionText[0]) std::snprintf(gVersionText, sizeof gVersionText, "%d.%s", VISTARIG_MAJOR, VISTARIG_MINOR);
    return gVersionText;
}

int simulatorVersion() {
    int xplane = 0, xplm = 0;
    XPLMHostApplicationID host = 0;
    XPLMGetVersions(&xplane, &xplm, &host);
    return xplane;
}
