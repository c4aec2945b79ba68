// The world as the simulator's camera sees it, drawn on the screen under the windows:
// sky and horizon, the terrain around the camera, the user's aircraft, the
// traffic (painted white) and the boats.
// Fixed-function OpenGL in the screen's context, drawn only when the screen is.
#pragma once

namespace xphost {

// Draws the scene from this frame's camera into the current context, a screen of
// width x height pixels. Matrices, viewport and enables are left as they were and
// the depth buffer cleared, so the window pass starts from its usual state.
void drawScene(int width, int height);

// The user's aircraft is painted in this colour (RGB), so a test can find it.
constexpr float aircraftPaint[3] = {1.0f, 0.30f, 0.05f};

// Markers: small bright magenta cubes at world positions, drawn over everything else
// and sized to about a hundredth of their distance, so a picture shows where a camera
// aims. Cleared at reset.
constexpr float markerPaint[3] = {1.0f, 0.0f, 1.0f};
void addMarker(double latitude, double longitude, double elevation);
void clearMarkers();

}  // namespace xphost
