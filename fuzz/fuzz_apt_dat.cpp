// Any bytes as an apt.dat: the reader must survive them, and what it keeps must stay
// within the record's limits and its texts within their fields.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "airports/apt_dat.h"

namespace {

void check(bool ok) {
    if (!ok) std::abort();
}

bool terminated(const char* text, size_t capacity) { return std::memchr(text, 0, capacity) != nullptr; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const char* text = reinterpret_cast<const char*>(data);
    // The airport wanted: the first line when it could be an ID (so that the fuzzer can
    // name any airport its input holds and reach the found path), else KSYR, the airport
    // of the seeds. One pass an input: the text is most of a run's time.
    char wanted[12] = "KSYR";
    const char* newline = static_cast<const char*>(std::memchr(text, '\n', size));
    if (newline && newline - text >= 2 && size_t(newline - text) < sizeof wanted) {
        std::memcpy(wanted, text, size_t(newline - text));
        wanted[newline - text] = 0;
    }
    // One record for every run: a fresh half megabyte per answer was most of each run's
    // time under the sanitizers (an mmap, and its pages and shadow touched anew).
    static AirportScenery record;
    if (readAptDatText(text, size, wanted, record)) {
        const AirportScenery* found = &record;
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
