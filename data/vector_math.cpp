#include "data/vector_math.h"

#include <cmath>

#include "data/angles.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kRadians = kPi / 180.0;

struct Quaternion {
    double w, x, y, z;
};

// q v q* for a unit quaternion, in the expanded form v + 2w(u x v) + 2u x (u x v).
Vector3 rotateByQuaternion(const Quaternion& q, Vector3 v) {
    double vx = v.x, vy = v.y, vz = v.z;
    double tx = 2.0 * (q.y * vz - q.z * vy);
    double ty = 2.0 * (q.z * vx - q.x * vz);
    double tz = 2.0 * (q.x * vy - q.y * vx);
    Vector3 r;
    r.x = static_cast<float>(vx + q.w * tx + (q.y * tz - q.z * ty));
    r.y = static_cast<float>(vy + q.w * ty + (q.z * tx - q.x * tz));
    r.z = static_cast<float>(vz + q.w * tz + (q.x * ty - q.y * tx));
    return r;
}

Quaternion axisAngle(double ax, double ay, double az, double degrees) {
    double half = degrees * kRadians * 0.5;
    double s = std::sin(half);
    return {std::cos(half), ax * s, ay * s, az * s};
}

}  // namespace

Vector3 rotateVector(Vector3 v, float pitch, float heading, float roll) {
    // Each angle is a turn about one axis of the object frame: pitch about x, heading
    // about y (clockwise seen from above), roll about z (right wing down).
    if (pitch != 0.0f) v = rotateByQuaternion(axisAngle(1, 0, 0, foldAngle(pitch)), v);
    if (heading != 0.0f) v = rotateByQuaternion(axisAngle(0, 1, 0, -static_cast<double>(heading)), v);
    if (roll != 0.0f) v = rotateByQuaternion(axisAngle(0, 0, 1, -static_cast<double>(roll)), v);
    return v;
}

Vector3 rotateByAttitude(Vector3 v, float pitch, float heading, float roll) {
    v = rotateVector(v, 0.0f, 0.0f, roll);
    v = rotateVector(v, pitch, 0.0f, 0.0f);
    return rotateVector(v, 0.0f, heading, 0.0f);
}
