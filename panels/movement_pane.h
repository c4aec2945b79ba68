// The second row of the Control Panel: the "TrackIR" pane (head tracking of the
// current camera and its cockpit limits) and the movement pad "ChildMovement" (push
// buttons that move and turn the current camera, held buttons repeating, the angle
// and position fields, the movement increment).
#pragma once

class ControlPanelWidget;

void buildTrackIrPane(ControlPanelWidget& panel);
void buildMovementPane(ControlPanelWidget& panel);

// The pitch as the pad shows it (-180 to 180) and the stored value of a shown one (0 to 360).
float shownPitch(float pitch);
float storedPitch(float shown);
