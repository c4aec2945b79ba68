// RunningAverage: the moving-average filter behind every smoothing of the system
// (frame rate, head tracking, axes, mouse, movement): a ring of 500 floats with a
// running sum. Plain data, so it can live in static records.
#pragma once

#include <cstdint>

struct RunningAverage {
    static constexpr int32_t kCapacity = 500;
    float values[kCapacity];
    float sum;
    int32_t head;
    int32_t tail;
    int32_t count;
};

void clear(RunningAverage& filter);
void prime(RunningAverage& filter, int32_t n, float x);
void push(RunningAverage& filter, float x);
void pop(RunningAverage& filter);
// The average over a window of n values with x pushed first. While the ring fills the
// sum is still divided by n, so the output ramps up from zero. n below 1 returns x.
float average(RunningAverage& filter, int32_t n, float x);
// The newest value in the ring (0 when empty).
float lastValue(const RunningAverage& filter);
