// A free camera's two positions: the local coordinates the frame works in and the
// latitude, longitude and elevation the camera file keeps, converted by the simulator.
#pragma once

#include "data/camera_set.h"

// Local x, y, z from the world position (free cameras only), and the home pose with them.
void worldToLocal(Camera* camera);
// The world position from local x, y, z.
void localToWorld(Camera* camera);
