// The link to the Scenic Flyer plug-in and its GA and glass panels. The plug-in has
// no dataref to read: the link watches its two commands go by, keeps its own idea of
// which panel shows, sends the commands that bring the panel the selected camera
// asks for (one a frame), and records in the camera what the user chose by pressing
// the commands by hand. Main thread only.
#pragma once

#include <cstdint>

#include "XPLMUtilities.h"
#include "data/camera_set.h"

// The two commands of Scenic Flyer: one shows or hides the panel, one switches its type.
extern const char* const kScenicForceOn;
extern const char* const kScenicSelect;

// Bits of `panelState`.
enum : int32_t {
    kScenicPanelShown = 1,  // a panel is on show
    kScenicPanelGlass = 2,  // the type selected is glass, else GA
};

struct ScenicFlyerLink {
    bool checked;  // the plug-in has been looked for
    bool found;
    int32_t panelState;
    bool ready;  // no command of ours is under way
    // Commands still to send; the last pushed goes first.
    const char* pending[2];
    int32_t pendingCount;
    XPLMCommandRef forceOn, select;  // the handled commands, while found
};

ScenicFlyerLink& scenicFlyerLink();

// Looks for the plug-in by its signature, once (at the first load of the user's
// aircraft), sets `scenicFlyerStatus` and starts watching its commands when it is there.
void findScenicFlyer();
// Stops watching the commands and forgets the look-up and the panel state (host
// disable), so that nothing of ours stays registered and the next aircraft looks again.
void forgetScenicFlyer();
// Each frame with the selected camera, and with `cameraLevelChanges` (camera null) at
// camera enable and disable. Sends at most one command a call.
void scenicFlyerStep(const Camera* camera, bool cameraLevelChanges);

// ---- the rules without the simulator
// The commands that bring `panelState` to what the camera wants, in the order they are
// pushed (the last one runs first); returns how many (0 to 2).
int32_t scenicFlyerCommandsFor(int32_t panelState, bool wantsGlass, bool wantsGa, const char* out[2]);
// The user pressed a command and the panel is now in `panelState`: the camera keeps it.
void recordScenicFlyerChoice(int32_t panelState, Camera& camera);
