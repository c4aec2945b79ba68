// Angle helpers of all pose arithmetic: angles are degrees in float, brought into
// range by single steps rather than a modulo, so a value already near the range keeps
// its exact bits.
#pragma once

inline float wrapAngle(float a) {
    if (a < 0.0f) return a + 360.0f;
    if (a >= 360.0f) return a - 360.0f;
    return a;
}

// -180 .. 180
inline float foldAngle(float a) {
    float w = wrapAngle(a);
    return w > 180.0f ? w - 360.0f : w;
}

// Exactly 360 stays 360: callers that aim use it to tell "a full turn" from 0.
inline float addAngles(float a, float b) {
    float s = a + b;
    if (s < 0.0f) return s + 360.0f;
    if (s > 360.0f) return s - 360.0f;
    return s;
}
