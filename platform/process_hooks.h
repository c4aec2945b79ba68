// What the process that loaded the plug-in may offer it, and what it must keep. X-Plane
// offers none of these C functions; the simulator stand-in offers them to tests, found
// at run time with dlsym as the middle button's is.
#pragma once

// `vistarig_community_server`: the community server's "host:port" for this process, or
// null to use the build's own.
const char* processCommunityServer();

// Keeps the plug-in's own code mapped for the rest of the process, even after the
// simulator unloads it: a network thread that outlives its wait runs in it.
void keepModuleLoaded();
