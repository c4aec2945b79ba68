// The five functions the simulator calls, the log function and the millisecond clock.
// Every entry point catches everything: an exception must never cross into the
// simulator, which would take the whole flight down with it.
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <exception>

#include "data/aircraft_files.h"
#include "platform/network.h"
#include "shell/host_interface.h"
#include "shell/lifecycle.h"

namespace {

using Clock = std::chrono::steady_clock;
Clock::time_point gClockZero;
bool gClockStarted = false;
char gVersionText[32];

template <typename F>
void guarded(const char* where, F&& body) {
    try {
        body();
    } catch (const std::exception& e) {
        logMessage("%s failed: %s", where, e.what());
    } catch (...) {
        logMessage("%s failed", where);
    }
}

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

namespace {
double gSimulatorSeconds = 0.0;
}

double simulatorSeconds() { return gSimulatorSeconds; }

void advanceSimulatorClock(float seconds) {
    if (seconds > 0.0f) gSimulatorSeconds += seconds;
}

const char* versionText() {
    if (!gVersionText[0]) std::snprintf(gVersionText, sizeof gVersionText, "%d.%s", VISTARIG_MAJOR, VISTARIG_MINOR);
    return gVersionText;
}

PLUGIN_API int XPluginStart(char* outName, char* outSignature, char* outDescription) {
    guarded("XPluginStart", [&] {
        char description[256];
        std::snprintf(description, sizeof description, "Advanced Camera Plugin version %s", versionText());
        std::snprintf(outName, 256, "%.255s", VISTARIG_NAME);
        std::snprintf(outSignature, 256, "%.255s", VISTARIG_SIGNATURE);
        std::snprintf(outDescription, 256, "%.255s", description);
        XPLMEnableFeature("XPLM_USE_NATIVE_WIDGET_WINDOWS", 1);
        XPLMEnableFeature("XPLM_USE_NATIVE_PATHS", 1);
        monotonicMilliseconds();
        // Asked afresh at every start: a plug-in started again in the same process (as the
        // host's in-process tests do) may have been installed somewhere else.
        overridePluginDirectory(nullptr);
        int error = startNetwork();
        if (error != 0) logMessage("Network failed to start: %d\n", error);
        pluginStart();
    });
    return 1;
}

PLUGIN_API int XPluginEnable() {
    guarded("XPluginEnable", [] { hostEnable(); });
    return 1;
}

PLUGIN_API void XPluginDisable() {
    guarded("XPluginDisable", [] { hostDisable(); });
}

PLUGIN_API void XPluginStop() {
    guarded("XPluginStop", [] { pluginStop(); });
}

PLUGIN_API void XPluginReceiveMessage(XPLMPluginID from, int message, void* param) {
    guarded("XPluginReceiveMessage", [&] { receiveMessage(from, message, param); });
}
