// Any bytes as the community server's folder listing, fed in pieces the way the data
// connection yields them (the first byte sets the piece size): every name taken is safe
// to become a file in the community folder, and the bounds hold.
#include <cstdint>
#include <cstdlib>

#include "community/community_names.h"
#include "community/server_text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const size_t piece = 1 + data[0] % 64;
    ServerListing listing;
    for (size_t at = 1; at < size; at += piece)
        if (!feedListing(listing, reinterpret_cast<const char*>(data) + at, std::min(piece, size - at))) break;
    finishListing(listing);
    if (listing.files.size() > ServerListing::kMaxNames || listing.lines.partial.size() > 1999) std::abort();
    if (listing.serverCount < static_cast<int>(listing.files.size())) std::abort();
    for (const auto& [key, slot] : listing.files) {
        if (!isSafeCommunityName(slot.entry.name) || makeSyncEntry(slot.entry.name).key != key) std::abort();
        if (slot.entry.name.find('/') != std::string::npos) std::abort();
    }
    return 0;
}
