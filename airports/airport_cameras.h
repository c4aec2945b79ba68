// Cameras built from an airport's scenery: one free camera for each parking position,
// viewpoint, runway end and helipad, and one for each sign, in categories, each fixed
// in the world above the terrain; and the airport's features as targets. The set stays
// in memory until the user saves it. Main thread only.
#pragma once

struct AirportCameraOptions {
    float runwayHorizontalOffset = 40.0f;  // metres behind the runway end
    float runwayVerticalOffset = 20.0f;    // metres above the terrain
    float startHorizontalOffset = 40.0f;   // metres from a parking position or helipad
    float startVerticalOffset = 20.0f;
    float signVerticalOffset = 2.0f;
    float signCullingRadius = 5.0f;  // metres; 0 keeps every sign
    bool forwardFacing = false;      // the parking camera looks the way the aircraft stands
    bool trackingCameras = true;     // runway and parking cameras follow the aircraft
    bool createTargets = true;
};

// The options of the "Create Airport Cameras" form; they last for the run.
AirportCameraOptions& airportCameraOptions();

// Fills the active airport set from its airport's scenery; nothing happens unless an
// airport set is active, and the set stays as it was when the airport isn't found.
void createAirportCameras(const AirportCameraOptions& options);
