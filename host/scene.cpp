// The scene under the windows: a sky band and a ground plane out to the horizon, a
// checkered grid over the terrain around the camera, the user's aircraft as a simple
// model at its position and attitude, and the carrier and the frigate. Vertices are
// sent relative to the camera so that floats keep their precision far from the origin.
#include "host/scene.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "host/host_internal.h"
#include "host/traffic.h"
#include "host/world.h"

namespace xphost {

namespace {

constexpr double degToRad = 3.14159265358979323846 / 180.0;

struct Vec {
    double x = 0, y = 0, z = 0;
};
Vec operator+(Vec a, Vec b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Vec operator-(Vec a, Vec b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Vec operator*(Vec a, double s) { return {a.x * s, a.y * s, a.z * s}; }
double dot(Vec a, Vec b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Vec cross(Vec a, Vec b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
Vec normalized(Vec a) {
    const double length = std::sqrt(dot(a, a));
    return length > 0 ? a * (1.0 / length) : a;
}

struct Rotation {
    double m[3][3];
};
Rotation multiply(const Rotation& a, const Rotation& b) {
    Rotation r{};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            for (int k = 0; k < 3; ++k) r.m[i][j] += a.m[i][k] * b.m[k][j];
    return r;
}
Vec apply(const Rotation& r, Vec v) {
    return {r.m[0][0] * v.x + r.m[0][1] * v.y + r.m[0][2] * v.z, r.m[1][0] * v.x + r.m[1][1] * v.y + r.m[1][2] * v.z,
            r.m[2][0] * v.x + r.m[2][1] * v.y + r.m[2][2] * v.z};
}

// Body axes (x right, y up, z aft) to local axes (x east, y up, z south): heading
// clockwise seen from above, then pitch nose up, then roll right wing down, which is
// how the simulator turns an aircraft and its camera.
Rotation attitude(double headingDeg, double pitchDeg, double rollDeg) {
    const double h = -headingDeg * degToRad, p = pitchDeg * degToRad, r = -rollDeg * degToRad;
    const Rotation yaw{{{std::cos(h), 0, std::sin(h)}, {0, 1, 0}, {-std::sin(h), 0, std::cos(h)}}};
    const Rotation pitch{{{1, 0, 0}, {0, std::cos(p), -std::sin(p)}, {0, std::sin(p), std::cos(p)}}};
    const Rotation roll{{{std::cos(r), -std::sin(r), 0}, {std::sin(r), std::cos(r), 0}, {0, 0, 1}}};
    return multiply(multiply(yaw, pitch), roll);
}

struct Colour {
    float r, g, b;
};
Colour mix(Colour a, Colour b, float t) {
    return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t};
}
Colour scaled(Colour c, float s) { return {std::min(1.0f, c.r * s), std::min(1.0f, c.g * s), std::min(1.0f, c.b * s)}; }

// The zenith is the windows module's clear colour, so the band blends into it.
constexpr Colour zenithSky{0.32f, 0.46f, 0.62f};
constexpr Colour horizonSky{0.76f, 0.84f, 0.92f};
constexpr Colour distantGround{0.50f, 0.58f, 0.50f};
constexpr Colour lightField{0.46f, 0.63f, 0.33f};
constexpr Colour darkField{0.30f, 0.45f, 0.23f};
constexpr Colour lightWater{0.22f, 0.38f, 0.58f};
constexpr Colour darkWater{0.18f, 0.33f, 0.52f};
constexpr Colour paint{aircraftPaint[0], aircraftPaint[1], aircraftPaint[2]};
constexpr Colour trafficPaint{0.92f, 0.92f, 0.96f};
constexpr Colour instrumentPanel{0.16f, 0.16f, 0.18f};
constexpr Colour hull{0.52f, 0.54f, 0.58f};
constexpr Colour superstructure{0.78f, 0.79f, 0.80f};

Vec sunDirection() { return normalized({0.35, 0.8, 0.45}); }

struct Marker {
    double latitude, longitude, elevation;
};
std::vector<Marker>& markers() {
    static std::vector<Marker> list;
    return list;
}
HostModule gSceneModule("scene", [] { markers().clear(); }, nullptr);

// Everything in one pass is sent relative to the camera.
struct Pass {
    Vec eye;
    Vec sun;
};

void vertex(const Pass& pass, Vec p) {
    glVertex3f(static_cast<float>(p.x - pass.eye.x), static_cast<float>(p.y - pass.eye.y),
               static_cast<float>(p.z - pass.eye.z));
}

// One face of a solid, turned to face away from a point inside the solid (so that
// back faces cull) and lit by the sun by its direction.
void face(const Pass& pass, Vec a, Vec b, Vec c, Vec d, Vec inside, Colour colour) {
    Vec normal = cross(b - a, c - a);
    if (dot(normal, (a + c) * 0.5 - inside) < 0) {
        std::swap(b, d);
        normal = normal * -1.0;
    }
    const double light = std::max(0.0, dot(normalized(normal), pass.sun));
    const Colour c2 = scaled(colour, static_cast<float>(0.5 + 0.5 * light));
    glColor3f(c2.r, c2.g, c2.b);
    vertex(pass, a);
    vertex(pass, b);
    vertex(pass, c);
    vertex(pass, d);
}

// A cross-section across the body's length: half its width, its floor and its top.
struct Section {
    double z, halfWidth, bottom, top;
};

// A solid lofted through sections along the body's z axis, closed at both ends, placed
// by a rotation and a position. Quads only: call inside glBegin(GL_QUADS).
void loft(const Pass& pass, const Section* sections, int count, const Rotation& turn, Vec at, Colour colour) {
    auto corner = [&](const Section& s, int i) {
        const double x = (i == 0 || i == 3) ? -s.halfWidth : s.halfWidth;
        const double y = i < 2 ? s.bottom : s.top;
        return at + apply(turn, Vec{x, y, s.z});
    };
    for (int k = 0; k + 1 < count; ++k) {
        const Section& s0 = sections[k];
        const Section& s1 = sections[k + 1];
        Vec p0[4], p1[4];
        for (int i = 0; i < 4; ++i) {
            p0[i] = corner(s0, i);
            p1[i] = corner(s1, i);
        }
        Vec inside;
        for (int i = 0; i < 4; ++i) inside = inside + (p0[i] + p1[i]) * 0.125;
        for (int i = 0; i < 4; ++i) {
            const int j = (i + 1) % 4;
            face(pass, p0[i], p0[j], p1[j], p1[i], inside, colour);
        }
        if (k == 0) face(pass, p0[0], p0[1], p0[2], p0[3], inside, colour);
        if (k + 2 == count) face(pass, p1[0], p1[1], p1[2], p1[3], inside, colour);
    }
}

// A single-engine high-wing aircraft about 8.8 m long and 11 m across, around its
// reference point; the pilot's head sits in the cabin below the wing, behind the panel.
void drawAircraft(const Pass& pass, const AircraftState& a, Colour livery) {
    const Rotation turn = attitude(a.psi, a.theta, a.phi);
    const Vec at{a.x, a.y, a.z};
    static const Section fuselage[] = {
        {-3.3, 0.25, 0.00, 0.50}, {-2.4, 0.55, -0.45, 0.85}, {-1.2, 0.60, -0.50, 1.35},
        {1.2, 0.60, -0.50, 1.35}, {5.5, 0.12, 0.25, 0.60},
    };
    static const Section wing[] = {{-0.6, 5.5, 1.35, 1.47}, {0.9, 5.5, 1.35, 1.47}};
    // Inside the cabin, where only the pilot sees it.
    static const Section panel[] = {{-1.1, 0.58, 0.30, 0.85}, {-0.8, 0.58, 0.30, 0.85}};
    static const Section tailplane[] = {{4.6, 1.75, 0.30, 0.38}, {5.5, 1.75, 0.30, 0.38}};
    static const Section fin[] = {{4.2, 0.06, 0.30, 0.62}, {5.5, 0.06, 0.30, 1.95}};
    loft(pass, fuselage, 5, turn, at, livery);
    loft(pass, wing, 2, turn, at, livery);
    loft(pass, tailplane, 2, turn, at, livery);
    loft(pass, fin, 2, turn, at, livery);
    loft(pass, panel, 2, turn, at, instrumentPanel);
}

// Long boxes with their superstructure on the starboard side.
void drawBoats(const Pass& pass) {
    for (int i = 0; i < 2; ++i) {
        const Boat b = boat(i);
        const BoatShape& s = boatShape(i);
        const Rotation turn = attitude(b.heading, 0, 0);
        const Vec at{b.x, b.y, b.z};
        const Section body[] = {{-s.length / 2, s.beam / 2, -4, s.freeboard}, {s.length / 2, s.beam / 2, -4, s.freeboard}};
        loft(pass, body, 2, turn, at, hull);
        const Vec islandAt = at + apply(turn, Vec{s.islandOffset, 0, 0});
        const Section island[] = {{-s.islandLength / 2, s.islandWidth / 2, s.freeboard, s.freeboard + s.islandHeight},
                                  {s.islandLength / 2, s.islandWidth / 2, s.freeboard, s.freeboard + s.islandHeight}};
        loft(pass, island, 2, turn, islandAt, superstructure);
    }
}

// A checkered grid over the height field, fixed to the world so that motion shows,
// its cells growing with the camera's height and fading into the distant ground.
void drawTerrain(const Pass& pass) {
    double below = 0;
    if (!terrainHeight(pass.eye.x, pass.eye.z, below)) below = 0;
    const double height = std::max(1.0, pass.eye.y - below);
    double cell = 25;
    while (cell < height / 5 && cell < 800) cell *= 2;
    constexpr int half = 32, side = 2 * half + 1;
    const long firstI = static_cast<long>(std::floor(pass.eye.x / cell)) - half;
    const long firstJ = static_cast<long>(std::floor(pass.eye.z / cell)) - half;
    const double extent = half * cell;

    std::vector<double> heights(static_cast<size_t>(side) * side);
    std::vector<char> found(heights.size());
    for (int j = 0; j < side; ++j)
        for (int i = 0; i < side; ++i) {
            const size_t k = static_cast<size_t>(j) * side + static_cast<size_t>(i);
            found[k] = terrainHeight(static_cast<double>(firstI + i) * cell, static_cast<double>(firstJ + j) * cell,
                                     heights[k]);
        }
    auto point = [&](int i, int j) {
        return Vec{static_cast<double>(firstI + i) * cell, heights[static_cast<size_t>(j) * side + static_cast<size_t>(i)],
                   static_cast<double>(firstJ + j) * cell};
    };
    auto put = [&](Vec p, Colour c) {
        const double distance = std::hypot(p.x - pass.eye.x, p.z - pass.eye.z);
        const float haze = static_cast<float>(std::clamp((distance / extent - 0.45) / 0.55, 0.0, 1.0));
        const Colour shown = mix(c, distantGround, haze);
        glColor3f(shown.r, shown.g, shown.b);
        vertex(pass, p);
    };
    glBegin(GL_QUADS);
    for (int j = 0; j + 1 < side; ++j)
        for (int i = 0; i + 1 < side; ++i) {
            const size_t k = static_cast<size_t>(j) * side + static_cast<size_t>(i);
            if (!found[k] || !found[k + 1] || !found[k + side] || !found[k + side + 1]) continue;
            // A round patch: a square's corners would bend its far edge up at the sides.
            const double cx = (static_cast<double>(firstI + i) + 0.5) * cell - pass.eye.x;
            const double cz = (static_cast<double>(firstJ + j) + 0.5) * cell - pass.eye.z;
            if (cx * cx + cz * cz > extent * extent) continue;
            // Counter-clockwise seen from above: x east, z south.
            const Vec a = point(i, j), b = point(i, j + 1), c = point(i + 1, j + 1), d = point(i + 1, j);
            const double light = std::max(0.0, dot(normalized(cross(b - a, c - a)), pass.sun));
            const bool odd = ((firstI + i + firstJ + j) & 1) != 0;
            const bool wet = isWater((a.x + c.x) / 2, (a.z + c.z) / 2);
            const Colour base = wet ? (odd ? lightWater : darkWater) : (odd ? lightField : darkField);
            const Colour colour = scaled(base, static_cast<float>(0.6 + 0.5 * light));
            put(a, colour);
            put(b, colour);
            put(c, colour);
            put(d, colour);
        }
    glEnd();
}

// Each marker a cube about a hundredth of its distance across (at least 2 m), in flat
// colour so that its pixels can be told from everything else.
void drawMarkers(const Pass& pass) {
    glColor3f(markerPaint[0], markerPaint[1], markerPaint[2]);
    glBegin(GL_QUADS);
    for (const Marker& m : markers()) {
        Vec c;
        worldToLocal(m.latitude, m.longitude, m.elevation, c.x, c.y, c.z);
        const double half = std::max(1.0, std::sqrt(dot(c - pass.eye, c - pass.eye)) * 0.005);
        static const int faces[6][4][3] = {
            {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1}}, {{-1, -1, 1}, {1, -1, 1}, {1, 1, 1}, {-1, 1, 1}},
            {{-1, -1, -1}, {-1, 1, -1}, {-1, 1, 1}, {-1, -1, 1}}, {{1, -1, -1}, {1, 1, -1}, {1, 1, 1}, {1, -1, 1}},
            {{-1, -1, -1}, {1, -1, -1}, {1, -1, 1}, {-1, -1, 1}}, {{-1, 1, -1}, {1, 1, -1}, {1, 1, 1}, {-1, 1, 1}}};
        for (const auto& f : faces)
            for (const auto& v : f) vertex(pass, c + Vec{v[0] * half, v[1] * half, v[2] * half});
    }
    glEnd();
}

// Sky and ground at infinity, drawn with the camera's rotation only and no depth: a
// band from the pale horizon up into the zenith's blue (the clear colour above it),
// then the distant ground, whose edge dips below level by the earth's curve as seen
// from this height.
void drawBackdrop(double heightAboveSea) {
    constexpr double earthRadius = 6371000.0;
    const double dip = std::acos(earthRadius / (earthRadius + std::max(1.0, heightAboveSea)));
    constexpr int segments = 36;
    constexpr double radius = 100, bandTop = 25 * degToRad, bandBottom = -1 * degToRad;
    glBegin(GL_QUADS);
    for (int s = 0; s < segments; ++s) {
        const double a0 = 2 * 3.14159265358979323846 * s / segments;
        const double a1 = 2 * 3.14159265358979323846 * (s + 1) / segments;
        auto put = [&](double azimuth, double elevation, Colour c) {
            glColor3f(c.r, c.g, c.b);
            glVertex3f(static_cast<float>(radius * std::cos(elevation) * std::cos(azimuth)),
                       static_cast<float>(radius * std::sin(elevation)),
                       static_cast<float>(radius * std::cos(elevation) * std::sin(azimuth)));
        };
        put(a0, bandBottom, horizonSky);
        put(a1, bandBottom, horizonSky);
        put(a1, bandTop, zenithSky);
        put(a0, bandTop, zenithSky);
    }
    constexpr float reach = 1000;
    const float depth = static_cast<float>(reach * std::tan(dip));
    glColor3f(distantGround.r, distantGround.g, distantGround.b);
    glVertex3f(-reach, -depth, -reach);
    glVertex3f(-reach, -depth, reach);
    glVertex3f(reach, -depth, reach);
    glVertex3f(reach, -depth, -reach);
    glEnd();
}

}  // namespace

void addMarker(double latitude, double longitude, double elevation) {
    markers().push_back({latitude, longitude, elevation});
}

void clearMarkers() { markers().clear(); }

void drawScene(int width, int height) {
    if (width <= 0 || height <= 0) return;
    const CameraPosition camera = cameraPosition();
    float fieldOfView = 60;
    if (SimDataRef* r = simDataRef("sim/graphics/view/field_of_view_deg"))
        if (r->f > 0) fieldOfView = r->f;
    const float zoom = camera.zoom > 0 ? camera.zoom : 1.0f;
    // The simulator's field of view is the horizontal one; the vertical follows the screen.
    const double horizontal = std::clamp(static_cast<double>(fieldOfView / zoom), 1.0, 170.0) * degToRad;
    const double nearPlane = 0.3, farPlane = 60000;
    const double right = nearPlane * std::tan(horizontal / 2);
    const double top = right * height / width;
    float projection[16] = {};
    projection[0] = static_cast<float>(nearPlane / right);
    projection[5] = static_cast<float>(nearPlane / top);
    projection[10] = static_cast<float>(-(farPlane + nearPlane) / (farPlane - nearPlane));
    projection[11] = -1;
    projection[14] = static_cast<float>(-2 * farPlane * nearPlane / (farPlane - nearPlane));

    // The view turns the world by the inverse of the camera's rotation: its transpose,
    // which column-major storage gives by writing the rows in order.
    const Rotation orientation = attitude(camera.heading, camera.pitch, camera.roll);
    float view[16] = {};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) view[i * 4 + j] = static_cast<float>(orientation.m[i][j]);
    view[15] = 1;

    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadMatrixf(projection);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadMatrixf(view);
    glViewport(0, 0, width, height);
    for (GLenum cap : {GL_SCISSOR_TEST, GL_TEXTURE_2D, GL_LIGHTING, GL_BLEND, GL_ALPHA_TEST, GL_FOG})
        glDisable(cap);
    glShadeModel(GL_SMOOTH);

    glDisable(GL_CULL_FACE);
    glDisable(GL_DEPTH_TEST);
    glDepthMask(GL_FALSE);
    double latitude, longitude, elevation;
    localToWorld(camera.x, camera.y, camera.z, latitude, longitude, elevation);
    drawBackdrop(elevation);

    Pass pass;
    pass.eye = Vec{camera.x, camera.y, camera.z};
    pass.sun = sunDirection();
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glDepthMask(GL_TRUE);
    // The window pass clears with depth writes off, which leaves the depth buffer as it was.
    glClear(GL_DEPTH_BUFFER_BIT);
    // Closed solids cull their back faces: from the cockpit the cabin's own walls
    // vanish and the panel and the world outside show.
    glEnable(GL_CULL_FACE);
    glCullFace(GL_BACK);
    drawTerrain(pass);
    glBegin(GL_QUADS);
    drawBoats(pass);
    drawAircraft(pass, aircraft(), paint);
    for (const TrafficAircraft& other : trafficAircraft()) drawAircraft(pass, other.state, trafficPaint);
    glEnd();
    // Over everything: a marker shows where it is even behind a hill.
    glDisable(GL_CULL_FACE);
    glDisable(GL_DEPTH_TEST);
    drawMarkers(pass);

    // The window pass never tests against the world's depth.
    glClear(GL_DEPTH_BUFFER_BIT);
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glPopAttrib();
}

}  // namespace xphost
