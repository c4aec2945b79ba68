// Entry points of panels, airports, targets and other aircraft that the commands and
// the panels already call but whose features are not built yet. Each one only logs
// (or answers "nothing there") until its own unit replaces it; when a unit brings the
// real function, its declaration and stub leave this file.
#pragma once

// Panels. Each takes its operation number and answers whether the panel is visible.
void openCalibrateViewAxisPanel();

// Control Panel popups whose features come with their own units; each draws its modal
// popup by name (a stand-in form until then).

