// The panes of the Control Panel, each built inside its own child window with a menu
// bar: the category and camera lists, the TrackIR pane, the movement pad and the
// camera options. Until the lists come, the category pane holds only the category
// menu's generator entries.
#pragma once

class ControlPanelWidget;

void buildCategoryListPane(ControlPanelWidget& panel);
void buildCameraListPane(ControlPanelWidget& panel);
void buildTrackIrPane(ControlPanelWidget& panel);
void buildMovementPane(ControlPanelWidget& panel);
void buildCameraOptionsPane(ControlPanelWidget& panel);
