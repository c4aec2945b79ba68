#include "host/outside_plugins.h"

#include "XPLMDataAccess.h"
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
