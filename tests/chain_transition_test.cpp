// Chains built a few legs ahead as they play against the whole list that a camera
// change used to build and round at once: the algorithm as it was is kept here, and
// every frame played must have its pose, camera and delay.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "motion_fixture.h"

namespace {

// ---- The whole-list algorithm as it was, on a vector of frames. ----

struct OldFrame {
    CameraPose pose;
    float delay;
    Camera* camera;
};

constexpr double kRadians = 3.14159265358979323846 / 180.0;

void oldNormalise(CameraPose& pose) {
    if (pose.heading >= 360.0f) pose.heading -= 360.0f;
    else if (pose.heading < 0.0f) pose.heading += 360.0f;
    if (pose.pitch >= 360.0f) pose.pitch -= 360.0f;
    else if (pose.pitch < 0.0f) pose.pitch += 360.0f;
    if (pose.roll < 0.0f) pose.roll += 360.0f;
}

struct OldDelta {
    float x, y, z, fov, zoom, cgY, cgZ, cgX, heading, pitch, roll;
};

void oldAdvance(CameraPose& p, const OldDelta& d, double weight) {
    p.x += static_cast<float>(d.x * weight);
    p.y += static_cast<float>(d.y * weight);
    p.z += static_cast<float>(d.z * weight);
    p.fov += static_cast<float>(d.fov * weight);
    p.zoom += static_cast<float>(d.zoom * weight);
    p.cgY += static_cast<float>(d.cgY * weight);
    p.cgZ += static_cast<float>(d.cgZ * weight);
    p.cgX += static_cast<float>(d.cgX * weight);
    p.heading += static_cast<float>(d.heading * weight);
    p.pitch += static_cast<float>(d.pitch * weight);
    p.roll += static_cast<float>(d.roll * weight);
    oldNormalise(p);
}

struct OldBuild {
    const CameraPose* start = nullptr;
    bool wantsJoins = false;
};

std::vector<OldFrame> oldLeg(OldBuild& build, Camera* from, Camera* to, int depth, bool& mayChain) {
    if (from && from->freeCamera) worldToLocal(from);
    if (to->freeCamera) worldToLocal(to);
    int n = to->transitionSeconds > 0.0f ? static_cast<int>(currentFrameRate() * to->transitionSeconds)
                                         : to->linearTransitionFrames;
    CameraPose a = from ? cameraPose(from) : readHeadPose();
    if (depth == 1 && build.start) a = *build.start;
    if (from && depth == 1 && !from->external &&
        (from->trackIrEnabled || from->headShake || from->xpRealistic || from->realView || from->scriptId > 0)) {
        CameraPose head = readHeadPose();
        a.x = head.x;
        a.y = head.y;
        a.z = head.z;
        a.heading = head.heading;
        a.pitch = head.pitch;
        if (frameDriver().headRollAvailable) a.roll = head.roll;
    }
    CameraPose b = cameraPose(to);
    float delay = to->transitionDelay > 0.0f ? to->transitionDelay : 0.0f;
    mayChain = false;
    if ((!to->linearTransition || n < 1) && !to->smoothTransition) return {{b, delay, to}};
    std::vector<OldFrame> leg{{a, delay, to}};
    if ((from && from->smoothCameraJoins) || to->smoothCameraJoins) build.wantsJoins = true;
    OldDelta d{b.x - a.x,     b.y - a.y,     b.z - a.z,
               b.fov - a.fov, b.zoom - a.zoom, b.cgY - a.cgY,
               b.cgZ - a.cgZ, b.cgX - a.cgX,   signedDifference(a.heading, b.heading),
               signedDifference(a.pitch, b.pitch), signedDifference(a.roll, b.roll)};
    if (!to->linearTransition) {
        int m = n < 1 ? 15 : n;
        double step = 180.0 / static_cast<double>(m + 1);
        double sum = 0.0;
        for (int k = 1; k <= m; ++k) sum += std::sin(k * step * kRadians);
        for (int k = 1; k <= m; ++k) {
            leg.push_back({leg.back().pose, 0.0f, to});
            oldAdvance(leg.back().pose, d, std::sin(k * step * kRadians) / sum);
        }
        mayChain = true;
    } else if (n >= 1) {
        for (int i = 0; i < n; ++i) {
            leg.push_back({leg.back().pose, 0.0f, to});
            oldAdvance(leg.back().pose, d, 1.0 / n);
        }
        mayChain = true;
    }
    return leg;
}

void oldWritePose(Camera& camera, const CameraPose& pose) {
    camera.x = pose.x;
    camera.y = pose.y;
    camera.z = pose.z;
    camera.heading = pose.heading;
    camera.pitch = pose.pitch;
    camera.roll = pose.roll;
    camera.cgY = pose.cgY;
    camera.cgZ = pose.cgZ;
    camera.cgX = pose.cgX;
}

void oldSmoothJoins(std::vector<OldFrame>& list) {
    const int window = settings().SMOOTH_WINDOW / 2;
    const int size = static_cast<int>(list.size());
    static Camera first, middle, last;
    auto run = [&](int at, int direction) {
        Camera* camera = list[at].camera;
        int count = 0;
        while (at >= 0 && at < size && list[at].camera == camera && count <= 2 * window) {
            ++count;
            at += direction;
        }
        return count;
    };
    for (int f = 0; f + 1 < size; ++f) {
        if (list[f].camera == list[f + 1].camera) continue;
        int half = std::min(window, std::min(run(f, -1), run(f + 1, 1)) / 2);
        if (half < 10) continue;
        int start = f - half, end = f + half;
        if (start < 0 || end >= size) continue;
        first = *list[f].camera;
        middle = *list[f + 1].camera;
        last = *list[f + 1].camera;
        first.linearTransition = false;
        first.bezierTransition = false;
        first.autoAdvance = true;
        first.linearTransitionFrames = 0;
        first.nextInCategory = &middle;
        middle.transitionSeconds = 0.0f;
        middle.linearTransitionFrames = half + 1;
        middle.bezierTransition = true;
        middle.autoAdvance = true;
        middle.nextInCategory = &last;
        last.transitionSeconds = 0.0f;
        last.linearTransitionFrames = half;
        last.bezierTransition = true;
        last.autoAdvance = false;
        last.nextInCategory = nullptr;
        oldWritePose(first, list[start].pose);
        oldWritePose(middle, list[f].pose);
        oldWritePose(last, list[end].pose);
        TransitionFrame* curve = buildBezierTransition(&first, &last);
        if (!curve) continue;
        int target = start;
        for (TransitionFrame* c = curve; c && target < size; c = c->next, ++target) list[target].pose = c->pose;
        freeTransitionList(curve);
    }
}

std::vector<OldFrame> oldTransition(const CameraPose* start, Camera* from, Camera* to) {
    OldBuild build;
    build.start = start;
    std::vector<OldFrame> list;
    int depth = 0;
    for (;;) {
        ++depth;
        bool mayChain = false;
        std::vector<OldFrame> leg = oldLeg(build, from, to, depth, mayChain);
        if (list.empty()) {
            list = leg;
        } else if (leg.size() == 1) {
            list.push_back(leg[0]);
        } else {
            leg[1].delay = leg[0].delay;
            list.insert(list.end(), leg.begin() + 1, leg.end());
        }
        if (!mayChain) break;
        Camera* next = to->nextInCategory;
        if (!(to->autoAdvance && depth < kMaxChainDepth && mayAutoAdvance() && next &&
              (next->linearTransition || next->smoothTransition)))
            break;
        from = to;
        to = next;
    }
    if (depth > 1 && build.wantsJoins) oldSmoothJoins(list);
    return list;
}

// ---- The comparison. ----

bool samePose(const CameraPose& a, const CameraPose& b) {
    const double pairs[][2] = {{a.x, b.x},     {a.y, b.y},       {a.z, b.z},     {a.heading, b.heading},
                               {a.pitch, b.pitch}, {a.roll, b.roll}, {a.fov, b.fov}, {a.zoom, b.zoom},
                               {a.cgY, b.cgY}, {a.cgZ, b.cgZ},   {a.cgX, b.cgX}, {a.latitude, b.latitude},
                               {a.longitude, b.longitude}, {a.elevation, b.elevation}};
    for (const auto& p : pairs)
        if (!(std::fabs(p[0] - p[1]) <= 1e-9)) return false;
    return true;
}

class ChainTransitionTest : public MotionTest {
protected:
    // Plays the running transition to its end, frame by frame against `expected`;
    // returns the most frames held at any time.
    int64_t playAgainst(const std::vector<OldFrame>& expected, Camera* current) {
        int64_t mostHeld = framesAllocated();
        size_t i = 0;
        while (transitionRunning()) {
            if (i >= expected.size()) {
                ADD_FAILURE() << "more frames than the whole list's " << expected.size();
                break;
            }
            TransitionFrame* head = transitionState().transitionHead;
            if (head->camera != expected[i].camera || head->delay != expected[i].delay) {
                ADD_FAILURE() << "frame " << i << ": camera or delay differs";
                break;
            }
            head->delay = 0.0f;  // the hold itself is another test's
            stepTransition(current);
            if (!samePose(frameDriver().framePose, expected[i].pose)) {
                ADD_FAILURE() << "frame " << i << " of " << expected.size() << ": pose differs, x "
                              << frameDriver().framePose.x << " against " << expected[i].pose.x;
                break;
            }
            mostHeld = std::max(mostHeld, framesAllocated());
            ++i;
        }
        EXPECT_EQ(i, expected.size());
        freeTransition();
        return mostHeld;
    }

