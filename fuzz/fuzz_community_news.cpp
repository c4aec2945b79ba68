// Any bytes as the news file "Versions.txt", fed in pieces (the first byte sets the
// piece size): only non-empty lines without line ends, each and their number bounded.
#include <cstdint>
#include <cstdlib>

#include "community/server_text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const size_t piece = 1 + data[0] % 64;
    NewsText news;
    for (size_t at = 1; at < size; at += piece)
        if (!feedNews(news, reinterpret_cast<const char*>(data) + at, std::min(piece, size - at))) break;
    finishNews(news);
    if (news.lines.size() > NewsText::kMaxNewsLines) std::abort();
    for (const std::string& line : news.lines)
        if (line.empty() || line.size() > 1999 || line.find('\n') != std::string::npos) std::abort();
    return 0;
}
