// Any bytes as a ".shr" shared-info file: three bounded, terminated fields, always.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "data/aircraft_files.h"
#include "host/host.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    xphost::reset();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    static int runs = 0;
    if (++runs % 5000 == 0) xphost::reset();  // the host's log grows with every short file
    static SharedInfo info;
    std::memset(&info, 0x55, sizeof info);  // no terminator unless the reader writes one
    std::FILE* stream = fmemopen(const_cast<uint8_t*>(data), size, "rb");
    if (!stream) return 0;
    readSharedInfoFrom(stream, "fuzz.shr", info);
    std::fclose(stream);
    if (!info.present) std::abort();
    for (const char* field : {info.date, info.version, info.fileName})
        if (std::strlen(field) >= sizeof info.date || std::strchr(field, '\n')) std::abort();
    return 0;
}
