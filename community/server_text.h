// Readers of what the community server sends as text: the folder listing (one path a
// line) and the news file "Versions.txt". Both take the bytes in pieces as the data
// connection yields them and hold to fixed bounds, so an endless line, a listing of a
// hundred thousand names or a huge file costs a bounded amount of memory and time.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

// Splits pieces of text into lines (without CR or LF). A line longer than
// `maxLineBytes` keeps its first `maxLineBytes` bytes and the rest is skipped up to its
// line feed. After `maxTotalBytes` bytes or `maxLines` lines the reader stops.
struct LineSplitter {
    size_t maxLineBytes = 1999;
    size_t maxLines = 1000;
    size_t maxTotalBytes = 1 << 20;

    std::string partial;
    bool skippingRest = false;
    size_t totalBytes = 0;
    size_t lines = 0;
    int overlongLines = 0;
    bool stopped = false;  // a bound was reached; nothing more is taken
};
// Calls `take(line)` for each whole line; false once the reader has stopped.
template <typename Take>
bool feedLines(LineSplitter& s, const char* data, size_t size, Take&& take);
// The last line when the text doesn't end with a line feed.
template <typename Take>
void finishLines(LineSplitter& s, Take&& take);

// A file named on one side of the comparison: the name as given, and the key it is
// matched by (the name in capitals, so names that differ only in case are one file).
struct SyncEntry {
    std::string name;
    std::string key;
};
struct SyncSlot {
    SyncEntry entry;
    bool matched = false;
};
using SyncMap = std::map<std::string, SyncSlot>;
SyncEntry makeSyncEntry(const std::string& name);
// Inserts unless the key is there already (the first one stays).
void insertSyncEntry(SyncMap& map, const std::string& name);

// The server's folder listing.
struct ServerListing {
    static constexpr size_t kMaxNames = 20000;
    SyncMap files;
    int serverCount = 0;   // lines that named a file, duplicates too
    int unsafeNames = 0;   // named a file that could reach outside the community folder
    bool tooLong = false;  // more lines or bytes than the bounds: not to be trusted
    LineSplitter lines = listingSplitter();
    static LineSplitter listingSplitter();
};
// One line of the listing: skipped unless it holds "Vistarig/CommunityFiles/"; the
// rest of the line is the name.
void takeListingLine(ServerListing& listing, const std::string& line);
// A piece of the listing as read; false once a bound stopped the reading.
bool feedListing(ServerListing& listing, const char* data, size_t size);
void finishListing(ServerListing& listing);

// The news file: each non-empty line, at most `kMaxNewsLines` of up to 1999 bytes.
struct NewsText {
    static constexpr size_t kMaxNewsLines = 200;
    std::vector<std::string> lines;
    LineSplitter splitter = newsSplitter();
    static LineSplitter newsSplitter();
};
bool feedNews(NewsText& news, const char* data, size_t size);
void finishNews(NewsText& news);

// ---------------------------------------------------------------- template bodies
template <typename Take>
bool feedLines(LineSplitter& s, const char* data, size_t size, Take&& take) {
    for (size_t i = 0; i < size && !s.stopped; ++i) {
        if (++s.totalBytes > s.maxTotalBytes) {
            s.stopped = true;
            break;
        }
        const char c = data[i];
        if (c == '\n') {
            if (!s.partial.empty() && s.partial.back() == '\r') s.partial.pop_back();
            take(s.partial);
            s.partial.clear();
            s.skippingRest = false;
            if (++s.lines >= s.maxLines) s.stopped = true;
        } else if (s.skippingRest) {
            continue;
        } else if (s.partial.size() >= s.maxLineBytes) {
            s.skippingRest = true;
            ++s.overlongLines;
        } else {
            s.partial.push_back(c);
        }
    }
    return !s.stopped;
}

template <typename Take>
void finishLines(LineSplitter& s, Take&& take) {
    if (s.stopped || s.partial.empty()) return;
    if (s.partial.back() == '\r') s.partial.pop_back();
    take(s.partial);
    s.partial.clear();
    ++s.lines;
}
