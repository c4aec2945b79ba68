// How the host's own core files reach each other: the reset and per-frame entry of
// each core unit, called in a fixed order by core.cpp. Modules use host_internal.h.
#pragma once

#include <string>
#include <vector>

#include "host/host_internal.h"

namespace xphost {

void resetDataRefs();
void resetCommands();
void resetProcessing();
void resetCamera();
void resetPlugins();
void resetAircraft();
void resetUtilities();

// The simulator's own datarefs and commands, defined at every reset.
void defineSimTables();
// A view command selected a view: the camera's holder loses it.
void cameraViewSelected();

void bindAircraftDataRefs();
int scenarioPlugin();

void runHeldCommands();
void runFlightLoops(int phase);
void moveAircraft(double time, double step);

// Where a path flown at `speed` m/s from `headingDeg`, turning at `turnRateDeg` a second
// (positive to the right), is after `t` seconds: local x and z moved (z points south)
// and the heading, 0 to 360. The user's aircraft and the traffic fly such paths.
struct PathPoint {
    double dx = 0, dz = 0;
    float headingDeg = 0;
};
PathPoint alongPath(double speed, double headingDeg, double turnRateDeg, double t);
void runCamera();

// Leak listers of the core units.
void listDataRefLeaks(int plugin, std::vector<std::string>& out);
void listCommandLeaks(int plugin, std::vector<std::string>& out);
void listFlightLoopLeaks(int plugin, std::vector<std::string>& out);
void listCameraLeaks(int plugin, std::vector<std::string>& out);
// Every module's lines for one plug-in (core and HostModule records).
std::vector<std::string> collectLeaks(int plugin);
void addLeakLines(const std::vector<std::string>& lines);

// Drops what a stopped plug-in left, so nothing calls into unloaded code.
void dropPluginRegistrations(int plugin);
void dropDataRefsOf(int plugin);
void dropCommandHandlersOf(int plugin);
void dropFlightLoopsOf(int plugin);
void dropCameraOf(int plugin);

// Frame timing shared by processing and the frame loop.
double currentTime();
int currentFrame();
double currentStep();

// Outside a plug-in's callback, calls count as this plug-in's (in-process tests).
void setDefaultCallingPlugin(int plugin);
void recordSpeech(const std::string& text);

// The user's aircraft file, absolute.
const std::string& userAircraftFile();
// A new root moves a user aircraft that lay under the old one.
void rebaseUserAircraft(const std::string& oldRoot, const std::string& newRoot);

}  // namespace xphost
