#include "host/outside_plugins.h"

#include "XPLMDataAccess.h"
#include "XPLMUtilities.h"
#include "host/host_internal.h"

namespace xphost {
namespace {

const char* const kHeadShakeOffsets[6] = {
    "simcoders/headshake/offset_x",   "simcoders/headshake/offset_y",     "simcoders/headshake/offset_z",
    "simcoders/headshake/offset_yaw", "simcoders/headshake/offset_pitch", "simcoders/headshake/offset_roll",
};
const char* const kXpRealisticOffsets[6] = {
    "KVT/Vistarig/integration/x_offset",     "KVT/Vistarig/integration/y_offset",
    "KVT/Vistarig/integration/z_offset",     "KVT/Vistarig/integration/pitch_offset",
    "KVT/Vistarig/integration/heading_offset", "KVT/Vistarig/integration/roll_offset",
};

struct OutsidePlugins {
    int headShakePlugin = -1;
    SimDataRef* headShakeOverride = nullptr;
    SimDataRef* headShakeOffsets[6] = {};
    int xpRealisticPlugin = -1;
    int pilotViewPlugin = -1;
    float xpRealisticOffsets[6] = {};
    int scenicFlyerPlugin = -1;
    ScenicFlyerPanel scenicFlyer;
};

OutsidePlugins state;

void resetOutsidePlugins() { state = OutsidePlugins(); }

// XP-Realistic's own per-frame work: announce itself and hand over its offsets through
// the public dataref calls, under its own plug-in id.
void writeXpRealistic() {
    if (state.xpRealisticPlugin < 0) return;
    PluginScope scope(state.xpRealisticPlugin);
    if (XPLMDataRef present = XPLMFindDataRef("KVT/Vistarig/integration/XPRealistic_present")) XPLMSetDatai(present, 1);
    for (int i = 0; i < 6; ++i)
        if (XPLMDataRef ref = XPLMFindDataRef(kXpRealisticOffsets[i])) XPLMSetDataf(ref, state.xpRealisticOffsets[i]);
}

// Scenic Flyer's own handling of its commands: the panel changes as the key goes down.
int scenicFlyerCommand(XPLMCommandRef, XPLMCommandPhase phase, void* refcon) {
    if (phase != xplm_CommandBegin) return 1;
    ScenicFlyerPanel& panel = state.scenicFlyer;
    if (refcon == nullptr) panel.shown = !panel.shown;
    else panel.glass = !panel.glass;
    panel.commands += 1;
    return 1;
}

HostModule outsidePluginsModule("outside_plugins", resetOutsidePlugins);

struct HookRegistration {
    HookRegistration() { addFrameHook(FramePoint::BeforeFlightLoops, "xp_realistic", writeXpRealistic); }
};
HookRegistration hookRegistration;

}  // namespace

void installHeadShake(bool withDatarefs) {
    ensureInitialized();
    if (state.headShakePlugin < 0)
        state.headShakePlugin = addStandInPlugin("HeadShake", "com.simcoders.headshake", "HeadShake", nullptr);
    if (!withDatarefs || state.headShakeOverride != nullptr) return;
    state.headShakeOverride = defineInt("simcoders/headshake/override", 0, true);
    for (int i = 0; i < 6; ++i) state.headShakeOffsets[i] = defineFloat(kHeadShakeOffsets[i], 0.0f, true);
}

void setHeadShakeOffsets(float x, float y, float z, float yaw, float pitch, float roll) {
    if (state.headShakeOverride == nullptr) return;
    const float values[6] = {x, y, z, yaw, pitch, roll};
    for (int i = 0; i < 6; ++i) state.headShakeOffsets[i]->set(values[i]);
}

int headShakeOverrideValue() { return state.headShakeOverride ? state.headShakeOverride->i : -1; }

void installPilotView() {
    ensureInitialized();
    if (state.pilotViewPlugin < 0)
        state.pilotViewPlugin = addStandInPlugin("PilotView", "acmetools.projects.pilotview", "PilotView", nullptr);
}

void installScenicFlyer() {
    ensureInitialized();
    if (state.scenicFlyerPlugin >= 0) return;
    state.scenicFlyerPlugin =
        addStandInPlugin("Scenic Flyer", "digital.avionics.scenic.flyer", "Scenic Flyer panels", nullptr);
    state.scenicFlyer = ScenicFlyerPanel();
    state.scenicFlyer.installed = true;
    PluginScope scope(state.scenicFlyerPlugin);
    XPLMCommandRef forceOn = XPLMCreateCommand("Scenic-Flyer/scenic_force_on", "Show or hide the Scenic Flyer panel");
    XPLMCommandRef select = XPLMCreateCommand("Scenic-Flyer/scenic_select", "Switch the panel between GA and glass");
    XPLMRegisterCommandHandler(forceOn, scenicFlyerCommand, 0, nullptr);
    XPLMRegisterCommandHandler(select, scenicFlyerCommand, 0, reinterpret_cast<void*>(1));
}

ScenicFlyerPanel scenicFlyerPanel() { return state.scenicFlyer; }

void installXpRealistic() {
    ensureInitialized();
    if (state.xpRealisticPlugin < 0)
        state.xpRealisticPlugin = addStandInPlugin("XPRealistic", "xprealistic.pro", "XP-Realistic", nullptr);
}

void setXpRealisticOffsets(float x, float y, float z, float pitch, float heading, float roll) {
    const float values[6] = {x, y, z, pitch, heading, roll};
    for (int i = 0; i < 6; ++i) state.xpRealisticOffsets[i] = values[i];
}

}  // namespace xphost
