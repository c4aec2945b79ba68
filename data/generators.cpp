#include "data/generators.h"

#include <cmath>
#include <cstdio>

#include "data/camera_set.h"
#include "data/user_messages.h"

namespace {

constexpr float kDegrees = 3.14159265358979f / 180.0f;
constexpr int32_t kOrbitSteps = 36;  // 10 degrees each

// One step into 0 to 360, as every angle of the set.
float intoCircle(float a) {
    if (a < 0) return a + 360.0f;
    if (a >= 360.0f) return a - 360.0f;
    return a;
}

// The category to fill, emptied and named; -1 (after the message) when none is left.
int32_t freshCategory(const char* name) {
    if (!name || !name[0]) return -1;
    const int32_t index = findOrAddCategory(name, true);
    if (index < 0) {
        showMessageBox("ERROR", "There are no more categories available");
        return -1;
    }
    resetCategory(index);
    copyText(categoryAt(index)->name, name, kNameCopyLimit);
    return index;
}

void nameCamera(Camera& camera, const char* stem, int i) {
    char name[64];
    std::snprintf(name, sizeof name, "%s - %d", stem, i);
    copyText(camera.name, name, kNameCopyLimit);
}

// What every generated camera shares: outside, turned towards the aircraft.
void commonFields(Camera& camera) {
    camera.external = true;
    camera.trackHeading = true;
    camera.trackPitch = true;
    camera.temporaryPositioning = false;
    camera.retainMouseLook = false;
    camera.initialMovementRange = 2;
}

void finish(int32_t index, int32_t count) {
    Category* category = categoryAt(index);
    category->cameraCount = count;
    category->currentCamera = 0;
    relinkSet(true);
}

}  // namespace

bool createOrbit(const OrbitOptions& options) {
    const int32_t index = freshCategory(options.name);
    if (index < 0) return false;
    Category* category = categoryAt(index);
    const int32_t n = options.continuous ? kOrbitSteps : kOrbitSteps + 1;
    const float halfRange = (options.maxHeight - options.minHeight) / 2.0f;
    float a = 0;
    for (int32_t i = 0; i < n; ++i) {
        Camera& camera = category->cameras[i];
        const float h = intoCircle(options.initialHeading - a);
        nameCamera(camera, options.name, i);
        if (i > 0 || options.continuous) {
            camera.linearTransition = true;
            camera.transitionSeconds = options.duration / static_cast<float>(n);
        }
        camera.hidden = i > 0;  // only the first shows in the Mini Control Panel
        camera.x = -std::sin(h * kDegrees) * options.radius;
        camera.z = std::cos(h * kDegrees) * options.radius;
        // The height swings once through the range in each circle.
        camera.y = std::sin(a * kDegrees) * halfRange + options.minHeight + halfRange;
        camera.heading = h;
        camera.pitch = 0;
        commonFields(camera);
        camera.autoAdvance = true;
        camera.smoothCameraJoins = false;
        camera.levelCamera = options.levelCamera;
        a = intoCircle(options.reverse ? a + 10.0f : a - 10.0f);
    }
    // The 37th camera stands where the first stood and ends the chain; a continuous
    // orbit's last camera advances to the first, which has a transition of its own.
    if (!options.continuous) category->cameras[n - 1].autoAdvance = false;
    finish(index, n);
    return true;
}

bool createFlyBy(const FlyByOptions& options) {
    const int32_t index = freshCategory(options.name);
    if (index < 0) return false;
    Category* category = categoryAt(index);
    const float start = options.attackHeading;
    const float end = intoCircle(start - 180.0f);

    Camera& first = category->cameras[0];
    nameCamera(first, options.name, 0);
    commonFields(first);
    first.heading = start;
    first.x = options.cpaX - std::sin(start * kDegrees) * options.distance;
    first.z = options.cpaZ + std::cos(start * kDegrees) * options.distance;
    first.y = options.cpaY + options.initialHeight;
    first.autoAdvance = true;  // selecting it starts the pass at once

    Camera& second = category->cameras[1];
    nameCamera(second, options.name, 1);
    commonFields(second);
    second.heading = end;
    second.x = options.cpaX - std::sin(end * kDegrees) * options.distance;
    second.z = options.cpaZ + std::cos(end * kDegrees) * options.distance;
    second.y = options.cpaY - options.initialHeight;
    second.linearTransition = true;
    second.transitionSeconds = options.duration;
    second.hidden = true;

    finish(index, 2);
    return true;
}
