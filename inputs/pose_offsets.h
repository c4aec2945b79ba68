// What one input adds to a frame's pose (or to the movement rates), handed to the
// motion layer, which applies the inputs in their fixed order. Only the fields an
// input set are added, so an input that has nothing leaves the pose's bits as they are.
#pragma once

#include <cstdint>

struct PoseOffsets {
    enum Field : uint8_t { kX = 1, kY = 2, kZ = 4, kHeading = 8, kPitch = 16, kRoll = 32, kAll = 63 };
    float x = 0, y = 0, z = 0;
    float heading = 0, pitch = 0, roll = 0;
    uint8_t fields = 0;  // the Field bits that were set
    // Heading and pitch are added by `addAngles` (kept in 0..360) instead of a plain sum.
    bool wrapsAngles = false;

    bool has(Field field) const { return (fields & field) != 0; }
    bool empty() const { return fields == 0; }
    void setX(float v) { x = v, fields |= kX; }
    void setY(float v) { y = v, fields |= kY; }
    void setZ(float v) { z = v, fields |= kZ; }
    void setHeading(float v) { heading = v, fields |= kHeading; }
    void setPitch(float v) { pitch = v, fields |= kPitch; }
    void setRoll(float v) { roll = v, fields |= kRoll; }
    void setAll(float nx, float ny, float nz, float nHeading, float nPitch, float nRoll) {
        x = nx, y = ny, z = nz, heading = nHeading, pitch = nPitch, roll = nRoll;
        fields = kAll;
    }
};
