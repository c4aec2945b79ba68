// The camera: the simulator's own camera for each view, a plug-in's control of it
// through its callback, and the position the simulator draws with each frame.
#include <cmath>

#include "XPLMCamera.h"
#include "host/core_parts.h"

namespace xphost {

namespace {

struct CameraState {
    bool active = false;
    XPLMCameraControl_f fn = nullptr;
    void* refcon = nullptr;
    int howLong = 0;
    int plugin = -1;
    float simZoom = 1.0f;     // the simulator keeps the last zoom it was given
    CameraPosition current;   // of the last frame, or of the last view change
    bool haveCurrent = false;
};

CameraState& cam() {
    static CameraState s;
    return s;
}

float simf(const char* name) {
    SimDataRef* r = simDataRef(name);
    return r ? r->f : 0.0f;
}

constexpr double degToRad = 3.14159265358979323846 / 180.0;

// Where the simulator itself puts the camera in the present view.
CameraPosition simulatorCamera() {
    CameraState& s = cam();
    AircraftState a = aircraft();
    CameraPosition p;
    p.zoom = s.simZoom;
    double psi = a.psi * degToRad;
    // The heading's right and back axes in local coordinates (x east, y up, z south).
    double rightX = std::cos(psi), rightZ = std::sin(psi);
    double backX = -std::sin(psi), backZ = std::cos(psi);
    int view = viewType();
    if (view == viewCockpit3d || view == viewForwardWithPanel || view == viewForwardWithHud) {
        float hx = simf("sim/graphics/view/pilots_head_x");
        float hy = simf("sim/graphics/view/pilots_head_y");
        float hz = simf("sim/graphics/view/pilots_head_z");
        // The head offset is in the aircraft's body axes: roll, then pitch, then
        // heading take it into local coordinates, so the eye stays in the cabin in a
        // bank or a climb.
        double phi = a.phi * degToRad, theta = a.theta * degToRad;
        double x1 = hx * std::cos(phi) + hy * std::sin(phi);
        double y1 = -hx * std::sin(phi) + hy * std::cos(phi);
        double y2 = y1 * std::cos(theta) - hz * std::sin(theta);
        double z2 = y1 * std::sin(theta) + hz * std::cos(theta);
        p.x = static_cast<float>(a.x + x1 * rightX + z2 * backX);
        p.y = static_cast<float>(a.y + y2);
        p.z = static_cast<float>(a.z + x1 * rightZ + z2 * backZ);
        p.heading = a.psi + simf("sim/graphics/view/pilots_head_psi");
        p.pitch = a.theta + simf("sim/graphics/view/pilots_head_the");
        p.roll = a.phi + simf("sim/graphics/view/pilots_head_phi");
        return p;
    }
    if (view == viewFreeCamera && s.haveCurrent) {
        p = s.current;  // the free camera stays where it was left
        p.zoom = s.simZoom;
        return p;
    }
    // Chase and the other outside views: behind and above the aircraft.
    p.x = static_cast<float>(a.x + 30.0 * backX);
    p.y = static_cast<float>(a.y + 5.0);
    p.z = static_cast<float>(a.z + 30.0 * backZ);
    p.heading = a.psi;
    p.pitch = -5.0f;
    p.roll = 0;
    return p;
}

void publish(const CameraPosition& p) {
    CameraState& s = cam();
    s.current = p;
    s.haveCurrent = true;
    const std::pair<const char*, float> values[] = {
        {"sim/graphics/view/view_x", p.x},         {"sim/graphics/view/view_y", p.y},
        {"sim/graphics/view/view_z", p.z},         {"sim/graphics/view/view_pitch", p.pitch},
        {"sim/graphics/view/view_heading", p.heading}, {"sim/graphics/view/view_roll", p.roll}};
    for (auto& [name, v] : values)
        if (SimDataRef* r = simDataRef(name)) r->set(v);
}

void loseControl(bool callBack) {
    CameraState& s = cam();
    if (!s.active) return;
    s.active = false;
    if (callBack && s.fn && pluginActive(s.plugin)) {
        PluginScope scope(s.plugin);
        s.fn(nullptr, 1, s.refcon);
    }
}

}  // namespace

void resetCamera() {
    cam() = CameraState();
}

void cameraViewSelected() {
    loseControl(true);
}

void runCamera() {
    CameraState& s = cam();
    CameraPosition pos = simulatorCamera();
    if (s.active && !pluginActive(s.plugin)) s.active = false;
    if (s.active) {
        XPLMCameraPosition_t p{pos.x, pos.y, pos.z, pos.pitch, pos.heading, pos.roll, pos.zoom};
        int keep;
        {
            PluginScope scope(s.plugin);
            keep = s.fn(&p, 0, s.refcon);
        }
        // The callback may have handed control on or given it up by itself.
        if (keep && s.active) {
            pos = CameraPosition{p.x, p.y, p.z, p.pitch, p.heading, p.roll, p.zoom};
            s.simZoom = p.zoom;
        } else if (!keep) {
            s.active = false;
        }
    }
    publish(pos);
}

void listCameraLeaks(int plugin, std::vector<std::string>& out) {
    if (cam().active && cam().plugin == plugin) out.push_back("camera control");
}

void dropCameraOf(int plugin) {
    if (cam().plugin == plugin) cam().active = false;
}

bool cameraControlled() {
    return cam().active;
}
int cameraController() {
    return cam().active ? cam().plugin : -1;
}
CameraPosition cameraPosition() {
    if (!cam().haveCurrent) return simulatorCamera();
    return cam().current;
}

}  // namespace xphost

using namespace xphost;

void XPLMControlCamera(XPLMCameraControlDuration inHowLong, XPLMCameraControl_f inControlFunc, void* inRefcon) {
    if (!checkThread("XPLMControlCamera") || !inControlFunc) return;
    CameraState& s = cam();
    int plugin = callingPlugin();
    // Another plug-in that held the camera is told it lost it.
    if (s.active && s.plugin != plugin) loseControl(true);
    s.active = true;
    s.fn = inControlFunc;
    s.refcon = inRefcon;
    s.howLong = inHowLong;
    s.plugin = plugin;
}

void XPLMDontControlCamera(void) {
    if (!checkThread("XPLMDontControlCamera")) return;
    CameraState& s = cam();
    if (s.active && s.plugin == callingPlugin()) s.active = false;
}

int XPLMIsCameraBeingControlled(XPLMCameraControlDuration* outCameraControlDuration) {
    if (!checkThread("XPLMIsCameraBeingControlled")) return 0;
    CameraState& s = cam();
    if (outCameraControlDuration) *outCameraControlDuration = s.active ? s.howLong : 0;
    return s.active ? 1 : 0;
}

void XPLMReadCameraPosition(XPLMCameraPosition_t* outCameraPosition) {
    if (!checkThread("XPLMReadCameraPosition") || !outCameraPosition) return;
    CameraPosition p = cameraPosition();
    *outCameraPosition = XPLMCameraPosition_t{p.x, p.y, p.z, p.pitch, p.heading, p.roll, p.zoom};
}
