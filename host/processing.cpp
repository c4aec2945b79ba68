// Flight loops: both registration APIs, scheduling in seconds or frames, the times
// passed in, and registration changes from inside a callback.
#include <algorithm>
#include <cmath>
#include <memory>
#include <string>

#include "XPLMProcessing.h"
#include "host/core_parts.h"

namespace xphost {

namespace {

struct FlightLoop {
    XPLMFlightLoop_f fn = nullptr;
    void* refcon = nullptr;
    int phase = xplm_FlightLoop_Phase_AfterFlightModel;
    int plugin = 0;
    bool legacy = false;  // registered by callback and refcon
    bool dead = false;
    bool scheduled = false;
    bool inFrames = false;
    double dueTime = 0;
    int dueFrame = 0;
    double lastCallTime = 0;
};

struct Misuse {
    int plugin;
    std::string text;
};

struct LoopTable {
    std::vector<std::unique_ptr<FlightLoop>> loops;
    double lastDispatchTime = 0;
    int depth = 0;  // >0 while callbacks run: dead loops are only erased outside
    FlightLoop* running = nullptr;  // the loop whose callback runs now
    // What X-Plane warns against, named in the leftover report at XPluginStop.
    std::vector<Misuse> misuse;
};

LoopTable& loops() {
    static LoopTable t;
    return t;
}

// Interval as X-Plane reads it: above 0 seconds, below 0 frames, 0 not at all.
// Relative to now, or to the last call.
void schedule(FlightLoop* loop, float interval, bool relativeToNow) {
    if (interval == 0.0f) {
        loop->scheduled = false;
        return;
    }
    loop->scheduled = true;
    if (interval < 0) {
        loop->inFrames = true;
        int frames = std::max(1, static_cast<int>(std::lround(-interval)));
        loop->dueFrame = currentFrame() + frames;
    } else {
        loop->inFrames = false;
        double base = relativeToNow ? currentTime() : loop->lastCallTime;
        loop->dueTime = base + interval;
    }
}

FlightLoop* findLegacy(XPLMFlightLoop_f fn, void* refcon) {
    for (auto& l : loops().loops)
        if (!l->dead && l->legacy && l->fn == fn && l->refcon == refcon) return l.get();
    return nullptr;
}

FlightLoop* live(XPLMFlightLoopID id) {
    for (auto& l : loops().loops)
        if (l.get() == id && !l->dead) return l.get();
    return nullptr;
}

void eraseDead() {
    auto& v = loops().loops;
    v.erase(std::remove_if(v.begin(), v.end(), [](const std::unique_ptr<FlightLoop>& l) { return l->dead; }),
            v.end());
}

void kill(FlightLoop* loop) {
    loop->dead = true;
    if (loops().depth == 0) eraseDead();
}

std::string describe(const FlightLoop& l) {
    return std::string(l.legacy ? "flight loop callback" : "flight loop") + (l.scheduled ? "" : " (not scheduled)");
}

}  // namespace

void noteMisuse(int plugin, const std::string& text) {
    for (const Misuse& m : loops().misuse)
        if (m.plugin == plugin && m.text == text) return;
    loops().misuse.push_back({plugin, text});
}

void resetProcessing() {
    loops().misuse.clear();
    loops().running = nullptr;
    loops().loops.clear();
    loops().lastDispatchTime = 0;
    loops().depth = 0;
}

void runFlightLoops(int phase) {
    LoopTable& t = loops();
    double now = currentTime();
    int frame = currentFrame();
    float sinceLastLoop = static_cast<float>(now - t.lastDispatchTime);
    // Snapshot of the loops present now: ones registered inside a callback wait for
    // the next frame, destroyed ones are skipped by their flag.
    std::vector<FlightLoop*> present;
    for (auto& l : t.loops) present.push_back(l.get());
    t.depth += 1;
    for (FlightLoop* l : present) {
        if (l->dead || !l->scheduled || l->phase != phase || !pluginActive(l->plugin)) continue;
        bool due = l->inFrames ? frame >= l->dueFrame : now >= l->dueTime - 1e-9;
        if (!due) continue;
        float sinceLastCall = static_cast<float>(now - l->lastCallTime);
        float next;
        {
            PluginScope scope(l->plugin);
            FlightLoop* outer = t.running;
            t.running = l;
            next = l->fn(sinceLastCall, sinceLastLoop, frame, l->refcon);
            t.running = outer;
        }
        if (l->dead) continue;
        l->lastCallTime = now;
        schedule(l, next, true);
    }
    t.depth -= 1;
    if (t.depth == 0) eraseDead();
    if (phase == xplm_FlightLoop_Phase_AfterFlightModel) t.lastDispatchTime = now;
}

void listFlightLoopLeaks(int plugin, std::vector<std::string>& out) {
    for (auto& l : loops().loops)
        if (!l->dead && l->plugin == plugin) out.push_back(describe(*l));
    for (const Misuse& m : loops().misuse)
        if (m.plugin == plugin) out.push_back(m.text);
}

void dropFlightLoopsOf(int plugin) {
    for (auto& l : loops().loops)
        if (l->plugin == plugin) l->dead = true;
    if (loops().depth == 0) eraseDead();
}

}  // namespace xphost

