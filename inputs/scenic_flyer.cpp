#include "inputs/scenic_flyer.h"

#include "XPLMPlugin.h"
#include "data/plugin_state.h"
#include "platform/runtime.h"

const char* const kScenicForceOn = "Scenic-Flyer/scenic_force_on";
const char* const kScenicSelect = "Scenic-Flyer/scenic_select";

namespace {

constexpr const char* kSignature = "digital.avionics.scenic.flyer";
constexpr int32_t kStatusFound = 11;
constexpr int32_t kStatusNotFound = 12;

ScenicFlyerLink freshLink() {
    ScenicFlyerLink link{};
    link.ready = true;
    return link;
}

ScenicFlyerLink link = freshLink();

void push(const char* name) {
    if (link.pendingCount < 2) link.pending[link.pendingCount++] = name;
}

// Sees both commands go by (refcon 0 shows or hides, 1 switches the type) and always
// lets them on to Scenic Flyer.
int commandHandler(XPLMCommandRef, XPLMCommandPhase phase, void* refcon) {
    if (phase != xplm_CommandEnd) return 1;
    try {
        link.panelState ^= refcon == nullptr ? kScenicPanelShown : kScenicPanelGlass;
        if (!cameraEnabled()) {
            link.ready = true;
        } else if (!link.ready) {
            link.ready = true;  // our own command came through
        } else {
            recordScenicFlyerChoice(link.panelState, *currentCamera());
        }
    } catch (...) {
        logMessage("The Scenic Flyer command failed");
    }
    return 1;
}

}  // namespace

ScenicFlyerLink& scenicFlyerLink() { return link; }

void findScenicFlyer() {
    if (link.checked) return;
    link.checked = true;
    const XPLMPluginID plugin = XPLMFindPluginBySignature(kSignature);
    if (plugin == XPLM_NO_PLUGIN_ID) {
        pluginState().scenicFlyerStatus = kStatusNotFound;
        logMessage("Scenic Flyer not found");
        return;
    }
    char name[256] = {}, file[512] = {}, signature[256] = {}, description[256] = {};
    XPLMGetPluginInfo(plugin, name, file, signature, description);
    link.found = true;
    link.forceOn = XPLMFindCommand(kScenicForceOn);
    link.select = XPLMFindCommand(kScenicSelect);
    if (link.forceOn) XPLMRegisterCommandHandler(link.forceOn, commandHandler, 1, reinterpret_cast<void*>(0));
    if (link.select) XPLMRegisterCommandHandler(link.select, commandHandler, 1, reinterpret_cast<void*>(1));
    pluginState().scenicFlyerStatus = kStatusFound;
    logMessage("Scenic Flyer Found and enabled - %s", description);
}

void forgetScenicFlyer() {
    if (link.forceOn) XPLMUnregisterCommandHandler(link.forceOn, commandHandler, 1, reinterpret_cast<void*>(0));
    if (link.select) XPLMUnregisterCommandHandler(link.select, commandHandler, 1, reinterpret_cast<void*>(1));
    link = freshLink();
}

int32_t scenicFlyerCommandsFor(int32_t state, bool wantsGlass, bool wantsGa, const char* out[2]) {
    const bool shown = (state & kScenicPanelShown) != 0;
    const bool glass = (state & kScenicPanelGlass) != 0;
    if (!wantsGlass && !wantsGa) {
        if (!shown) return 0;
        out[0] = kScenicForceOn;
        return 1;
    }
    const bool typeRight = glass == wantsGlass;
    int32_t n = 0;
    // Pushed show first, so that the type is switched before the panel comes up.
    if (!shown) out[n++] = kScenicForceOn;
    if (!typeRight) out[n++] = kScenicSelect;
    return n;
}

void recordScenicFlyerChoice(int32_t state, Camera& camera) {
    switch (state) {
        case 0: camera.scenicFlyerGaPanel = false; break;
        case kScenicPanelShown:
            camera.scenicFlyerGaPanel = true;
            camera.scenicFlyerGlassPanel = false;
            break;
        case kScenicPanelGlass: camera.scenicFlyerGlassPanel = false; break;
        default:
            camera.scenicFlyerGaPanel = false;
            camera.scenicFlyerGlassPanel = true;
            break;
    }
}

void scenicFlyerStep(const Camera* camera, bool cameraLevelChanges) {
    // Only a plug-in that was found gets commands: before the first aircraft load (when
    // the menu can already enable the camera level) no command of it is known.
    if (!link.found) return;
    if (link.pendingCount > 0) {
        if (!link.ready) return;  // the last one hasn't come by yet
        const char* name = link.pending[--link.pendingCount];
        if (XPLMCommandRef command = XPLMFindCommand(name)) {
            link.ready = false;
            XPLMCommandOnce(command);
        }
        return;
    }
    if (cameraLevelChanges) {
        if (link.panelState & kScenicPanelShown) push(kScenicForceOn);
        return;
    }
    if (!camera) return;
    const char* wanted[2];
    const int32_t n = scenicFlyerCommandsFor(link.panelState, camera->scenicFlyerGlassPanel,
                                             camera->scenicFlyerGaPanel && !camera->scenicFlyerGlassPanel, wanted);
    for (int32_t i = 0; i < n; ++i) push(wanted[i]);
}
