#include "panels/camera_options_pane.h"

#include <imgui.h>

#include <cstdio>

#include "XPLMCamera.h"
#include "XPLMDataAccess.h"
#include "XPLMGraphics.h"
#include "data/camera_set.h"
#include "data/plugin_state.h"
#include "data/settings.h"
#include "inputs/axis_input.h"
#include "motion/frame_driver.h"
#include "motion/transitions.h"
#include "panels/control_panel_widget.h"
#include "panels/kvt_im_window.h"
#include "panels/labelled_items.h"

namespace {

constexpr float kFieldWidth = 90.0f;
constexpr float kComboWidth = 120.0f;
constexpr int kAdvancedOptionsHeight = 190;

float readFloat(const char* name) {
    XPLMDataRef ref = XPLMFindDataRef(name);
    return ref ? XPLMGetDataf(ref) : 0.0f;
}
double readDouble(const char* name) {
    XPLMDataRef ref = XPLMFindDataRef(name);
    return ref ? XPLMGetDatad(ref) : 0.0;
}

void clearOffsets(Camera& c) { c.x = c.y = c.z = c.heading = c.pitch = 0.0f; }

// Behind the aircraft's tail by `metres`, looking forward.
void placeBehind(Camera& c, float metres) {
    c.x = c.y = 0.0f;
    c.z = readFloat("sim/aircraft/view/acf_size_z") + metres;
    c.heading = c.pitch = 0.0f;
}

// A free camera starts 15 m above the aircraft, on its heading.
void placeAboveAircraft(Camera& c) {
    c.x = static_cast<float>(readDouble("sim/flightmodel/position/local_x"));
    c.y = static_cast<float>(readDouble("sim/flightmodel/position/local_y")) + 15.0f;
    c.z = static_cast<float>(readDouble("sim/flightmodel/position/local_z"));
    c.heading = readFloat("sim/flightmodel/position/psi");
    c.pitch = c.roll = 0.0f;
    XPLMLocalToWorld(c.x, c.y, c.z, &c.latitude, &c.longitude, &c.elevation);
}

void nextCell() { ImGui::NextColumn(); }

bool checkbox(const char* label, bool& value, const char* help = nullptr) {
    const bool changed = ImGui::Checkbox(label, &value);
    if (help) {
        ImGui::SameLine();
        ShowHelpMarker(help);
    }
    return changed;
}

bool dragFloat(const char* label, float& value, float speed, float low, float high) {
    ImGui::SetNextItemWidth(kFieldWidth);
    return ImGui::DragFloat(label, &value, speed, low, high, "%.1f");
}

void notNegative(float& value) {
    if (value < 0.0f) value = 0.0f;
}

// ---- basic options

void effectPluginCells(Camera& c) {
    int selected = c.headShake ? 1 : c.xpRealistic ? 2 : c.realView ? 3 : c.scriptId > 0 ? 4 : 0;
    const char* items[] = {"None", "HeadShake", "XP-Realistic", "RealView", "Lua Script"};
    ImGui::SetNextItemWidth(kComboWidth);
    labelledCombo("Effect Plugins", &selected, items, 5);
    // Written back every frame, so a camera read with two plug-ins keeps the one shown.
    c.headShake = selected == 1;
    c.xpRealistic = selected == 2;
    c.realView = selected == 3;
    if (selected == 4) {
        if (c.scriptId < 1) c.scriptId = 1;
    } else {
        c.scriptId = 0;
    }
    nextCell();
    if (selected == 4) {
        ImGui::SetNextItemWidth(kFieldWidth);
        ImGui::DragInt("Lua Script ID", &c.scriptId, 1.0f, 1, 30000, "%d");
        if (c.scriptId < 0) c.scriptId = 0;
    }
    nextCell();
}

void basicCells(Camera& c, bool aircraftFile) {
    if (checkbox("Enable Smooth Transition", c.smoothTransition)) {
        stopCameraMotion();
        if (c.smoothTransition) c.linearTransition = c.bezierTransition = false;
    }
    nextCell();
    if (checkbox("Enable Temporary Positioning", c.temporaryPositioning,
                 "Set this option to have the camera restored to its last saved position if you move off it or "
                 "re-select it.") &&
        c.temporaryPositioning)
        refreshHomePose(&c);
    nextCell();
    checkbox("Retain Mouse Look Position", c.retainMouseLook,
             "Set this option to have the camera remain at the last mouse look position.");
    nextCell();
    if (!aircraftFile) return;

    effectPluginCells(c);
    if (CameraFile* file = activeFile())
        checkbox("Manually Enable Vistarig", file->manualEnable,
                 "Set this option to prevent Vistarig from automatically enabling when this aircraft is loaded.");
    nextCell();
    checkbox("Disable Cockpit Zoom", c.disable3dCockpitZoom,
             "Set this option to prevent zooming a 3D cockpit camera with the scroll wheel.");
    nextCell();
    if (!c.external) {
        const char* items[] = {"Don't Force", "Force to 0", "Force to 1"};
        ImGui::SetNextItemWidth(kComboWidth);
        labelledCombo("Yoke Visibility", &c.hideYoke, items, 3);
    }
    nextCell();
}

// ---- advanced options

void hiddenCell(Camera& c) {
    bool hidden = c.hidden;
    if (checkbox("Hidden Camera", hidden, "Set this option to hide this camera in the Mini-Control Panel.")) {
        if (!hidden) {
            c.hidden = false;
        } else {
            // At least one camera of the category stays visible.
            const Category* category = categoryAt(c.categoryIndex);
            int hiddenCount = 0;
            for (int i = 0; category && i < category->cameraCount; ++i)
                if (category->cameras[i].hidden) ++hiddenCount;
            if (category && hiddenCount < category->cameraCount - 1) c.hidden = true;
        }
    }
    nextCell();
}

void transitionCells(Camera& c) {
    int selected = c.linearTransition ? 1 : c.bezierTransition ? 2 : 0;
    const char* items[] = {"None", "Linear", "Bezier"};
    ImGui::SetNextItemWidth(100.0f);
    if (labelledCombo("Advanced Transitions", &selected, items, 3)) {
        c.linearTransition = selected == 1;
        c.bezierTransition = selected == 2;
    }
    nextCell();
    checkbox("Enable Smooth Camera Joins", c.smoothCameraJoins);
    nextCell();
    ImGui::SetNextItemWidth(kFieldWidth);
    if (ImGui::DragInt("Transition Frames", &c.linearTransitionFrames, 1.0f, 0, 30000, "%d")) {
        if (c.linearTransitionFrames < 0) c.linearTransitionFrames = 0;
        if (c.linearTransitionFrames > 0) c.transitionSeconds = 0.0f;
    }
    nextCell();
    if (dragFloat("Transitions Seconds", c.transitionSeconds, 0.5f, 0.0f, 30000.0f)) {
        notNegative(c.transitionSeconds);
        if (c.transitionSeconds > 0.0f) c.linearTransitionFrames = 0;
    }
    nextCell();
    if (dragFloat("Transition Delay", c.transitionDelay, 0.5f, 0.0f, 30000.0f)) notNegative(c.transitionDelay);
    if (const float left = delaySecondsLeft(); left > 0.0f) {
        ImGui::SameLine();
        ImGui::TextColored(ImVec4(1, 1, 0, 1), "%.2f", left);
    }
    nextCell();
    checkbox("Enable Auto Advance to Next Camera", c.autoAdvance);
    nextCell();
    if (checkbox("Enable View Axis Input", c.viewAxis) && c.viewAxis) rescanAxes();
    nextCell();
    if (checkbox("Enable Camera Axis Input", c.cameraAxis) && c.cameraAxis) rescanAxes();
    nextCell();
}

// A checkbox over one of the kinds; the kind's rules run only on the user's change.
void kindCell(Camera& c, const char* label, bool& flag, CameraKind kind, const char* help = nullptr) {
    bool value = flag;
    if (checkbox(label, value, help)) switchCameraKind(c, kind, value);
    nextCell();
}

void trackingCell(Camera& c, const char* label, bool& flag, bool pitch) {
    if (checkbox(label, flag)) {
        if (flag) {
            c.cineflex = c.chaseView9 = false;
            if (pitch && !c.external) c.levelCamera = false;
        } else {
            c.circleView = false;
        }
    }
    nextCell();
}

void zoomCell(Camera& c) {
    XPLMCameraPosition_t live{};
    XPLMReadCameraPosition(&live);
    bool set = c.zoom > 1.0f;
    char label[64];
    if (set) std::snprintf(label, sizeof label, "Initial Zoom set to: %.2f###InitialZoom", c.zoom);
    else std::snprintf(label, sizeof label, "Set initial Zoom to: %.2f###InitialZoom", live.zoom);
    if (checkbox(label, set,
                 "Zoom the view with the mouse scroll wheel and then set this check box to have the camera set to "
                 "that zoom factor when it is selected. Uncheck to have the zoom for this camera set to the "
                 "default.\n\nNote: if you are using the Disable Zoom camera option you will need to shut that off "
                 "temporarily so you can zoom the camera. Once you have set the initial zoom you can turn the "
                 "Disable Zoom option back on if you wish."))
        c.zoom = set ? live.zoom : 1.0f;
    nextCell();
}

void originCell(Camera& c) {
    if (c.external && !c.freeCamera) {
        const char* items[] = {"Aircraft", "Carrier", "Frigate"};
        ImGui::SetNextItemWidth(kComboWidth);
        // The start position is written only when the choice changes: ImGui reports a
        // pick of the item already chosen as a change too, and that would throw away a
        // ship camera the user had placed.
        const int before = c.cameraOrigin;
        if (labelledCombo("Camera Origin", &c.cameraOrigin, items, 3) && c.cameraOrigin != before &&
            c.cameraOrigin != 0) {
            c.x = c.y = 100.0f;
            c.z = 0.0f;
            c.heading = 270.0f;
            c.pitch = c.roll = 0.0f;
            c.trackHeading = c.trackPitch = true;
        }
        ImGui::SameLine();
        ShowHelpMarker(
            "Normally the camera's origin is the aircraft's center of gravity but you can set it here to either the "
            "Aircraft Carrier or the Frigate.\n\nNote: If you are not near water the Aircraft Carrier and Frigate "
            "positions may well be very far away from your position and the surrounding scenery will not render "
            "properly.");
    }
    nextCell();
}

void advancedCells(Camera& c, bool aircraftFile) {
    hiddenCell(c);
    if (aircraftFile) {
        if (!c.external) checkbox("Enable Cinema Verite", c.cinemaVerite);
        nextCell();
    }
    transitionCells(c);
    if (aircraftFile) {
        kindCell(c, "Enable External Camera", c.external, CameraKind::external);
        checkbox("Enable Level Camera", c.levelCamera);
        nextCell();
    }
    trackingCell(c, "Enable Track Camera Heading", c.trackHeading, false);
    trackingCell(c, "Enable Track Camera Pitch", c.trackPitch, true);
    if (aircraftFile)
        kindCell(c, "Enable Cineflex Camera", c.cineflex, CameraKind::cineflex,
                 "A Cineflex camera maintains a constant pitch, heading, and roll regardless of the aircraft's "
                 "orientation.");
    int flyer = c.scenicFlyerGaPanel ? 1 : c.scenicFlyerGlassPanel ? 2 : 0;
    const char* flyerItems[] = {"None", "GA Panel", "Glass Panel"};
    ImGui::SetNextItemWidth(kComboWidth);
    if (labelledCombo("Scenic Flyer", &flyer, flyerItems, 3)) {
        c.scenicFlyerGaPanel = flyer == 1;
        c.scenicFlyerGlassPanel = flyer == 2;
    }
    nextCell();
    if (aircraftFile) {
        kindCell(c, "X-Plane 9 Chase View", c.chaseView9, CameraKind::chaseView9);
        kindCell(c, "Circle View", c.circleView, CameraKind::circleView,
                 "Use a right mouse click with no drag to enter continous mouse circle mode. Right click again to "
                 "exit.\n\nUse a right mouse click and drag to circle while dragging with the right mouse button "
                 "down.\n\nNote: The amount of rotation and vertical distance per mouse movement is determined by "
                 "the pan and movement speed setting. By default the circle view is set to a Very Large increment.");
        kindCell(c, "Target Following Camera", c.targetFollowing, CameraKind::targetFollowing);
        kindCell(c, "Free Camera", c.freeCamera, CameraKind::freeCamera);
    }
    kindCell(c, "AGL Camera", c.aglCamera, CameraKind::aglCamera,
             "An AGL Camera will hug the ground at the height specified.");
    if (c.aglCamera) {
        if (dragFloat("AGL Height (Meters)", c.aglHeight, 0.1f, 0.0f, 30000.0f)) notNegative(c.aglHeight);
    } else {
        c.aglHeight = 0.0f;
    }
    nextCell();
    dragFloat("CG X Offset", c.cgX, 0.1f, 0.0f, 0.0f);
    nextCell();
    dragFloat("CG Y Offset", c.cgY, 0.1f, 0.0f, 0.0f);
    nextCell();
    dragFloat("CG Z Offset", c.cgZ, 0.1f, 0.0f, 0.0f);
    nextCell();
    zoomCell(c);
    originCell(c);
    if (settings().ENABLE_FORCE_FOV) {
        if (checkbox("Force FOV", c.enableFov) && c.enableFov) c.fov = defaultFov();
        nextCell();
        if (c.enableFov) dragFloat("FOV Degrees", c.fov, 0.1f, 15.0f, 170.0f);
        nextCell();
    }
}

}  // namespace

