// The host's spine: initialisation and reset, the main-thread check, the calling
// plug-in, module and frame-hook registries, the log, and the frame loop.
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <thread>

#include "host/core_parts.h"
#include "host/portable.h"

namespace xphost {

namespace {

struct ModuleRecord {
    std::string name;
    std::function<void()> reset;
    std::function<void(int, std::vector<std::string>&)> leaks;
};

struct HookRecord {
    FramePoint point;
    std::string name;
    std::function<void()> hook;
    bool permanent;
};

struct FrameColumn {
    std::string name;
    std::function<double()> value;
    bool permanent;
};

// Function-local statics: modules register from static initialisers in other
// translation units, whose order is not known.
std::vector<ModuleRecord>& modules() {
    static std::vector<ModuleRecord> list;
    return list;
}
std::vector<HookRecord>& hooks() {
    static std::vector<HookRecord> list;
    return list;
}
std::vector<FrameColumn>& columns() {
    static std::vector<FrameColumn> list;
    return list;
}

struct CoreState {
    bool initialized = false;
    bool inReset = false;
    std::thread::id mainThread;
    int callingPlugin = 0;
    std::string root;
    int xplaneVersion = 12100;
    double time = 0;     // simulated: stands still while paused
    double elapsed = 0;  // wall time of the frames: counts on while paused
    double simStep = 0;  // simulated seconds of the frame being run
    int frame = 0;
    double step = 1.0 / 30.0;
    std::string log;
    std::vector<std::string> spoken;
    std::vector<std::string> violations;
    std::vector<std::string> leaks;
    std::vector<FrameRecord> frames;
    bool debug = false;
    bool recording = true;
    // The frame's own datarefs, looked up once a reset (the table is rebuilt then).
    SimDataRef* paused = nullptr;
    SimDataRef* framePeriod = nullptr;
    SimDataRef* runningTime = nullptr;
};

CoreState& core() {
    static CoreState state;
    return state;
}

std::string defaultRoot() {
    const char* tmp = std::getenv("TMPDIR");
    std::string base = tmp && *tmp ? tmp : "/tmp";
    return base + "/xphost-" + std::to_string(static_cast<long>(::getpid())) + "/";
}

void runHooks(FramePoint point) {
    // By index: a hook may add hooks.
    for (size_t i = 0; i < hooks().size(); ++i) {
        if (hooks()[i].point == point) {
            auto hook = hooks()[i].hook;
            hook();
        }
    }
}

void recordFrame() {
    FrameRecord r;
    r.frame = core().frame;
    r.time = core().time;
    r.viewType = viewType();
    auto f = [](const char* name) {
        SimDataRef* ref = simDataRef(name);
        return ref ? ref->f : 0.0f;
    };
    r.headX = f("sim/graphics/view/pilots_head_x");
    r.headY = f("sim/graphics/view/pilots_head_y");
    r.headZ = f("sim/graphics/view/pilots_head_z");
    r.headPsi = f("sim/graphics/view/pilots_head_psi");
    r.headThe = f("sim/graphics/view/pilots_head_the");
    r.headPhi = f("sim/graphics/view/pilots_head_phi");
    r.fov = f("sim/graphics/view/field_of_view_deg");
    r.cameraControlled = cameraControlled();
    r.camera = cameraPosition();
    for (auto& c : columns()) r.extra.push_back(c.value ? c.value() : 0.0);
    core().frames.push_back(std::move(r));
}

}  // namespace

// ---------------------------------------------------------------- init and reset

void ensureInitialized() {
    if (!core().initialized && !core().inReset) reset();
}

void reset() {
    CoreState& c = core();
    c.inReset = true;
    c.mainThread = std::this_thread::get_id();
    c.debug = std::getenv("HOST_DEBUG") != nullptr;
    c.callingPlugin = 0;
    if (c.root.empty()) c.root = defaultRoot();
    c.xplaneVersion = 12100;
    c.time = 0;
    c.elapsed = 0;
    c.simStep = 0;
    c.frame = 0;
    c.step = 1.0 / 30.0;
    c.log.clear();
    c.spoken.clear();
    c.violations.clear();
    c.leaks.clear();
    c.frames.clear();
    c.recording = true;
    auto& h = hooks();
    h.erase(std::remove_if(h.begin(), h.end(), [](const HookRecord& r) { return !r.permanent; }), h.end());
    auto& cols = columns();
    cols.erase(std::remove_if(cols.begin(), cols.end(), [](const FrameColumn& r) { return !r.permanent; }),
               cols.end());
    // Plug-ins first: they are dropped without being called.
    resetPlugins();
    resetDataRefs();
    resetCommands();
    resetProcessing();
    resetCamera();
    resetAircraft();
    resetUtilities();
    defineSimTables();
    for (size_t i = 0; i < modules().size(); ++i) {
        auto fn = modules()[i].reset;
        if (fn) fn();
    }
    c.paused = simDataRef("sim/time/paused");
    c.framePeriod = simDataRef("sim/operation/misc/frame_rate_period");
    c.runningTime = simDataRef("sim/time/total_running_time_sec");
    c.initialized = true;
    c.inReset = false;
}

HostModule::HostModule(const char* name, std::function<void()> resetFn,
                       std::function<void(int, std::vector<std::string>&)> leaksFn) {
    modules().push_back({name, std::move(resetFn), std::move(leaksFn)});
}

void addFrameHook(FramePoint point, const char* name, std::function<void()> hook) {
    hooks().push_back({point, name, std::move(hook), !core().inReset});
}

void addFrameColumn(const std::string& name, std::function<double()> value) {
    for (auto& col : columns())
        if (col.name == name) {
            col.value = std::move(value);
            return;
        }
    columns().push_back({name, std::move(value), !core().inReset});
}

// ---------------------------------------------------------------- threads

bool checkThread(const char* function) {
    ensureInitialized();
    CoreState& c = core();
    if (std::this_thread::get_id() == c.mainThread) return true;
    // Only the counter and the list are touched here; a worker racing the main
    // thread is already the bug being reported.
    std::string line = std::string("Thread violation: ") + function + " called from a worker thread";
    c.violations.push_back(line);
    std::fprintf(stderr, "xplm_host: %s\n", line.c_str());
    return false;
}

int threadViolationCount() {
    return static_cast<int>(core().violations.size());
}
const std::vector<std::string>& threadViolations() {
    return core().violations;
}

// ---------------------------------------------------------------- calling plug-in

int callingPlugin() {
    return core().callingPlugin;
}
PluginScope::PluginScope(int plugin) : previous(core().callingPlugin) {
    core().callingPlugin = plugin;
}
PluginScope::~PluginScope() {
    core().callingPlugin = previous;
}
void setDefaultCallingPlugin(int plugin) {
    core().callingPlugin = plugin;
}

// ---------------------------------------------------------------- log

void writeLog(const std::string& text) {
    CoreState& c = core();
    c.log += text;
    if (c.root.empty()) return;
    std::ofstream out(c.root + "Log.txt", std::ios::app | std::ios::binary);
    out << text;
}

void debugLog(const std::string& text) {
    if (core().debug) writeLog("xplm_host: " + text + "\n");
}

const std::string& logText() {
    return core().log;
}

std::string logTail(int lines) {
    const std::string& log = core().log;
    size_t pos = log.size();
    if (pos > 0 && log[pos - 1] == '\n') --pos;
    int found = 0;
    while (pos > 0) {
        if (log[pos - 1] == '\n' && ++found == lines) break;
        --pos;
    }
    return log.substr(pos);
}

void recordSpeech(const std::string& text) {
    core().spoken.push_back(text);
}
const std::vector<std::string>& spoken() {
    return core().spoken;
}

// ---------------------------------------------------------------- leaks

std::vector<std::string> collectLeaks(int plugin) {
    std::vector<std::string> out;
    listDataRefLeaks(plugin, out);
    listCommandLeaks(plugin, out);
    listFlightLoopLeaks(plugin, out);
    listCameraLeaks(plugin, out);
    for (auto& m : modules())
        if (m.leaks) m.leaks(plugin, out);
    return out;
}

void addLeakLines(const std::vector<std::string>& lines) {
    for (auto& l : lines) core().leaks.push_back(l);
}

const std::vector<std::string>& leaks() {
    return core().leaks;
}

// ---------------------------------------------------------------- settings

void setRoot(const std::string& root) {
    ensureInitialized();
    std::string r = absoluteFolder(root);
    if (r.empty() || r.back() != '/') r += '/';
    std::string old = core().root;
    core().root = r;
    rebaseUserAircraft(old, r);
}
const std::string& root() {
    ensureInitialized();
    return core().root;
}
void setVersion(int xplaneVersion) {
    ensureInitialized();
    core().xplaneVersion = xplaneVersion;
}
int version() {
    ensureInitialized();
    return core().xplaneVersion;
}

void setFrameStep(double seconds) {
    ensureInitialized();
    if (seconds > 0) core().step = seconds;
}
double frameStep() {
    ensureInitialized();
    return core().step;
}
double simTime() {
    return core().time;
}
double elapsedTime() {
    return core().elapsed;
}
double simulatedStep() {
    return core().simStep;
}
bool simulatorPaused() {
    return core().paused && core().paused->i != 0;
}
int frameNumber() {
    return core().frame;
}
double currentTime() {
    return core().elapsed;
}
int currentFrame() {
    return core().frame;
}
double currentStep() {
    return core().step;
}

// ---------------------------------------------------------------- the frame

void runFrames(int n, double step) {
    ensureInitialized();
    CoreState& c = core();
    for (int k = 0; k < n; ++k) {
        double dt = step > 0 ? step : c.step;
        // Paused, the flight model and simulated time stand still; frames, flight
        // loops, elapsed time and drawing go on, as in X-Plane.
        const bool paused = simulatorPaused();
        c.simStep = paused ? 0.0 : dt;
        c.elapsed += dt;
        c.time += c.simStep;
        c.frame += 1;
        if (c.framePeriod) c.framePeriod->set(dt);
        if (c.runningTime) c.runningTime->set(c.time);
        runHooks(FramePoint::Input);
        runHeldCommands();
        runHooks(FramePoint::BeforeFlightLoops);
        runFlightLoops(0);
        if (!paused) moveAircraft(c.time, dt);
        runHooks(FramePoint::AfterFlightModel);
        runFlightLoops(1);
        runHooks(FramePoint::AfterFlightLoops);
        runCamera();
        runHooks(FramePoint::Camera);
        runHooks(FramePoint::Draw);
        if (c.recording) recordFrame();
        runHooks(FramePoint::AfterFrame);
    }
}

void setFrameRecording(bool on) {
    ensureInitialized();
    core().recording = on;
}

void clearFrames() {
    core().frames.clear();
}

const std::vector<FrameRecord>& frames() {
    return core().frames;
}

bool writeFrameCsv(const std::string& path) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out) return false;
    out << "frame,time,view_type,head_x,head_y,head_z,head_psi,head_the,head_phi,fov,"
           "camera_controlled,camera_x,camera_y,camera_z,camera_pitch,camera_heading,camera_roll,"
           "camera_zoom";
    for (auto& col : columns()) out << ',' << col.name;
    out << '\n';
    for (const FrameRecord& r : core().frames) {
        out << r.frame << ',' << formatNumber(r.time) << ',' << r.viewType;
        for (double v : {r.headX, r.headY, r.headZ, r.headPsi, r.headThe, r.headPhi, r.fov})
            out << ',' << formatNumber(v);
        out << ',' << (r.cameraControlled ? 1 : 0);
        const CameraPosition& p = r.camera;
        for (double v : {p.x, p.y, p.z, p.pitch, p.heading, p.roll, p.zoom}) out << ',' << formatNumber(v);
        for (double v : r.extra) out << ',' << formatNumber(v);
        out << '\n';
    }
    return static_cast<bool>(out);
}

// ---------------------------------------------------------------- numbers

bool parseNumber(const std::string& text, double& value) {
    const char* begin = text.data();
    const char* end = begin + text.size();
    if (begin != end && *begin == '+') ++begin;
    auto result = std::from_chars(begin, end, value);
    return result.ec == std::errc() && result.ptr == end && begin != end;
}

std::string formatNumber(double value) {
    if (std::isfinite(value) && value == std::floor(value) && std::fabs(value) < 1e15) {
        char buf[32];
        auto r = std::to_chars(buf, buf + sizeof buf, static_cast<long long>(value));
        return std::string(buf, r.ptr);
    }
    char buf[64];
    // Six decimals is finer than anything the camera cares about and keeps CSVs short.
    auto r = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::fixed, 6);
    std::string s(buf, r.ptr);
    while (!s.empty() && s.back() == '0') s.pop_back();
    if (!s.empty() && s.back() == '.') s.pop_back();
    if (s == "-0") s = "0";
    return s;
}

}  // namespace xphost
