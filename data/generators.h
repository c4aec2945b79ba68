// The orbit and fly-by generators: each fills one category of the working set with a
// chain of plain cameras that the transition engine then plays by itself (linear
// transitions and auto-advance). Main thread only.
#pragma once

struct OrbitOptions {
    char name[32] = {};
    float initialHeading = 270.0f;
    float radius = 10.0f;
    float minHeight = -3.0f;
    float maxHeight = 3.0f;
    float duration = 30.0f;  // one full circle, seconds
    bool reverse = false;
    bool continuous = false;
    bool levelCamera = false;
};

struct FlyByOptions {
    char name[32] = {};
    float attackHeading = 270.0f;
    float initialHeight = 25.0f;  // of the start above the closest point
    float cpaX = 50.0f;           // closest point of approach, relative to the aircraft
    float cpaY = 10.0f;
    float cpaZ = -10.0f;
    float distance = 500.0f;  // from the closest point to the start and to the end
    float duration = 30.0f;
};

// Each replaces the category named `options.name`, or adds it; neither selects it nor
// saves. False, with the "ERROR" message box, when no category is left; false for an
// empty name (which would name no live category).
bool createOrbit(const OrbitOptions& options);
bool createFlyBy(const FlyByOptions& options);