    // The whole list built at once must be the same too.
    static void expectWholeList(const std::vector<OldFrame>& expected, const CameraPose* start, Camera* from,
                                Camera* to) {
        TransitionFrame* head = buildTransitionFrom(start, from, to);
        size_t i = 0;
        for (const TransitionFrame* f = head; f && i < expected.size(); f = f->next, ++i)
            if (!samePose(f->pose, expected[i].pose) || f->camera != expected[i].camera) {
                ADD_FAILURE() << "whole list frame " << i;
                break;
            }
        EXPECT_EQ(transitionLength(head), static_cast<int32_t>(expected.size()));
        freeTransitionList(head);
    }

    // Frames held at any time stay under `heldAtMost`, and the pool never grows
    // beyond a megabyte.
    void expectSameChain(const CameraPose* start, Camera* from, Camera* to, int64_t heldAtMost) {
        std::vector<OldFrame> expected = oldTransition(start, from, to);
        expectWholeList(expected, start, from, to);
        releaseFramePool();
        selectCameraRecord(to);
        startTransition(start, from, to);
        EXPECT_LE(playAgainst(expected, to), heldAtMost);
        EXPECT_LE(framePoolCapacity() * int64_t(sizeof(TransitionFrame)), 1 << 20);
    }
};

// The orbit of the benchmark: 36 cameras 10 degrees apart, a circle in 30 seconds,
// going round to the depth limit with rounded joins.
TEST_F(ChainTransitionTest, RingToTheDepthLimitPlaysAsTheWholeList) {
    buildCategory(36);
    for (int i = 0; i < 36; ++i) {
        float h = 10.0f * i;
        Camera& c = cam(i);
        c.x = static_cast<float>(-std::sin(h * kRadians) * 10.0);
        c.z = static_cast<float>(std::cos(h * kRadians) * 10.0);
        c.y = static_cast<float>(std::sin(h * kRadians) * 3.0);
        c.heading = h;
        c.linearTransition = c.autoAdvance = c.smoothCameraJoins = c.external = true;
        c.transitionSeconds = 30.0f / 36;
    }
    for (float fps : {60.0f, 23.0f}) {
        setFrameRate(fps);
        expectSameChain(nullptr, &cam(0), &cam(1), 400);
    }
}

// Legs of every kind in one ring: eased and linear, long and shorter than the window,
// a delay, joins asked by one camera only, an odd window; then a chain that ends, one
// that starts where an interrupted transition stood, and one from the head.
TEST_F(ChainTransitionTest, MixedLegsPlayAsTheWholeList) {
    buildCategory(7);
    const int frames[7] = {40, 12, 25, 70, 33, 18, 90};
    for (int i = 0; i < 7; ++i) {
        Camera& c = cam(i);
        c.x = 20.0f * std::cos(i * 1.1f);
        c.y = 3.0f * i;
        c.z = 20.0f * std::sin(i * 1.7f);
        c.heading = 50.0f * i;
        c.pitch = i % 2 ? 10.0f : 350.0f;
        c.roll = 5.0f * i;
        c.cgY = 0.1f * i;
        c.autoAdvance = true;
        c.linearTransition = i % 3 != 1;
        c.smoothTransition = i % 3 == 1;
        c.linearTransitionFrames = frames[i];
    }
    cam(3).transitionDelay = 0.5f;
    cam(2).transitionSeconds = 0.9f;
    cam(4).smoothCameraJoins = true;
    setFrameRate(40);
    settings().SMOOTH_WINDOW = 75;
    expectSameChain(nullptr, &cam(0), &cam(1), 600);

    cam(5).autoAdvance = false;
    expectSameChain(nullptr, &cam(6), &cam(0), 600);

    CameraPose stood = cameraPose(&cam(2));
    stood.x += 7.0f;
    stood.heading = 200.0f;
    expectSameChain(&stood, &cam(0), &cam(1), 600);
    expectSameChain(nullptr, nullptr, &cam(4), 600);

    // Joins asked only by a camera late in the chain still round every corner.
    cam(4).smoothCameraJoins = false;
    cam(5).smoothCameraJoins = true;
    expectSameChain(nullptr, &cam(0), &cam(1), 600);
}

}  // namespace
