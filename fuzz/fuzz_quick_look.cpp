// Any bytes as an aircraft's preferences file: the Quick Look reader must survive them
// and keep only the four view types it takes, each a terminated word.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "data/quick_look.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    int count = parseQuickLookViews(reinterpret_cast<const char*>(data), size);
    int typed = 0;
    for (int i = 0; i < kQuickLookViews; ++i) {
        const char* type = quickLookTable()[i].type;
        if (!std::memchr(type, 0, sizeof quickLookTable()[i].type)) std::abort();
        if (!*type) continue;
        ++typed;
        if (std::strcmp(type, "v_3dc") && std::strcmp(type, "v_cha") && std::strcmp(type, "v_rid") &&
            std::strcmp(type, "v_cir"))
            std::abort();
    }
    if (typed != count) std::abort();
    return 0;
}
