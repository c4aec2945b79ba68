// The Control Panel's "CameraOptions" pane: every option of the current camera in a
// table of three columns, the advanced ones behind "Show Advanced Camera Options",
// and the rules that tie the options together: kinds of outside camera that exclude
// each other and put the camera at a new starting place when switched on.
#pragma once

struct Camera;
class ControlPanelWidget;

void buildCameraOptionsPane(ControlPanelWidget& panel);

// Whether the camera uses any option that only the advanced view shows.
bool hasAdvancedOptions(const Camera& camera);

// The options whose switching on or off does more than set their own flag.
enum class CameraKind { external, cineflex, chaseView9, circleView, targetFollowing, freeCamera, aglCamera };
// Sets the kind's flag to `on` and applies what goes with it: the rivals it clears,
// the flags it sets, the starting place, the movement increment.
void switchCameraKind(Camera& camera, CameraKind kind, bool on);
