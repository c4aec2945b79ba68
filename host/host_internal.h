// What the host's modules share: the main-thread check, the calling plug-in, the
// simulator's own datarefs, frame and reset hooks and the leak registry. A module
// (windows, world, joystick...) hooks itself in with one static HostModule record.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/host.h"

namespace xphost {

// ---------------------------------------------------------------- threads
// Every XPLM entry point calls this first with its own name. A call from a thread
// other than the simulator's main thread is recorded, logged and counted; the
// result is false then, and the entry point should do nothing.
bool checkThread(const char* function);

// ---------------------------------------------------------------- plug-ins
// The plug-in whose code is running: set around every call into a plug-in, so that
// registrations and XPLMGetMyID know their owner. 0 is the simulator itself.
int callingPlugin();
struct PluginScope {
    explicit PluginScope(int plugin);
    ~PluginScope();
    PluginScope(const PluginScope&) = delete;
    PluginScope& operator=(const PluginScope&) = delete;
    int previous;
};
// Callbacks of a plug-in that is disabled or stopped are not called.
bool pluginActive(int plugin);
std::string pluginName(int plugin);

// ---------------------------------------------------------------- log
void writeLog(const std::string& text);  // into Log.txt and memory, as XPLMDebugString
void debugLog(const std::string& text);  // only with HOST_DEBUG set in the environment

// ---------------------------------------------------------------- datarefs
enum DataKind : int {
    kindInt = 1,
    kindFloat = 2,
    kindDouble = 4,
    kindFloatArray = 8,
    kindIntArray = 16,
    kindData = 32,
};

// One dataref of the simulator's own. Modules hold the pointer (valid until the next
// reset) and read or write the values directly.
struct SimDataRef {
    std::string name;
    int types = 0;           // DataKind bits that reads accept
    bool writable = false;   // by plug-ins; the host may always write
    int i = 0;
    float f = 0;
    double d = 0;
    std::vector<int> ints;
    std::vector<float> floats;
    std::vector<uint8_t> bytes;
    std::function<void(SimDataRef&)> onWrite;  // after a plug-in's write

    // Scalars keep int, float and double in step.
    void set(double value) {
        d = value;
        f = static_cast<float>(value);
        i = static_cast<int>(value);
    }
};

// Defines (or redefines with new defaults) a simulator dataref. Call from a reset
// hook: the table is rebuilt at every reset.
SimDataRef* defineInt(const char* name, int value, bool writable);
SimDataRef* defineFloat(const char* name, float value, bool writable);
SimDataRef* defineDouble(const char* name, double value, bool writable);
SimDataRef* defineIntArray(const char* name, int size, bool writable);
SimDataRef* defineFloatArray(const char* name, int size, bool writable);
SimDataRef* defineBytes(const char* name, int size, bool writable);
SimDataRef* simDataRef(const char* name);  // null if the simulator lacks it

// ---------------------------------------------------------------- commands
// The simulator's own handling of one of its commands, run after the before-handlers
// let it through. Modules define commands from a reset hook.
void defineSimCommand(const char* name, const char* description,
                      std::function<void(int phase)> action);

// Selects one of the simulator's views as a view command does: a plug-in holding the
// camera gets its callback with losingControl set and loses it.
void selectView(int viewType);

// ---------------------------------------------------------------- frames
enum class FramePoint {
    Input,             // first: mouse and keys of the frame
    BeforeFlightLoops,
    AfterFlightModel,  // the aircraft has moved
    AfterFlightLoops,
    Camera,            // the camera position of the frame is settled
    Draw,              // windows and draw callbacks
    AfterFrame,        // after the frame's record was taken
};

// ---------------------------------------------------------------- time
// Simulated seconds of the frame being run: 0 while the simulator is paused.
double simulatedStep();
bool simulatorPaused();

// ---------------------------------------------------------------- modules
// A module of the host: give one static instance of this in the module's file.
// reset: rebuild the module's state and define its datarefs and commands (also
//        called once before the first use of the host).
// leaks: append one line for each thing the plug-in still has registered.
struct HostModule {
    HostModule(const char* name, std::function<void()> reset,
               std::function<void(int plugin, std::vector<std::string>& out)> leaks = {});
};
// A frame hook; order within a point is the order of registration. Register from a
// static initializer or a reset hook (hooks added in a reset hook are dropped at the
// next reset, before the reset hooks run again).
void addFrameHook(FramePoint point, const char* name, std::function<void()> hook);

// Internal module registry used by the core.
void ensureInitialized();

}  // namespace xphost