using namespace xphost;

float XPLMGetElapsedTime(void) {
    if (!checkThread("XPLMGetElapsedTime")) return 0;
    return static_cast<float>(currentTime());
}

int XPLMGetCycleNumber(void) {
    if (!checkThread("XPLMGetCycleNumber")) return 0;
    return currentFrame();
}

void XPLMRegisterFlightLoopCallback(XPLMFlightLoop_f inFlightLoop, float inInterval, void* inRefcon) {
    if (!checkThread("XPLMRegisterFlightLoopCallback") || !inFlightLoop) return;
    // X-Plane keeps both registrations and calls the function twice a loop.
    if (findLegacy(inFlightLoop, inRefcon))
        noteMisuse(callingPlugin(), "flight loop callback registered twice with the same refcon (called twice a loop)");
    auto loop = std::make_unique<FlightLoop>();
    loop->fn = inFlightLoop;
    loop->refcon = inRefcon;
    loop->legacy = true;
    loop->plugin = callingPlugin();
    loop->lastCallTime = currentTime();
    schedule(loop.get(), inInterval, true);
    loops().loops.push_back(std::move(loop));
}

void XPLMUnregisterFlightLoopCallback(XPLMFlightLoop_f inFlightLoop, void* inRefcon) {
    if (!checkThread("XPLMUnregisterFlightLoopCallback")) return;
    FlightLoop* l = findLegacy(inFlightLoop, inRefcon);
    if (!l) return;
    // X-Plane's documentation forbids this; it is honoured and reported.
    if (loops().running && loops().running->fn == inFlightLoop && loops().running->refcon == inRefcon)
        noteMisuse(callingPlugin(), "flight loop callback unregistered from inside itself");
    kill(l);
}

void XPLMSetFlightLoopCallbackInterval(XPLMFlightLoop_f inFlightLoop, float inInterval, int inRelativeToNow,
                                       void* inRefcon) {
    if (!checkThread("XPLMSetFlightLoopCallbackInterval")) return;
    if (FlightLoop* l = findLegacy(inFlightLoop, inRefcon)) schedule(l, inInterval, inRelativeToNow != 0);
}

XPLMFlightLoopID XPLMCreateFlightLoop(XPLMCreateFlightLoop_t* inParams) {
    if (!checkThread("XPLMCreateFlightLoop") || !inParams || !inParams->callbackFunc) return nullptr;
    auto loop = std::make_unique<FlightLoop>();
    loop->fn = inParams->callbackFunc;
    loop->refcon = inParams->refcon;
    loop->phase = inParams->phase == xplm_FlightLoop_Phase_BeforeFlightModel
                      ? xplm_FlightLoop_Phase_BeforeFlightModel
                      : xplm_FlightLoop_Phase_AfterFlightModel;
    loop->plugin = callingPlugin();
    loop->lastCallTime = currentTime();
    FlightLoop* id = loop.get();
    loops().loops.push_back(std::move(loop));
    return id;
}

void XPLMDestroyFlightLoop(XPLMFlightLoopID inFlightLoopID) {
    if (!checkThread("XPLMDestroyFlightLoop")) return;
    if (FlightLoop* l = live(inFlightLoopID)) kill(l);
}

void XPLMScheduleFlightLoop(XPLMFlightLoopID inFlightLoopID, float inInterval, int inRelativeToNow) {
    if (!checkThread("XPLMScheduleFlightLoop")) return;
    if (FlightLoop* l = live(inFlightLoopID)) schedule(l, inInterval, inRelativeToNow != 0);
}