bool hasAdvancedOptions(const Camera& c) {
    return c.external || c.bezierTransition || c.linearTransition || c.targetFollowing || c.scenicFlyerGaPanel ||
           c.scenicFlyerGlassPanel || c.hidden || c.cameraAxis || c.cinemaVerite || c.enableFov || c.viewAxis ||
           c.levelCamera || c.trackHeading || c.trackPitch || c.chaseView9 || c.zoom > 1.0f;
}

void switchCameraKind(Camera& c, CameraKind kind, bool on) {
    if (!on) {
        switch (kind) {
            case CameraKind::external:
                c.external = false;
                c.circleView = c.aglCamera = c.cineflex = c.targetFollowing = c.chaseView9 = false;
                if (c.freeCamera) {
                    clearOffsets(c);
                    c.freeCamera = false;
                }
                refreshHomePose(&c);
                c.initialMovementRange = 1;
                c.cameraOrigin = 0;
                break;
            case CameraKind::freeCamera:
                c.freeCamera = false;
                clearOffsets(c);
                refreshHomePose(&c);
                break;
            case CameraKind::cineflex: c.cineflex = false; break;
            case CameraKind::chaseView9: c.chaseView9 = false; break;
            case CameraKind::circleView: c.circleView = false; break;
            case CameraKind::targetFollowing: c.targetFollowing = false; break;
            case CameraKind::aglCamera: c.aglCamera = false; break;
        }
        return;
    }
    const bool wasFree = c.freeCamera, wasExternal = c.external;
    switch (kind) {
        case CameraKind::external:
            placeBehind(c, 10.0f);
            c.cameraOrigin = 0;
            break;
        case CameraKind::cineflex:
            if (wasFree) {
                clearOffsets(c);
                refreshHomePose(&c);
            }
            if (!wasExternal) {
                placeBehind(c, 10.0f);
                refreshHomePose(&c);
            }
            c.circleView = c.aglCamera = c.limitTrackIr = c.freeCamera = c.chaseView9 = false;
            c.levelCamera = c.trackHeading = c.trackPitch = c.targetFollowing = false;
            c.cineflex = true;
            break;
        case CameraKind::chaseView9:
            placeBehind(c, 20.0f);
            c.circleView = c.targetFollowing = c.freeCamera = c.aglCamera = c.trackIrEnabled = false;
            c.limitTrackIr = c.cineflex = c.levelCamera = c.trackHeading = c.trackPitch = false;
            c.chaseView9 = true;
            break;
        case CameraKind::circleView:
            placeBehind(c, 30.0f);
            c.cineflex = c.targetFollowing = c.freeCamera = c.chaseView9 = c.aglCamera = false;
            c.trackIrEnabled = c.limitTrackIr = c.temporaryPositioning = false;
            c.levelCamera = c.trackHeading = c.trackPitch = true;
            c.circleView = true;
            break;
        case CameraKind::targetFollowing:
            if (wasFree) {
                clearOffsets(c);
                refreshHomePose(&c);
            }
            c.circleView = c.aglCamera = c.limitTrackIr = c.freeCamera = c.chaseView9 = c.cineflex = false;
            c.targetFollowing = true;
            break;
        case CameraKind::freeCamera:
            placeAboveAircraft(c);
            c.trackHeading = c.trackPitch = c.circleView = c.aglCamera = c.limitTrackIr = false;
            c.cineflex = c.targetFollowing = c.chaseView9 = false;
            c.freeCamera = true;
            c.cameraOrigin = 0;
            break;
        case CameraKind::aglCamera:
            if (!wasFree) {
                placeBehind(c, 10.0f);
                refreshHomePose(&c);
            }
            c.circleView = c.cineflex = c.targetFollowing = c.chaseView9 = false;
            c.aglCamera = true;
            c.aglHeight = 1.0f;
            break;
    }
    c.external = true;
    c.initialMovementRange = kind == CameraKind::circleView ? 3 : 2;
    if (kind == CameraKind::external || kind == CameraKind::circleView || kind == CameraKind::freeCamera)
        refreshHomePose(&c);
}

