// A saved panel place, as the settings file keeps it. kind: 0 nothing recorded,
// 1 inside the simulator (global boxels), 2 popped out (OS pixels), 3 docked.
#pragma once

struct WindowPosition {
    int kind = 0;
    int left = 0, top = 0, right = 0, bottom = 0;
};
