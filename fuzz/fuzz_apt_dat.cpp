// Any bytes as an apt.dat: the reader must survive them, and what it keeps must stay
// within the record's limits and its texts within their fields.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "airports/apt_dat.h"

namespace {

void check(bool ok) {
    if (!ok) std::abort();
}

bool terminated(const char* text, size_t capacity) { return std::memchr(text, 0, capacity) != nullptr; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const char* text = reinterpret_cast<const char*>(data);
    // The ID of the first header, if any, so that the fuzzer reaches the found path.
    char id[12] = "KSYR";
    const char* header = static_cast<const char*>(std::memchr(text, '\n', size));
    if (size > 8 && header) {
        size_t length = size_t(header - text) < sizeof id - 1 ? size_t(header - text) : sizeof id - 1;
        std::memcpy(id, text, length);
        id[length] = 0;
    }
    // One record for every run: a fresh half megabyte per answer was most of each run's
    // time under the sanitizers (an mmap, and its pages and shadow touched anew).
    static AirportScenery record;
    for (const char* wanted : {static_cast<const char*>(id), "KSYR"}) {
        AirportScenery* found = &record;
        if (!readAptDatText(text, size, wanted, record)) continue;
        check(std::strcmp(found->id, wanted) == 0);
        check(found->runwayCount >= 0 && found->runwayCount <= kMaxRunways);
        check(found->startCount >= 0 && found->startCount <= kMaxStartLocations);
        check(found->signCount >= 0 && found->signCount <= kMaxSigns);
        check(found->viewPointCount >= 0 && found->viewPointCount <= kMaxViewPoints);
        check(found->helipadCount >= 0 && found->helipadCount <= kMaxHelipads);
        for (int i = 0; i < found->runwayCount; ++i)
            for (const RunwayEnd& end : found->runways[i].ends) check(terminated(end.name, sizeof end.name));
        for (int i = 0; i < found->signCount; ++i) check(terminated(found->signs[i].text, sizeof found->signs[i].text));
        for (int i = 0; i < found->startCount; ++i) check(terminated(found->starts[i].name, sizeof found->starts[i].name));
    }
    return 0;
}
