// What the process that loaded the plug-in may offer it, and what it must keep. X-Plane
// offers none of these C functions; the simulator stand-in offers them to tests, found
// at run time: on Linux in the global symbol scope, on Windows among the exports of
// XPLM_64.dll (the stand-in is that library) or of the program.
#pragma once

// The process's C function `name`, or null. Looked up on each call: the stand-in of
// the tests may be reloaded, and the lookup is cheap next to a frame.
void* findProcessFunction(const char* name);

// `vistarig_community_server`: the community server's "host:port" for this process, or
// null to use the build's own.
const char* processCommunityServer();

// Keeps the plug-in's own code mapped for the rest of the process, even after the
// simulator unloads it: a network thread that outlives its wait runs in it.
void keepModuleLoaded();
