// What every layer needs from the running plug-in: its names and version, the one log
// function, the millisecond clock, the simulator clock and the simulator's version.
// The lowest home of these, so that no layer reaches up for them.
#pragma once

#include <cstdint>

#define VISTARIG_NAME "Vistarig"
#define VISTARIG_SIGNATURE "KVT.Vistarig"
#define VISTARIG_MAJOR 2
#define VISTARIG_MINOR "4.3"

// "Vistarig: " + formatted text + newline, through XPLMDebugString. Never throws;
// a text longer than the buffer is cut, not overrun.
void logMessage(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Whole milliseconds since the first call (made in XPluginStart); 0 means "not set".
int64_t monotonicMilliseconds();

// The simulator's time in seconds: the sum, in double, of the flight loop's elapsed
// times. Delays and timers of the view count this rather than the system clock, so
// they keep in step with the frames whether the simulator runs slower or faster than
// real time, and X-Plane and the host drive them alike. Summing in double keeps a
// whole microsecond after years of frames.
double simulatorSeconds();
void advanceSimulatorClock(float seconds);

// "2.4.3": the version text of the plug-in.
const char* versionText();

// The simulator's major version number as XPLMGetVersions gives it (e.g. 12004).
int simulatorVersion();
