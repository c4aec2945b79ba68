// The small vector arithmetic of all pose calculation: a float vector and the one
// rotation every layer uses. Pure functions, no state.
#pragma once

struct Vector3 {
    float x = 0, y = 0, z = 0;
};

// Rotates v by one of the three angles (the others zero) through a unit quaternion in
// double precision; the result is rounded to float. Positive pitch turns -z up,
// heading 90 turns -z to +x, positive roll turns +x down. A full attitude is applied
// as three calls: roll, then pitch, then heading.
Vector3 rotateVector(Vector3 v, float pitch, float heading, float roll);
// The three calls of a full attitude.
Vector3 rotateByAttitude(Vector3 v, float pitch, float heading, float roll);
