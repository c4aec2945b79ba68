// The simulator stand-in's control API: what tests and the runner use to set up an
// X-Plane tree, load plug-ins, run frames, drive datarefs and commands and read back
// what the simulator was given. Plug-in code never includes this; it talks XPLM only.
#pragma once

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace xphost {

// ---------------------------------------------------------------- whole host
// Back to a freshly started simulator: every plug-in dropped (without calling it),
// every table rebuilt with its defaults, counters and records cleared, then every
// module's reset hook. The calling thread becomes the simulator's main thread.
void reset();

// The X-Plane tree: an absolute folder. The system path is this plus "/".
void setRoot(const std::string& root);
const std::string& root();  // always ends with "/"

// X-Plane version as XPLMGetVersions reports it (12100 by default); the XPLM version
// follows it.
void setVersion(int xplaneVersion);
int version();

// ---------------------------------------------------------------- plug-ins
using StartFn = int (*)(char* name, char* signature, char* description);
using EnableFn = int (*)();
using VoidFn = void (*)();
using ReceiveFn = void (*)(int from, int message, void* param);

struct EntryPoints {
    StartFn start = nullptr;
    EnableFn enable = nullptr;
    VoidFn disable = nullptr;
    VoidFn stop = nullptr;
    ReceiveFn receive = nullptr;
};

// Loads a .xpl with dlopen and calls XPluginStart. Result: the plug-in's id, or -1
// (the reason goes to the log).
int loadPlugin(const std::string& xplPath);
// The same for a plug-in linked into this program; xplPath is the file the plug-in
// believes it lives in (XPLMGetPluginInfo reports it). XPLM calls made outside any
// callback are then attributed to this plug-in.
int loadPlugin(const EntryPoints& entry, const std::string& xplPath);
// A plug-in that lives inside the host (DataRefTool, HeadShake...): enabled at once,
// gets messages through receive (may be null).
int addStandInPlugin(const char* name, const char* signature, const char* description,
                     ReceiveFn receive);

bool enablePlugin(int id);  // XPluginEnable; false if it refused
void disablePlugin(int id);  // XPluginDisable if enabled
// Disables if needed, calls XPluginStop, then lists what the plug-in still has
// registered (log and leaks()), and dlcloses a loaded library.
void stopPlugin(int id);
void stopAllPlugins();
bool pluginEnabled(int id);
int pluginBySignature(const char* signature);  // -1 when absent

// X-Plane's messages, sent from the simulator (id 0) to every enabled plug-in.
void sendMessage(int message, intptr_t param);
void sendPlaneLoaded(int aircraftIndex = 0);
void sendAirportLoaded();
void sendWillWritePrefs();
void sendEnteredVr();

// ---------------------------------------------------------------- time and frames
void setFrameStep(double seconds);  // default 1/30 s
double frameStep();
// Runs n frames; a step above 0 replaces the frame step for these frames.
void runFrames(int n, double step = 0);
double simTime();     // simulated seconds since reset: stands still while paused
// XPLMGetElapsedTime: seconds of frames since reset, counting on while paused.
double elapsedTime();
int frameNumber();    // frames run since reset

// ---------------------------------------------------------------- datarefs
// Any dataref (simulator's own or a plug-in's) by name, any type, through the same
// paths a plug-in's XPLMGet/XPLMSet calls take. Array elements by index; a byte
// dataref is read as one byte per index. ok false: unknown name or index.
double getValue(const std::string& name, int index = 0, bool* ok = nullptr);
// index -1 writes a scalar (or, for an array, element 0). False: unknown or read-only.
bool setValue(const std::string& name, double value, int index = -1);
// Writes a simulator dataref even if plug-ins may not (view type, aircraft position).
bool forceValue(const std::string& name, double value, int index = -1);
bool dataRefExists(const std::string& name);
// Log lookups of names that don't exist (off by default; the list is kept either way).
void setLogUnknownDataRefs(bool on);
const std::vector<std::string>& unknownDataRefLookups();

// ---------------------------------------------------------------- commands
enum class Phase { Begin, Continue, End, Once };
// False when the command doesn't exist.
bool runCommand(const std::string& name, Phase phase);
bool commandExists(const std::string& name);
// How often the simulator's own handling of the command ran (swallowed ones don't).
int simCommandCount(const std::string& name);

// ---------------------------------------------------------------- camera and views
enum ViewType {
    viewForwardWithPanel = 1000,
    viewTower = 1014,
    viewRunway = 1015,
    viewChase = 1017,
    viewCircle = 1018,
    viewLinearSpot = 1020,
    viewStillSpot = 1021,
    viewForwardWithHud = 1023,
    viewCockpit3d = 1026,
    viewFreeCamera = 1028,
};
int viewType();

struct CameraPosition {
    float x = 0, y = 0, z = 0, pitch = 0, heading = 0, roll = 0, zoom = 1;
};
bool cameraControlled();
int cameraController();  // plug-in id, or -1
CameraPosition cameraPosition();  // what the simulator draws with this frame

// ---------------------------------------------------------------- the aircraft
struct AircraftState {
    double x = 0, y = 0, z = 0;   // local metres
    float theta = 0, phi = 0, psi = 0;
    float groundSpeed = 0;        // m/s
};
// The default scripted path: level flight at a constant speed, heading turning slowly.
struct FlightPath {
    double startX = 0, startY = 1000, startZ = 0;
    float headingDeg = 90;
    float speed = 60;         // m/s
    float turnRate = 0.5f;    // deg/s, positive to the right
    float climbRate = 0;      // m/s
    float bankDeg = 2;
    float pitchDeg = 2;
};
void setFlightPath(const FlightPath& path);
// Replaces the scripted path: called every frame with the time since reset.
void setAircraftMover(std::function<AircraftState(double time)> mover);
void freezeAircraft(bool frozen);
// Pitch (nose up) and roll (right wing down) in degrees that replace the path's from
// now until the next reset; the heading still follows the path.
void setAircraftAttitude(float pitchDeg, float rollDeg);
AircraftState aircraft();

// The user's aircraft: a path relative to the root or absolute. Doesn't send a message.
void setUserAircraft(const std::string& acfPath);
std::string userAircraftPath();  // absolute
void setAircraftCount(int total, int active);

// ---------------------------------------------------------------- navigation data
// A few airports and a VOR around the default position (Seattle) after reset.
void clearNavData();
void addAirport(const std::string& id, const std::string& name, double latitude, double longitude,
                double elevationMetres);

// ---------------------------------------------------------------- menus
// The menu bar as text, one item a line, submenus indented, "[x]" for a check.
std::string menuText();
// Picks an item by its path of names, e.g. "Plugins/Vistarig/Toggle Control Panel":
// runs its command or calls its menu's handler. False with a message if absent.
bool pickMenuItem(const std::string& path, std::string& error);
// "enabled", "disabled" or "absent" for the item at a menu path.
std::string menuItemState(const std::string& path);

// ---------------------------------------------------------------- records
struct FrameRecord {
    int frame = 0;
    double time = 0;
    int viewType = 0;
    float headX = 0, headY = 0, headZ = 0, headPsi = 0, headThe = 0, headPhi = 0;
    float fov = 0;
    bool cameraControlled = false;
    CameraPosition camera;
    std::vector<double> extra;  // the columns modules added, in their order
};
const std::vector<FrameRecord>& frames();
// Benchmarks and long runs switch the record off (on by default); clearing keeps
// the columns.
void setFrameRecording(bool on);
void clearFrames();
// Modules and tests may add columns to the per-frame record and its CSV.
void addFrameColumn(const std::string& name, std::function<double()> value);
// Writes the records as CSV; false if the file can't be written.
bool writeFrameCsv(const std::string& path);

const std::string& logText();          // everything written to Log.txt since reset
std::string logTail(int lines);
const std::vector<std::string>& spoken();

// Calls made from a thread other than the main thread.
int threadViolationCount();
const std::vector<std::string>& threadViolations();

// What plug-ins still had registered after their XPluginStop, one line each.
const std::vector<std::string>& leaks();

// ---------------------------------------------------------------- scenarios
struct ScenarioLine {
    std::string file;
    int line = 0;
    std::vector<std::string> args;  // args[0] is the verb; "quoted words" stay one
    std::string text;               // the line after the verb, as written
    std::ostream* out = nullptr;
};
// Result: empty on success, else the message (without file and line).
using ScenarioVerb = std::function<std::string(ScenarioLine& line)>;
void registerScenarioVerb(const char* verb, const char* usage, ScenarioVerb action);
// Registration from a module's file: static ScenarioVerbRegistration r("verb", ...);
struct ScenarioVerbRegistration {
    ScenarioVerbRegistration(const char* verb, const char* usage, ScenarioVerb action) {
        registerScenarioVerb(verb, usage, std::move(action));
    }
};
// Runs a script; false after the first failing line, with "file:line: message" in error.
bool runScenario(const std::string& path, std::ostream& out, std::string& error);
bool runScenarioText(const std::string& text, const std::string& name, std::ostream& out,
                     std::string& error);
// Takes the lines between `before_load` and `end` out of a script: beforeLoad gets
// them, rest the others; both keep the script's line numbers (the other part's lines
// become blank). False with "LINE: message" for an unclosed or nested section.
bool splitBeforeLoad(const std::string& text, std::string& beforeLoad, std::string& rest, std::string& error);
// The verbs with their usage, for --help.
std::string scenarioHelp();
// The id of the plug-in that enable/disable verbs act on.
void setScenarioPlugin(int id);

// Locale-independent number helpers for host modules and the runner.
bool parseNumber(const std::string& text, double& value);
std::string formatNumber(double value);

}  // namespace xphost
