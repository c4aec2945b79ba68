// Any bytes as "X-Plane Window Positions.prf": the reader must survive them, and what
// it picks must be a monitor it read with an offset within the half circle.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "panels/window_placement.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    std::FILE* stream = fmemopen(const_cast<uint8_t*>(data), size, "rb");
    if (!stream) return 0;
    PrfChoice choice = parseWindowPositions(stream);
    std::fclose(stream);
    if (choice.found && (choice.monitorIndex < 0 || !(choice.offset >= 0.0f && choice.offset < 180.0f))) {
        std::fprintf(stderr, "picked monitor %d at offset %f\n", choice.monitorIndex, double(choice.offset));
        std::abort();
    }
    return 0;
}
