#include "community/community_names.h"

#include <cstdio>

uint32_t textHash(const char* text) {
    uint32_t sum = 0;
    for (size_t i = 0; text && text[i]; ++i) {
        // The byte counts as signed: one above 127 lowers the sum.
        int32_t value = static_cast<int8_t>(text[i]);
        if (i & 1) value = static_cast<int32_t>(static_cast<uint32_t>(value) << 8);
        sum += static_cast<uint32_t>(value);
    }
    return sum;
}

std::string sharedFileName(uint32_t uploadTime, const char* localPath, const char* version,
                           const char* cameraFileName) {
    char numbers[64];
    std::snprintf(numbers, sizeof numbers, "%lu%lu%lu_", static_cast<unsigned long>(uploadTime),
                  static_cast<unsigned long>(textHash(localPath)), static_cast<unsigned long>(textHash(version)));
    return std::string(numbers) + (cameraFileName ? cameraFileName : "");
}

bool isSafeCommunityName(const std::string& name) {
    if (name.empty() || name.size() > 255 || name[0] == '.') return false;
    if (name.find("..") != std::string::npos) return false;
    for (unsigned char c : name)
        if (c < 0x20 || c == 0x7F || c == '/' || c == '\\' || c == ':') return false;
    return true;
}
