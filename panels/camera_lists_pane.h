// The two upper panes of the Control Panel: the categories of the working set and the
// cameras of the current category, with selection, drag reordering, renaming, the
// context menus, the clipboards and the view ID combo; and the "Display View ID
// Assignments" popup. The lists keep no state of their own: an item's ImGui identity
// is the model's list number, so it stays held while a drag moves it through the list.
#pragma once

class ControlPanelWidget;

void buildCategoryListPane(ControlPanelWidget& panel);
void buildCameraListPane(ControlPanelWidget& panel);
// The modal popup of the File menu's "Display View ID Assignments".
void buildViewIdPopup();

// A held list item that the pointer has left moves one place toward the drag's
// direction. Returns the neighbour's index, or -1 when there is none to swap with:
// the ends of the list, and a drag delta of zero (the pointer jumped past the
// neighbour and the delta was just reset).
int dragNeighbour(int index, int count, float dragDeltaY);
