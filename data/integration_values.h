// The plain values behind the published integration datarefs: what other plug-ins and
// scripts write (effect, head tracking and script offsets, their presence) and what the
// camera tells them. The shell publishes them (shell/integration_datarefs); the inputs
// and the motion read them; a camera file load clears the script offsets.
#pragma once

#include <cstdint>

// All start at 0.
struct IntegrationValues {
    int32_t vistarigEnabled;
    int32_t xpRealisticPresent;
    int32_t realViewPresent;
    float xOffset, yOffset, zOffset, pitchOffset, headingOffset, rollOffset;
    int32_t headtrackingPresent;
    float headtrackingXOffset, headtrackingYOffset, headtrackingZOffset;
    float headtrackingPitchOffset, headtrackingHeadingOffset, headtrackingRollOffset;
    float effectScriptXOffset, effectScriptYOffset, effectScriptZOffset;
    float effectScriptPitchOffset, effectScriptHeadingOffset, effectScriptRollOffset;
};

IntegrationValues& integrationValues();

// A camera file load makes a script send its offsets again.
void clearEffectScriptOffsets();
