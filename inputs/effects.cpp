#include "inputs/effects.h"

#include "XPLMDataAccess.h"
#include "data/integration_values.h"
#include "platform/runtime.h"

namespace {
HeadShakeLink link{};

void lookUpHeadShake() {
    if (link.checked) return;
    logMessage("Attempting to initialize HeadShake");
    link.override = XPLMFindDataRef("simcoders/headshake/override");
    link.offsetX = XPLMFindDataRef("simcoders/headshake/offset_x");
    link.offsetY = XPLMFindDataRef("simcoders/headshake/offset_y");
    link.offsetZ = XPLMFindDataRef("simcoders/headshake/offset_z");
    link.offsetYaw = XPLMFindDataRef("simcoders/headshake/offset_yaw");
    link.offsetPitch = XPLMFindDataRef("simcoders/headshake/offset_pitch");
    link.offsetRoll = XPLMFindDataRef("simcoders/headshake/offset_roll");
    link.available = link.override && link.offsetX && link.offsetY && link.offsetZ && link.offsetYaw &&
                     link.offsetPitch && link.offsetRoll;
    if (link.available) logMessage("HeadShake was found and will be enabled");
    else logMessage("HeadShake not found");
    link.checked = true;
}
}  // namespace

HeadShakeLink& headShakeLink() { return link; }

void forgetHeadShake() { link = HeadShakeLink{}; }

bool headShakeAvailable() {
    lookUpHeadShake();
    return link.available;
}

void headShakeOverride(bool on) {
    if (headShakeAvailable()) XPLMSetDatai(link.override, on ? 1 : 0);
}

PoseOffsets headShakeOffsets() {
    PoseOffsets o;
    if (!link.available) return o;
    o.setX(XPLMGetDataf(link.offsetX));
    o.setY(XPLMGetDataf(link.offsetY));
    o.setZ(XPLMGetDataf(link.offsetZ));
    o.setHeading(XPLMGetDataf(link.offsetYaw));
    o.setPitch(XPLMGetDataf(link.offsetPitch));
    o.setRoll(XPLMGetDataf(link.offsetRoll));
    return o;
}

bool effectOffsetsApply(const Camera& camera) {
    const IntegrationValues& in = integrationValues();
    return (camera.xpRealistic && in.xpRealisticPresent != 0) || (camera.realView && in.realViewPresent != 0);
}

PoseOffsets effectPluginOffsets(const Camera& camera) {
    PoseOffsets o;
    if (!effectOffsetsApply(camera)) return o;
    const IntegrationValues& in = integrationValues();
    o.setAll(in.xOffset, in.yOffset, in.zOffset, in.headingOffset, in.pitchOffset, in.rollOffset);
    return o;
}

PoseOffsets scriptOffsets(const Camera& camera) {
    PoseOffsets o;
    if (camera.scriptId <= 0) return o;
    const IntegrationValues& v = integrationValues();
    o.setAll(v.effectScriptXOffset, v.effectScriptYOffset, v.effectScriptZOffset, v.effectScriptHeadingOffset,
             v.effectScriptPitchOffset, v.effectScriptRollOffset);
    return o;
}
