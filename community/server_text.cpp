#include "community/server_text.h"

#include <cctype>
#include <cstring>

#include "community/community_names.h"

SyncEntry makeSyncEntry(const std::string& name) {
    SyncEntry entry{name, name};
    for (char& c : entry.key) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return entry;
}

void insertSyncEntry(SyncMap& map, const std::string& name) {
    SyncEntry entry = makeSyncEntry(name);
    std::string key = entry.key;
    map.emplace(std::move(key), SyncSlot{std::move(entry), false});
}

LineSplitter ServerListing::listingSplitter() {
    LineSplitter s;
    // A name may hold 255 bytes; a line holds the folder's path and a little room.
    s.maxLineBytes = 1999;
    s.maxLines = kMaxNames;
    s.maxTotalBytes = kMaxNames * 400;
    return s;
}

void takeListingLine(ServerListing& listing, const std::string& line) {
    const size_t at = line.find(kServerFilePrefix);
    if (at == std::string::npos) return;
    std::string name = line.substr(at + std::strlen(kServerFilePrefix));
    if (!isSafeCommunityName(name)) {
        ++listing.unsafeNames;
        return;
    }
    insertSyncEntry(listing.files, name);
    ++listing.serverCount;
}

bool feedListing(ServerListing& listing, const char* data, size_t size) {
    const bool more = feedLines(listing.lines, data, size, [&](const std::string& line) { takeListingLine(listing, line); });
    if (!more) listing.tooLong = true;
    return more;
}

void finishListing(ServerListing& listing) {
    finishLines(listing.lines, [&](const std::string& line) { takeListingLine(listing, line); });
}

LineSplitter NewsText::newsSplitter() {
    LineSplitter s;
    s.maxLineBytes = 1999;
    s.maxLines = 100000;  // empty lines count here; the kept lines are bounded below
    s.maxTotalBytes = 256 * 1024;
    return s;
}

namespace {
void takeNewsLine(NewsText& news, const std::string& line) {
    if (line.empty() || news.lines.size() >= NewsText::kMaxNewsLines) return;
    news.lines.push_back(line);
}
}  // namespace

bool feedNews(NewsText& news, const char* data, size_t size) {
    return feedLines(news.splitter, data, size, [&](const std::string& line) { takeNewsLine(news, line); });
}

void finishNews(NewsText& news) {
    finishLines(news.splitter, [&](const std::string& line) { takeNewsLine(news, line); });
}
