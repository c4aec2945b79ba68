// Stand-ins for the outside plug-ins that the camera plug-in reaches only through the
// simulator: HeadShake (its override and six offset datarefs), PilotView (present
// only), Scenic Flyer (two commands and a panel of its own) and XP-Realistic, which
// writes its presence and six view offsets into the camera plug-in's integration
// datarefs every frame. Absent after every reset.
#pragma once

namespace xphost {

// Adds the HeadShake plug-in; with `withDatarefs` false it is there without its
// datarefs (an old version).
void installHeadShake(bool withDatarefs = true);
void setHeadShakeOffsets(float x, float y, float z, float yaw, float pitch, float roll);
// What the camera plug-in last wrote to "simcoders/headshake/override" (-1: no HeadShake).
int headShakeOverrideValue();

// Adds PilotView, which the camera plug-in only looks for by its signature.
void installPilotView();

// Adds Scenic Flyer: its signature, and its two commands "Scenic-Flyer/scenic_force_on"
// (shows or hides its panel) and "Scenic-Flyer/scenic_select" (switches the panel
// between GA and glass), which it handles after any plug-in's before-handlers. The
// panel starts hidden, of the GA type.
void installScenicFlyer();
struct ScenicFlyerPanel {
    bool installed = false;
    bool shown = false;
    bool glass = false;
    int commands = 0;  // commands it has acted on
};
// What Scenic Flyer itself shows now.
ScenicFlyerPanel scenicFlyerPanel();

// Adds XP-Realistic: from the next frame on it writes XPRealistic_present = 1 and the
// offsets (order x, y, z, pitch, heading, roll), as long as the datarefs exist.
void installXpRealistic();
void setXpRealisticOffsets(float x, float y, float z, float pitch, float heading, float roll);

}  // namespace xphost
