#include "motion/transitions.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "data/plugin_state.h"
#include "data/settings.h"
#include "motion/camera_pose.h"
#include "motion/frame_driver.h"
#include "motion/movement.h"
#include "platform/runtime.h"

namespace {

constexpr double kRadians = 3.14159265358979323846 / 180.0;
// A plain smooth transition without a frame count or seconds.
constexpr int32_t kDefaultSmoothFrames = 15;
// No Bezier leg is shorter than this.
constexpr int32_t kMinBezierLegFrames = 10;

TransitionState gState;
// The start pose of the next leg built at depth 1, when the caller gives one.
const CameraPose* gStartOverride = nullptr;
// Sums of frame times carry rounding; a delay that is due within this is due.
constexpr double kTimerSlack = 1e-6;

// Frames come from chunks and go back to a free list, so the frame of a camera change
// into a long chain doesn't pay one heap allocation per frame, and a consumed chain
// leaves its memory for the next one instead of growing the heap.
constexpr int32_t kFramesPerChunk = 4096;
struct FramePool {
    std::vector<std::unique_ptr<TransitionFrame[]>> chunks;
    TransitionFrame* freeList = nullptr;
    int64_t inUse = 0;
};
FramePool gPool;

void normalise(CameraPose& pose) {
    if (pose.heading >= 360.0f) pose.heading -= 360.0f;
    else if (pose.heading < 0.0f) pose.heading += 360.0f;
    if (pose.pitch >= 360.0f) pose.pitch -= 360.0f;
    else if (pose.pitch < 0.0f) pose.pitch += 360.0f;
    if (pose.roll < 0.0f) pose.roll += 360.0f;
}

TransitionFrame* newFrame(const CameraPose& pose, Camera* camera, float delay) {
    TransitionFrame* frame = allocateFrame();
    frame->pose = pose;
    frame->delay = delay;
    frame->camera = camera;
    frame->next = nullptr;
    frame->previous = nullptr;
    return frame;
}

// A copy of `tail`, linked behind it.
TransitionFrame* appendCopy(TransitionFrame* tail, Camera* camera) {
    TransitionFrame* frame = newFrame(tail->pose, camera, 0.0f);
    frame->previous = tail;
    tail->next = frame;
    return frame;
}

struct PoseDelta {
    float x, y, z, fov, zoom, cgY, cgZ, cgX, heading, pitch, roll;
};

PoseDelta poseDelta(const CameraPose& a, const CameraPose& b) {
    PoseDelta d;
    d.x = b.x - a.x;
    d.y = b.y - a.y;
    d.z = b.z - a.z;
    d.fov = b.fov - a.fov;
    d.zoom = b.zoom - a.zoom;
    d.cgY = b.cgY - a.cgY;
    d.cgZ = b.cgZ - a.cgZ;
    d.cgX = b.cgX - a.cgX;
    d.heading = signedDifference(a.heading, b.heading);
    d.pitch = signedDifference(a.pitch, b.pitch);
    d.roll = signedDifference(a.roll, b.roll);
    return d;
}

void advance(CameraPose& p, const PoseDelta& d, double weight) {
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
    normalise(p);
}

// The start pose follows the head where inputs may have moved it away from the
// camera's nominal place.
bool headMayDiffer(const Camera* from) {
    return !from->external &&
           (from->trackIrEnabled || from->headShake || from->xpRealistic || from->realView || from->scriptId > 0);
}

struct Leg {
    TransitionFrame* head = nullptr;
    TransitionFrame* tail = nullptr;
    int32_t frames = 0;
    bool mayChain = false;
};

int32_t legFrameCount(const Camera* to, float frameRate) {
    return to->transitionSeconds > 0.0f ? static_cast<int32_t>(frameRate * to->transitionSeconds)
                                        : to->linearTransitionFrames;
}

// One camera change: the frames from `from` (or the head) to `to`.
Leg buildLeg(Camera* from, Camera* to, int32_t depth, float frameRate) {
    if (from && from->freeCamera) worldToLocal(from);
    if (to->freeCamera) worldToLocal(to);

    int32_t n = legFrameCount(to, frameRate);
    CameraPose a = from ? cameraPose(from) : readHeadPose();
    if (depth == 1 && gStartOverride) a = *gStartOverride;
    if (from && depth == 1 && headMayDiffer(from)) {
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

    Leg leg;
    if ((!to->linearTransition || n < 1) && !to->smoothTransition) {
        leg.head = leg.tail = newFrame(b, to, delay);
        leg.frames = 1;
        return leg;
    }
    leg.head = leg.tail = newFrame(a, to, delay);
    leg.frames = 1;

    PoseDelta d = poseDelta(a, b);
    if (!to->linearTransition) {
        // Sine-eased: the weights sum to one, slow at both ends. The half wave is cut
        // into m + 1 parts so that every one of the m frames moves: with m parts the
        // last weight, sin 180, was zero and the last frame repeated the one before.
        int32_t m = n < 1 ? kDefaultSmoothFrames : n;
        double step = 180.0 / static_cast<double>(m + 1);
        double sum = 0.0;
        for (int32_t k = 1; k <= m; ++k) sum += std::sin(k * step * kRadians);
        for (int32_t k = 1; k <= m; ++k) {
            leg.tail = appendCopy(leg.tail, to);
            advance(leg.tail->pose, d, std::sin(k * step * kRadians) / sum);
        }
        leg.frames += m;
        leg.mayChain = true;
    } else if (n >= 1) {
        for (int32_t i = 0; i < n; ++i) {
            leg.tail = appendCopy(leg.tail, to);
            advance(leg.tail->pose, d, 1.0 / n);
        }
        leg.frames += n;
        leg.mayChain = true;
    }
    return leg;
}

// de Casteljau's equivalent in Bernstein form; the factorials reach 32! at most.
const double* factorials() {
    static double table[kMaxBezierPoints + 1];
    if (table[0] == 0.0) {
        table[0] = 1.0;
        for (int i = 1; i <= kMaxBezierPoints; ++i) table[i] = table[i - 1] * i;
    }
    return table;
}

// The Bernstein weights of every sample of a curve of `count` points and `total`
// samples. Every rounded corner of a chain has the same shape, so the table of the
// last curve is kept and reused.
const double* bernsteinWeights(int32_t count, int32_t total) {
    static std::vector<double> table;
    static int32_t tableCount = 0, tableTotal = 0;
    if (count == tableCount && total == tableTotal) return table.data();
    const double* fact = factorials();
    int32_t degree = count - 1;
    table.resize(static_cast<size_t>(total) * count);
    for (int32_t i = 0; i < total; ++i) {
        double t = static_cast<double>(i) / (total - 1);
        if (1.0 - t < 0.000005) t = 1.0;
        for (int32_t k = 0; k <= degree; ++k) {
            double weight = fact[degree] / (fact[k] * fact[degree - k]);
            // 0^0 counts as 1 at both ends of the curve.
            weight *= (k == 0) ? 1.0 : std::pow(t, k);
            weight *= (degree - k == 0) ? 1.0 : std::pow(1.0 - t, degree - k);
            table[static_cast<size_t>(i) * count + k] = weight;
        }
    }
    tableCount = count;
    tableTotal = total;
    return table.data();
}

void bezierPoint(Camera* const* points, int32_t count, const double* weights, double& x, double& y, double& z) {
    x = y = z = 0.0;
    for (int32_t k = 0; k < count; ++k) {
        x += weights[k] * points[k]->x;
        y += weights[k] * points[k]->y;
        z += weights[k] * points[k]->z;
    }
}

float interpolate(float a, float b, int32_t k, int32_t frames) {
    return a + static_cast<float>(k) * (b - a) / static_cast<float>(frames);
}

float interpolateAngle(float a, float b, int32_t k, int32_t frames) {
    return a + static_cast<float>(k) * signedDifference(a, b) / static_cast<float>(frames);
}

// Counts frames of `camera` walking from `frame` along previous (backwards) or next,
// stopping once more than `limit` are found.
int32_t runOfCamera(const TransitionFrame* frame, const Camera* camera, bool backwards, int32_t limit) {
    int32_t count = 0;
    while (frame && frame->camera == camera && count <= limit) {
        ++count;
        frame = backwards ? frame->previous : frame->next;
    }
    return count;
}

TransitionFrame* stepFrames(TransitionFrame* frame, int32_t steps, bool backwards) {
    for (int32_t i = 0; i < steps && frame; ++i) frame = backwards ? frame->previous : frame->next;
    return frame;
}

void writePose(Camera& camera, const CameraPose& pose) {
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

}  // namespace

TransitionState& transitionState() { return gState; }

float signedDifference(float a, float b) {
    float d = b - a;
    if (std::fabs(d) > 180.0f) d += d < 0.0f ? 360.0f : -360.0f;
    return d;
}

TransitionFrame* allocateFrame() {
    if (!gPool.freeList) {
        gPool.chunks.emplace_back(new TransitionFrame[kFramesPerChunk]);
        TransitionFrame* chunk = gPool.chunks.back().get();
        for (int32_t i = 0; i < kFramesPerChunk; ++i) {
            chunk[i].next = gPool.freeList;
            gPool.freeList = &chunk[i];
        }
    }
    TransitionFrame* frame = gPool.freeList;
    gPool.freeList = frame->next;
    ++gPool.inUse;
    return frame;
}

void releaseFrame(TransitionFrame* frame) {
    if (!frame) return;
    frame->next = gPool.freeList;
    frame->previous = nullptr;
    gPool.freeList = frame;
    --gPool.inUse;
}

int64_t framesAllocated() { return gPool.inUse; }

int64_t framePoolCapacity() { return static_cast<int64_t>(gPool.chunks.size()) * kFramesPerChunk; }

void releaseFramePool() {
    if (gPool.inUse != 0) return;
    gPool.chunks.clear();
    gPool.freeList = nullptr;
}

void freeTransitionList(TransitionFrame* head) {
    while (head) {
        TransitionFrame* next = head->next;
        releaseFrame(head);
        head = next;
    }
}

int32_t transitionLength(const TransitionFrame* head) {
    int32_t n = 0;
    for (; head; head = head->next) ++n;
    return n;
}

namespace {

// Whether a chain from `from` to `to` has a second leg and any of its legs asks for
// rounded joins (which rounds every corner of the chain). Walks the cameras the legs
// would be built from, without building a frame.
bool chainRoundsCorners(Camera* from, Camera* to, float frameRate, bool mayAdvance) {
    bool joins = false;
    for (int32_t depth = 1;; ++depth) {
        if (depth > 1 && joins) return true;
        int32_t n = legFrameCount(to, frameRate);
        if ((!to->linearTransition || n < 1) && !to->smoothTransition) return false;
        if ((from && from->smoothCameraJoins) || to->smoothCameraJoins) joins = true;
        bool mayChain = !to->linearTransition || n >= 1;
        Camera* next = to->nextInCategory;
        if (!(mayChain && to->autoAdvance && depth < kMaxChainDepth && mayAdvance && next &&
              (next->linearTransition || next->smoothTransition)))
            return joins && depth > 1;
        from = to;
        to = next;
    }
}

// A chain of legs is built as the frames ahead of the view run short rather than all
// at the camera change: a ring that goes round to the depth limit is 125,000 frames at
// 60 fps, and building them took a frame of 5 ms and a pool of 13 MB. Only a corner's
// reach either side has to exist when it is rounded, so the frames and their order of
// work are the same as building the whole list and rounding it afterwards. What a leg
// reads of its cameras is read when the leg is built: a camera edited while a ring goes
// round is met as edited on the next round.
struct ChainBuilder {
    Camera* from = nullptr;
    Camera* to = nullptr;
    int32_t depth = 0;  // legs built
    bool more = false;  // legs left to build
    bool roundCorners = false;
    // Taken at the camera change, as when every leg was built in that frame.
    float frameRate = 0.0f;
    bool mayAdvance = false;
    int32_t window = 0;  // frames a corner's curve takes at most either side
    TransitionFrame* tail = nullptr;
    // The next frame whose corner is looked at; those before it are final. Null once
    // every frame is.
    TransitionFrame* scan = nullptr;
    int64_t finalFrames = 0;  // from the head up to the scan
    int64_t pendingFrames = 0;  // from the scan to the tail
};
// The running transition's.
ChainBuilder gChain;

void roundCorner(TransitionFrame* f, int32_t window);

// Frames a corner looks at either side: the runs of its two cameras are counted up to
// twice the window.
int64_t cornerReach(const ChainBuilder& b) { return 2 * static_cast<int64_t>(b.window) + 2; }

void appendLeg(ChainBuilder& b, TransitionFrame*& head) {
    Leg leg = buildLeg(b.from, b.to, ++b.depth, b.frameRate);
    int64_t added = leg.frames;
    if (!head) {
        head = b.scan = leg.head;
        b.tail = leg.tail;
    } else if (leg.head == leg.tail) {
        leg.head->previous = b.tail;
        b.tail->next = leg.head;
        b.tail = leg.head;
    } else {
        // The leg's head repeats the pose this list ends on; its delay moves on.
        TransitionFrame* second = leg.head->next;
        second->delay = leg.head->delay;
        releaseFrame(leg.head);
        second->previous = b.tail;
        b.tail->next = second;
        b.tail = leg.tail;
        --added;
    }
    if (!b.scan) b.scan = b.tail;
    b.pendingFrames += added;

    Camera* next = b.to->nextInCategory;
    b.more = leg.mayChain && b.to->autoAdvance && b.depth < kMaxChainDepth && b.mayAdvance && next &&
             (next->linearTransition || next->smoothTransition);
    if (b.more) {
        b.from = b.to;
        b.to = next;
    }
}

// `head` is null; builds the first leg from `start` (the view's pose) or `from`.
void startChain(ChainBuilder& b, TransitionFrame*& head, const CameraPose* start, Camera* from, Camera* to) {
    b = ChainBuilder{};
    b.from = from;
    b.to = to;
    b.frameRate = currentFrameRate();
    b.mayAdvance = mayAutoAdvance();
    b.window = settings().SMOOTH_WINDOW / 2;
    b.roundCorners = chainRoundsCorners(from, to, b.frameRate, b.mayAdvance);
    gStartOverride = start;
    appendLeg(b, head);
    gStartOverride = nullptr;
}

// Builds legs and rounds corners until `wanted` frames from the head are final, or
// all are.
void finishFrames(ChainBuilder& b, TransitionFrame*& head, int64_t wanted) {
    int64_t reach = cornerReach(b);
    while (b.scan && b.finalFrames < wanted) {
        if (b.more && b.pendingFrames <= reach) {
            appendLeg(b, head);
            continue;
        }
        TransitionFrame* f = b.scan;
        if (b.roundCorners && f->next && f->camera != f->next->camera) roundCorner(f, b.window);
        b.scan = f->next;
        ++b.finalFrames;
        --b.pendingFrames;
    }
}

}  // namespace

TransitionFrame* buildTransition(Camera* from, Camera* to) { return buildTransitionFrom(nullptr, from, to); }

TransitionFrame* buildTransitionFrom(const CameraPose* start, Camera* from, Camera* to) {
    ChainBuilder builder;
    TransitionFrame* head = nullptr;
    startChain(builder, head, start, from, to);
    finishFrames(builder, head, INT64_MAX);
    return head;
}

void startTransition(const CameraPose* start, Camera* from, Camera* to) {
    freeTransition();
    startChain(gChain, gState.transitionHead, start, from, to);
    finishFrames(gChain, gState.transitionHead, cornerReach(gChain) + 1);
}

TransitionFrame* buildBezierTransition(Camera* from, Camera* to) {
    if (!mayAutoAdvance() || !from) return nullptr;
    if (from->freeCamera) worldToLocal(from);
    if (to && to->freeCamera) worldToLocal(to);

    Camera* points[kMaxBezierPoints];
    int32_t legFrames[kMaxBezierPoints];
    int32_t count = 0;
    int32_t total = 0;
    Camera* c = from;
    Camera* b = nullptr;
    for (;;) {
        b = c->nextInCategory;
        if (!b) return nullptr;
        if (c->freeCamera || b->freeCamera) worldToLocal(b);
        if (b->transitionSeconds > 0.0f)
            b->linearTransitionFrames = static_cast<int32_t>(currentFrameRate() * b->transitionSeconds);
        int32_t frames = b->linearTransitionFrames > kMinBezierLegFrames ? b->linearTransitionFrames : kMinBezierLegFrames;
        total += frames;
        points[count] = c;
        legFrames[count] = frames;
        ++count;
        bool more = b->autoAdvance && b->nextInCategory && b->nextInCategory->bezierTransition &&
                    count < kMaxBezierPoints - 1 && b != from;
        if (!more) break;
        c = b;
    }
    points[count++] = b;
    Camera* lastCamera = b;
    if (count < 3) return nullptr;

    TransitionFrame* head = nullptr;
    TransitionFrame* tail = nullptr;
    int32_t sample = 0;
    float fallbackFov = defaultFov();
    const double* weights = bernsteinWeights(count, total);
    for (int32_t leg = 0; leg + 1 < count; ++leg) {
        const Camera* a = points[leg];
        const Camera* e = a->nextInCategory;
        int32_t frames = legFrames[leg];
        for (int32_t k = 0; k < frames; ++k, ++sample) {
            double x, y, z;
            bezierPoint(points, count, weights + static_cast<size_t>(sample) * count, x, y, z);
            CameraPose pose;
            pose.x = static_cast<float>(x);
            pose.y = static_cast<float>(y);
            pose.z = static_cast<float>(z);
            pose.heading = interpolateAngle(a->heading, e->heading, k, frames);
            pose.pitch = interpolateAngle(a->pitch, e->pitch, k, frames);
            pose.roll = interpolateAngle(a->roll, e->roll, k, frames);
            pose.zoom = interpolate(a->zoom, e->zoom, k, frames);
            pose.fov = a->enableFov ? interpolate(a->fov, e->fov, k, frames) : fallbackFov;
            pose.cgX = interpolate(a->cgX, e->cgX, k, frames);
            pose.cgY = interpolate(a->cgY, e->cgY, k, frames);
            pose.cgZ = interpolate(a->cgZ, e->cgZ, k, frames);
            normalise(pose);
            // The selection goes straight to the end of the chain.
            TransitionFrame* frame = newFrame(pose, lastCamera, k == 0 ? e->transitionDelay : 0.0f);
            if (!head) {
                head = frame;
            } else {
                frame->previous = tail;
                tail->next = frame;
            }
            tail = frame;
        }
    }
    return head;
}

namespace {

// Rounds the corner where the list turns from `f`'s camera to the next, over at most
// `window` frames either side.
void roundCorner(TransitionFrame* f, int32_t window) {
    // Scratch cameras of the three-point curve round one corner.
    static Camera first, middle, last;
    // Each corner takes at most half of either leg: where legs are shorter than
    // the window, two corners' curves overlapped, the second starting inside the
    // first, and the speed jumped by a third where they met.
    int32_t before = runOfCamera(f, f->camera, true, 2 * window);
    int32_t behind = runOfCamera(f->next, f->next->camera, false, 2 * window);
    int32_t half = std::min(window, std::min(before, behind) / 2);
    // The curve's legs are never shorter than a Bezier leg; a narrower corner
    // stays as it is.
    if (half < kMinBezierLegFrames) return;
    TransitionFrame* start = stepFrames(f, half, true);
    TransitionFrame* end = stepFrames(f, half, false);
    if (!start || !end) return;

    first = *f->camera;
    middle = *f->next->camera;
    last = *f->next->camera;
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
    writePose(first, start->pose);
    writePose(middle, f->pose);
    writePose(last, end->pose);

    TransitionFrame* curve = buildBezierTransition(&first, &last);
    if (!curve) return;
    TransitionFrame* target = start;
    for (TransitionFrame* c = curve; c && target; c = c->next, target = target->next) target->pose = c->pose;
    freeTransitionList(curve);
}

}  // namespace

TransitionFrame* smoothChainJoins(TransitionFrame* head) {
    int32_t window = settings().SMOOTH_WINDOW / 2;
    for (TransitionFrame* f = head; f && f->next; f = f->next)
        if (f->camera != f->next->camera) roundCorner(f, window);
    return head;
}

void stepTransition(Camera*& current) {
    TransitionFrame* h = gState.transitionHead;
    if (!h) return;
    FrameDriver& driver = frameDriver();
    // Delays count the simulator's time rather than the system clock, so a delay of
    // three seconds holds the same number of frames in every run at a given rate.
    double now = simulatorSeconds();
    if (gState.delayEndTime == 0.0 && h->delay > 0.0f) {
        gState.delayEndTime = now + static_cast<double>(h->delay);
    }
    if (gState.delayEndTime != 0.0) {
        if (now < gState.delayEndTime - kTimerSlack) {
            // A delay holds the view where it is: the pose this frame began from,
            // without the inputs that the last frame added to it.
            driver.framePose = driver.shownPose;
            driver.lastFrameCamera = current;
            return;
        }
        // Due: the transition moves on in this very frame, so the hold is exactly
        // the delay long.
        gState.delayEndTime = 0.0;
        h->delay = 0.0f;
    }
    driver.framePose = h->pose;
    gState.transitionHead = h->next;
    releaseFrame(h);
    TransitionFrame* next = gState.transitionHead;
    if (!next) return;
    next->previous = nullptr;
    if (gChain.scan) {
        --gChain.finalFrames;
        finishFrames(gChain, gState.transitionHead, cornerReach(gChain) + 1);
    }
    // Along a chain the selection moves with the legs, without a camera change.
    if (next->camera != current) {
        current = next->camera;
        driver.lastFrameCamera = current;
        selectCameraRecord(current);
    }
}

bool transitionRunning() { return gState.transitionHead != nullptr; }

void freeTransition() {
    freeTransitionList(gState.transitionHead);
    gState.transitionHead = nullptr;
    gChain = ChainBuilder{};
    gState.delayEndTime = 0.0;
}

void stopCameraMotion() {
    freeTransition();
    stopMovement();
}

void startReturnTransition() {
    if (transitionRunning()) return;
    startTransition(nullptr, nullptr, currentCamera());
}

void stopTransitionWhereItIs() {
    if (!transitionRunning()) return;
    // Where a transition is stopped, the camera stays where the view stands; going on
    // from the camera's own values threw the view to the destination in one frame.
    Camera* camera = currentCamera();
    const CameraPose& shown = frameDriver().shownPose;
    camera->x = shown.x;
    camera->y = shown.y;
    camera->z = shown.z;
    camera->heading = shown.heading;
    camera->pitch = shown.pitch;
    camera->roll = shown.roll;
    if (camera->enableFov) camera->fov = shown.fov;
    if (camera->external) camera->currentZoom = shown.zoom;
    if (camera->freeCamera) localToWorld(camera);
    freeTransition();
}

float delaySecondsLeft() {
    if (gState.delayEndTime == 0.0) return 0.0f;
    return static_cast<float>(gState.delayEndTime - simulatorSeconds());
}

bool mayAutoAdvance() {
    // While the user edits in the Control Panel, chains wait unless the panel allows them.
    return !controlPanelOpen() || controlPanelAllowsAutoAdvance();
}
