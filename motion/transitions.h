// Transitions between cameras: the list of poses, one for each frame to come (smooth,
// linear and Bezier, with delays, auto-advance chains and rounded joins), built at a
// camera change and, for a chain, a few legs ahead as it plays; and the frame-by-frame
// stepping through it.
// Owns the transition state record and the frame storage.
#pragma once

#include <cstdint>

#include "data/camera_set.h"

struct TransitionFrame {
    CameraPose pose;
    float delay;  // seconds to wait before this frame; 0 for none
    Camera* camera;  // current when this frame is reached
    TransitionFrame* next;
    TransitionFrame* previous;
};

struct TransitionState {
    TransitionFrame* transitionHead = nullptr;
    double delayEndTime = 0;  // simulator seconds; 0 when no delay runs
};

// Chains stop at this many legs; a ring of auto-advancing cameras goes round until then.
constexpr int32_t kMaxChainDepth = 2500;
// A Bezier curve takes at most this many cameras as control points.
constexpr int32_t kMaxBezierPoints = 32;

TransitionState& transitionState();

// The whole list of a camera change, chain and rounded corners included. `from` may be
// null (then the head pose is the start); never returns null.
TransitionFrame* buildTransition(Camera* from, Camera* to);
// The same from a given start pose (when not null): where the view stands when a
// camera change interrupts a transition.
TransitionFrame* buildTransitionFrom(const CameraPose* start, Camera* from, Camera* to);
// Starts the running transition of a camera change, in place of any running one. Its
// frames are built a few legs ahead of the view as it plays (stepTransition), so the
// frame of the change stays short and the frames held few however long the chain.
void startTransition(const CameraPose* start, Camera* from, Camera* to);
// Null when the chain has fewer than three cameras or auto advance isn't allowed.
TransitionFrame* buildBezierTransition(Camera* from, Camera* to);
// Rounds the corners of a chain where both sides are long enough; returns head.
TransitionFrame* smoothChainJoins(TransitionFrame* head);
// Fills the frame driver's pose from the next frame; may move the selection along a
// chain, which changes `current`.
void stepTransition(Camera*& current);

bool transitionRunning();
// Frees a running list and clears the delay timer.
void freeTransition();
void freeTransitionList(TransitionFrame* head);
int32_t transitionLength(const TransitionFrame* head);
void stopCameraMotion();
// Stops a running transition where the view stands: the current camera takes the
// pose on screen, so that what follows moves on from there.
void stopTransitionWhereItIs();
void startReturnTransition();
float delaySecondsLeft();
bool mayAutoAdvance();

// b - a the short way round; exactly 180 keeps its sign.
float signedDifference(float a, float b);

// Frames come from a pool: the memory of consumed frames is kept for the next
// transition rather than returned to the heap.
TransitionFrame* allocateFrame();
void releaseFrame(TransitionFrame* frame);
// Frames held by lists.
int64_t framesAllocated();
// Frames the pool holds, in use or free.
int64_t framePoolCapacity();
// Gives the pool's memory back when no list holds a frame (plug-in stop).
void releaseFramePool();