void buildCameraOptionsPane(ControlPanelWidget& panel) {
    // Read once: a change of the box takes effect in the next frame.
    const bool advanced = panel.showAdvanced;
    const bool aircraftFile = !isAirportSetActive();
    Camera& c = *currentCamera();

    if (ImGui::BeginMenuBar()) {
        bool firstTranslucentFrame = panel.selfDecorated && !panel.optionsSized;
        if (checkbox("Show Advanced Camera Options", panel.showAdvanced,
                     "Show advanced camera options for external cameras, advanced transitions,camera tracking, zoom "
                     "control, etc.") ||
            (firstTranslucentFrame && !panel.showAdvanced)) {
            // A solid panel keeps the size the user gave it.
            if (panel.selfDecorated)
                panel.SetWindowSize(panel.fullWidth,
                                    panel.fullHeight - (panel.showAdvanced ? 0 : kAdvancedOptionsHeight));
        }
        panel.optionsSized = true;
        if (advanced) {
            ImGui::SameLine(ImGui::GetWindowWidth() - 295.0f);
            checkbox("Allow Camera Auto Advance", panel.allowAutoAdvance,
                     "By default a chain of cameras in a transition will not advance when the control panel is "
                     "open. This allows you make modifications to those cameras. Enabling this check box will allow "
                     "the transitions to operate when the control panel is open.");
        } else if (hasAdvancedOptions(c)) {
            ImGui::SameLine();
            ImGui::TextColored(ImVec4(1, 1, 0, 1), "Warning! This camera has advanced option(s)");
            ImGui::SameLine();
            ShowHelpMarker(
                "The current camera has some advanced camera options specified. Click the checkbox to the left to "
                "see them.");
        }
        ImGui::EndMenuBar();
    }

    ImGui::Columns(3, "BasicColumns", false);
    basicCells(c, aircraftFile);
    if (advanced) advancedCells(c, aircraftFile);
    ImGui::Columns(1);
}
