// The physical middle mouse button, which the simulator's SDK doesn't report.
// Windows asks the system (GetAsyncKeyState). Elsewhere there is no system-wide query
// that works without a display connection of our own, so the process may offer one:
// an optional C function
//
//     extern "C" int vistarig_middle_button_down(void);
//
// looked up once in the global symbol scope at run time. A helper plug-in or a test
// simulator can export it; without it the button reads as up and mouse look comes
// from the right button and the latch commands only.
#pragma once

bool physicalMiddleButtonDown();
