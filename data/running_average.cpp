#include "data/running_average.h"

#include <cstring>

void clear(RunningAverage& filter) { std::memset(&filter, 0, sizeof filter); }

void prime(RunningAverage& filter, int32_t n, float x) {
    clear(filter);
    for (int32_t i = 0; i < n && i < RunningAverage::kCapacity; ++i) push(filter, x);
}

void push(RunningAverage& filter, float x) {
    // A full ring drops its oldest value rather than overwrite it unseen, so the sum
    // always matches the values held.
    if (filter.count >= RunningAverage::kCapacity) pop(filter);
    filter.sum += x;
    filter.values[filter.head] = x;
    filter.head = (filter.head + 1) % RunningAverage::kCapacity;
    ++filter.count;
}

void pop(RunningAverage& filter) {
    if (filter.count <= 0) return;
    filter.sum -= filter.values[filter.tail];
    filter.tail = (filter.tail + 1) % RunningAverage::kCapacity;
    --filter.count;
}

float average(RunningAverage& filter, int32_t n, float x) {
    if (n < 1) return x;
    // The window has to fit the ring with one slot to spare for the pushed value.
    if (n > RunningAverage::kCapacity - 1) n = RunningAverage::kCapacity - 1;
    push(filter, x);
    float divisor = static_cast<float>(n);
    if (filter.count == n + 1) {
        pop(filter);
        divisor = static_cast<float>(filter.count);
    } else if (filter.count > n + 1) {
        // Drop about half of the excess per call, so a smaller window takes over
        // over a few frames rather than at once. The ring then settles one or two
        // values above the window while the divisor stays n, as the filter always did.
        pop(filter);
        int32_t pops = 1;
        while (pops < filter.count - n - 1) {
            pop(filter);
            ++pops;
        }
    }
    return filter.sum / divisor;
}

float lastValue(const RunningAverage& filter) {
    if (filter.count <= 0) return 0.0f;
    int32_t newest = (filter.head + RunningAverage::kCapacity - 1) % RunningAverage::kCapacity;
    return filter.values[newest];
}
