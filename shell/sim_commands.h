// The simulator's own view, movement, zoom, hat switch and Quick Look commands that
// the plug-in takes over while the camera level is on, so that keys and buttons the
// user already bound keep working on the cameras. Owns `SimCommandTable` (109 names in
// a fixed order; the index is the interceptor's refcon) and the interceptor.
#pragma once

#include <cstdint>

#include "XPLMUtilities.h"

enum : int32_t {
    kSimCommandCount = 109,
    kFirstMovementKey = 37,     // sim/general/forward
    kLastMovementKey = 54,      // sim/general/down_slow
    kFirstQuickLookStore = 69,  // sim/view/quick_look_0_mem
    kFirstQuickLookRecall = 89, // sim/view/quick_look_0
    kQuickLookCount = 20,
    kHeldKeyRepeatDelay = 10,   // continue phases swallowed before a held key repeats
};

// The name at an index, or "" outside the table.
const char* simCommandName(int32_t index);
// The handle found by `installInterceptors`; null when not installed or absent.
XPLMCommandRef simCommandHandle(int32_t index);

// Registers the interceptor before the simulator's handling of each command that this
// simulator has; removes them again. Both may be called twice.
void installInterceptors();
void removeInterceptors();

// 1 lets the simulator handle the command, 0 swallows it.
int interceptor(XPLMCommandRef command, XPLMCommandPhase phase, void* refcon);
