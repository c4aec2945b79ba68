// The shell's side of the simulator: the XPLM headers, the run-time basics
// (platform/runtime: log, clocks, versions), the plug-in state record
// (data/plugin_state) and the switches of the camera level. Only the shell and the
// tests include this; lower layers include what they use.
#pragma once

#include "XPLMCamera.h"
#include "XPLMDataAccess.h"
#include "XPLMDefs.h"
#include "XPLMDisplay.h"
#include "XPLMGraphics.h"
#include "XPLMPlanes.h"
#include "XPLMPlugin.h"
#include "XPLMProcessing.h"
#include "XPLMScenery.h"
#include "XPLMUtilities.h"
#include "data/plugin_state.h"
#include "platform/runtime.h"

void enableCamera();
void disableCamera(bool keepHead);
