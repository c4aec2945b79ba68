// The simulator's own datarefs with their defaults and the simulator's own commands
// with what X-Plane does for them: view selection and moving the pilot's head.
#include <cmath>
#include <cstdio>

#include "XPLMUtilities.h"
#include "host/core_parts.h"

namespace xphost {

namespace {

SimDataRef* viewTypeRef = nullptr;

bool isExternalType(int view) {
    switch (view) {
        case viewTower:
        case viewRunway:
        case viewChase:
        case viewCircle:
        case viewLinearSpot:
        case viewStillSpot:
        case viewFreeCamera:
            return true;
        default:
            return false;
    }
}

void defineDataRefs() {
    // The view.
    viewTypeRef = defineInt("sim/graphics/view/view_type", viewCockpit3d, false);
    defineInt("sim/graphics/view/view_is_external", 0, false);
    defineFloat("sim/graphics/view/pilots_head_x", 0.0f, true);
    defineFloat("sim/graphics/view/pilots_head_y", 1.05f, true);
    defineFloat("sim/graphics/view/pilots_head_z", 0.35f, true);
    defineFloat("sim/graphics/view/pilots_head_psi", 0.0f, true);
    defineFloat("sim/graphics/view/pilots_head_the", -6.0f, true);
    defineFloat("sim/graphics/view/pilots_head_phi", 0.0f, true);
    defineFloat("sim/graphics/view/field_of_view_deg", 60.0f, true);
    defineFloat("sim/graphics/view/field_of_view_roll_deg", 0.0f, true);
    defineInt("sim/graphics/view/cinema_verite", 0, true);
    defineInt("sim/graphics/view/hide_yoke", 0, true);
    defineInt("sim/graphics/view/eq_trackir", 0, true);
    for (const char* n : {"sim/graphics/view/view_x", "sim/graphics/view/view_y", "sim/graphics/view/view_z"})
        defineFloat(n, 0.0f, false);
    for (const char* n : {"sim/graphics/view/view_pitch", "sim/graphics/view/view_heading",
                          "sim/graphics/view/view_roll"})
        defineFloat(n, 0.0f, false);
    defineInt("sim/graphics/VR/enabled", 0, false);
    defineFloat("sim/private/controls/camera/kill_wheel_zoom", 0.0f, true);

    // Time.
    defineFloat("sim/operation/misc/frame_rate_period", static_cast<float>(currentStep()), false);
    defineFloat("sim/time/total_running_time_sec", 0.0f, false);
    defineInt("sim/time/paused", 0, false);

    // The user's aircraft.
    defineDouble("sim/flightmodel/position/local_x", 0.0, true);
    defineDouble("sim/flightmodel/position/local_y", 0.0, true);
    defineDouble("sim/flightmodel/position/local_z", 0.0, true);
    defineFloat("sim/flightmodel/position/theta", 0.0f, true);
    defineFloat("sim/flightmodel/position/phi", 0.0f, true);
    defineFloat("sim/flightmodel/position/psi", 0.0f, true);
    defineFloat("sim/flightmodel/position/groundspeed", 0.0f, false);
    // Near Seattle; the world coordinates proper come with the world module.
    defineDouble("sim/flightmodel/position/latitude", 47.4638, false);
    defineDouble("sim/flightmodel/position/longitude", -122.3078, false);
    defineDouble("sim/flightmodel/position/elevation", 1000.0, false);
    defineFloat("sim/aircraft/view/acf_size_z", 8.3f, false);

    // Joysticks: X-Plane 12 has 500 raw axes and about 100 mapped ones.
    defineFloatArray("sim/joystick/joystick_axis_values", 500, false);
    defineIntArray("sim/joystick/joystick_axis_assignments", 500, true);
    defineIntArray("sim/joystick/joystick_axis_reverse", 500, true);
    defineFloatArray("sim/joystick/joystick_axis_minimum", 500, true);
    SimDataRef* maxima = defineFloatArray("sim/joystick/joystick_axis_maximum", 500, true);
    for (float& v : maxima->floats) v = 1.0f;
    defineFloatArray("sim/joystick/joy_mapped_axis_value", 100, false);
    defineIntArray("sim/joystick/joy_mapped_axis_avail", 100, false);

    // Traffic: the user only, until a traffic module fills these.
    defineInt("sim/cockpit2/tcas/indicators/tcas_num_acf", 1, false);
    for (const char* n : {"sim/cockpit2/tcas/targets/position/x", "sim/cockpit2/tcas/targets/position/y",
                          "sim/cockpit2/tcas/targets/position/z", "sim/cockpit2/tcas/targets/position/psi",
                          "sim/cockpit2/tcas/targets/position/the", "sim/cockpit2/tcas/targets/position/phi"})
        defineFloatArray(n, 64, true);
    defineIntArray("sim/cockpit2/tcas/targets/modeS_id", 64, false);
    defineBytes("sim/cockpit2/tcas/targets/flight_id", 64 * 8, false);
    char name[80];
    for (int plane = 1; plane <= 19; ++plane) {
        for (const char* axis : {"x", "y", "z"}) {
            std::snprintf(name, sizeof name, "sim/multiplayer/position/plane%d_%s", plane, axis);
            defineDouble(name, 0.0, true);
        }
        for (const char* angle : {"the", "phi", "psi"}) {
            std::snprintf(name, sizeof name, "sim/multiplayer/position/plane%d_%s", plane, angle);
            defineFloat(name, 0.0f, true);
        }
    }
}

// ---------------------------------------------------------------- commands

float headf(const char* name) {
    SimDataRef* r = simDataRef(name);
    return r ? r->f : 0.0f;
}

void addHead(const char* name, float delta) {
    if (SimDataRef* r = simDataRef(name)) r->set(r->f + delta);
}

void setHead(const char* name, float value) {
    if (SimDataRef* r = simDataRef(name)) r->set(value);
}

// Movement acts on begin and every continue phase, as a held key does.
std::function<void(int)> headStep(const char* name, float delta) {
    return [name, delta](int phase) {
        if (phase == xplm_CommandEnd || viewType() != viewCockpit3d) return;
        addHead(name, delta);
    };
}

std::function<void(int)> view(int type) {
    return [type](int phase) {
        if (phase == xplm_CommandBegin) selectView(type);
    };
}

void defineViewCommands() {
    struct ViewCommand {
        const char* name;
        const char* description;
        int type;
    };
    const ViewCommand views[] = {
        {"sim/view/3d_cockpit_cmnd_look", "3-D cockpit", viewCockpit3d},
        {"sim/view/3d_cockpit", "3-D cockpit (old)", viewCockpit3d},
        {"sim/view/3d_cockpit_toggle", "Toggle 3-D cockpit", viewCockpit3d},
        {"sim/view/default_view", "Default view", viewCockpit3d},
        {"sim/view/free_camera", "Free camera", viewFreeCamera},
        {"sim/view/free_view_toggle", "Free view toggle (old)", viewFreeCamera},
        {"sim/view/chase", "Chase", viewChase},
        {"sim/view/circle", "Circle", viewCircle},
        {"sim/view/tower", "Tower", viewTower},
        {"sim/view/runway", "Runway", viewRunway},
        {"sim/view/linear_spot", "Linear spot", viewLinearSpot},
        {"sim/view/still_spot", "Still spot", viewStillSpot},
        {"sim/view/forward_with_2d_panel", "Forward with 2-D panel", viewForwardWithPanel},
        {"sim/view/forward_with_hud", "Forward with HUD", viewForwardWithHud},
    };
    for (const ViewCommand& v : views) defineSimCommand(v.name, v.description, view(v.type));

    // Looking around in the cockpit.
    auto lookAt = [](float psi, float the) {
        return [psi, the](int phase) {
            if (phase != xplm_CommandBegin || viewType() != viewCockpit3d) return;
            setHead("sim/graphics/view/pilots_head_psi", psi);
            setHead("sim/graphics/view/pilots_head_the", the);
        };
    };
    auto turn = [](float dpsi) {
        return [dpsi](int phase) {
            if (phase != xplm_CommandBegin || viewType() != viewCockpit3d) return;
            float psi = headf("sim/graphics/view/pilots_head_psi") + dpsi;
            setHead("sim/graphics/view/pilots_head_psi", psi < 0 ? psi + 360 : psi >= 360 ? psi - 360 : psi);
        };
    };
    defineSimCommand("sim/view/forward", "Look forward", lookAt(0, 0));
    defineSimCommand("sim/view/forward_with_panel", "Forward with panel", lookAt(0, -6));
    defineSimCommand("sim/view/back", "Look back", lookAt(180, 0));
    defineSimCommand("sim/view/straight_up", "Look straight up", lookAt(0, 90));
    defineSimCommand("sim/view/straight_down", "Look straight down", lookAt(0, -90));
    defineSimCommand("sim/view/left_up", "Look left and up", lookAt(315, 45));
    defineSimCommand("sim/view/up_left", "Look up and left", lookAt(315, 45));
    defineSimCommand("sim/view/right_up", "Look right and up", lookAt(45, 45));
    defineSimCommand("sim/view/up_right", "Look up and right", lookAt(45, 45));
    defineSimCommand("sim/view/left_45", "Look left 45", turn(-45));
    defineSimCommand("sim/view/right_45", "Look right 45", turn(45));
    defineSimCommand("sim/view/left_90", "Look left 90", turn(-90));
    defineSimCommand("sim/view/right_90", "Look right 90", turn(90));
    defineSimCommand("sim/view/left_135", "Look left 135", turn(-135));
    defineSimCommand("sim/view/right_135", "Look right 135", turn(135));
    defineSimCommand("sim/view/glance_left", "Glance left", [](int phase) {
        if (viewType() != viewCockpit3d) return;
        if (phase == xplm_CommandBegin) setHead("sim/graphics/view/pilots_head_psi", 270);
        if (phase == xplm_CommandEnd) setHead("sim/graphics/view/pilots_head_psi", 0);
    });
    defineSimCommand("sim/view/glance_right", "Glance right", [](int phase) {
        if (viewType() != viewCockpit3d) return;
        if (phase == xplm_CommandBegin) setHead("sim/graphics/view/pilots_head_psi", 90);
        if (phase == xplm_CommandEnd) setHead("sim/graphics/view/pilots_head_psi", 0);
    });

    const char* psi = "sim/graphics/view/pilots_head_psi";
    const char* the = "sim/graphics/view/pilots_head_the";
    defineSimCommand("sim/view/pan_up", "Pan up", headStep(the, 1.0f));
    defineSimCommand("sim/view/pan_down", "Pan down", headStep(the, -1.0f));
    defineSimCommand("sim/view/pan_left", "Pan left", headStep(psi, -1.0f));
    defineSimCommand("sim/view/pan_right", "Pan right", headStep(psi, 1.0f));
    defineSimCommand("sim/view/pan_up_fast", "Pan up fast", headStep(the, 4.0f));
    defineSimCommand("sim/view/pan_down_fast", "Pan down fast", headStep(the, -4.0f));
    defineSimCommand("sim/view/pan_left_fast", "Pan left fast", headStep(psi, -4.0f));
    defineSimCommand("sim/view/pan_right_fast", "Pan right fast", headStep(psi, 4.0f));

    char name[64], description[64];
    for (int i = 0; i < 20; ++i) {
        std::snprintf(name, sizeof name, "sim/view/quick_look_%d", i);
        std::snprintf(description, sizeof description, "Go to save 3-D cockpit location #%d", i + 1);
        defineSimCommand(name, description, [](int) {});
        std::snprintf(name, sizeof name, "sim/view/quick_look_%d_mem", i);
        std::snprintf(description, sizeof description, "Memorize 3-D cockpit location #%d", i + 1);
        defineSimCommand(name, description, [](int) {});
    }
}

void defineGeneralCommands() {
    const char* psi = "sim/graphics/view/pilots_head_psi";
    const char* the = "sim/graphics/view/pilots_head_the";
    const char* hx = "sim/graphics/view/pilots_head_x";
    const char* hy = "sim/graphics/view/pilots_head_y";
    const char* hz = "sim/graphics/view/pilots_head_z";
    const char* fov = "sim/graphics/view/field_of_view_deg";
    struct Move {
        const char* stem;
        const char* dataref;
        float step;
    };
    const Move moves[] = {
        {"rot_up", the, 1.0f},       {"rot_down", the, -1.0f},   {"rot_left", psi, -1.0f},
        {"rot_right", psi, 1.0f},    {"forward", hz, -0.01f},    {"backward", hz, 0.01f},
        {"left", hx, -0.01f},        {"right", hx, 0.01f},       {"up", hy, 0.01f},
        {"down", hy, -0.01f},        {"zoom_in", fov, -1.0f},    {"zoom_out", fov, 1.0f},
    };
    char name[64];
    for (const Move& m : moves) {
        std::snprintf(name, sizeof name, "sim/general/%s", m.stem);
        defineSimCommand(name, m.stem, headStep(m.dataref, m.step));
        std::snprintf(name, sizeof name, "sim/general/%s_slow", m.stem);
        defineSimCommand(name, m.stem, headStep(m.dataref, m.step * 0.25f));
        std::snprintf(name, sizeof name, "sim/general/%s_fast", m.stem);
        defineSimCommand(name, m.stem, headStep(m.dataref, m.step * 4.0f));
    }
    struct Hat {
        const char* name;
        float dthe, dpsi;
    };
    const Hat hats[] = {
        {"sim/general/hat_switch_up", 1, 0},          {"sim/general/hat_switch_down", -1, 0},
        {"sim/general/hat_switch_left", 0, -1},       {"sim/general/hat_switch_right", 0, 1},
        {"sim/general/hat_switch_up_left", 1, -1},    {"sim/general/hat_switch_up_right", 1, 1},
        {"sim/general/hat_switch_down_left", -1, -1}, {"sim/general/hat_switch_down_right", -1, 1},
    };
    for (const Hat& h : hats) {
        float dthe = h.dthe, dpsi = h.dpsi;
        defineSimCommand(h.name, "Hat switch", [dthe, dpsi](int phase) {
            if (phase == xplm_CommandEnd || viewType() != viewCockpit3d) return;
            addHead("sim/graphics/view/pilots_head_the", dthe);
            addHead("sim/graphics/view/pilots_head_psi", dpsi);
        });
    }
    defineSimCommand("sim/operation/pause_toggle", "Toggle paused", [](int phase) {
        if (phase != xplm_CommandBegin) return;
        if (SimDataRef* r = simDataRef("sim/time/paused")) r->set(r->i ? 0 : 1);
    });
}

}  // namespace

void defineSimTables() {
    defineDataRefs();
    bindAircraftDataRefs();
    defineViewCommands();
    defineGeneralCommands();
}

int viewType() {
    ensureInitialized();
    return viewTypeRef ? viewTypeRef->i : 0;
}

void selectView(int type) {
    ensureInitialized();
    if (viewTypeRef) viewTypeRef->set(type);
    if (SimDataRef* external = simDataRef("sim/graphics/view/view_is_external"))
        external->set(isExternalType(type) ? 1 : 0);
    cameraViewSelected();
}

}  // namespace xphost
