// The two levels of being on and the simulator's messages: what XPluginStart,
// XPluginEnable, XPluginDisable, XPluginStop and XPluginReceiveMessage do, the camera
// level (`enableCamera`/`disableCamera`) and the one flight-loop callback that drives
// every frame while the camera level is on.
#pragma once

#include "XPLMDefs.h"

void pluginStart();
void hostEnable();
void hostDisable();
void pluginStop();
void receiveMessage(XPLMPluginID from, int message, void* param);

float mainFlightLoop(float sinceLastCall, float sinceLastLoop, int counter, void* refcon);

// The simulator's VR switch (false when the dataref is missing).
bool vrEnabled();
