// What every use of the community file server agrees on: the server's layout, the
// names of shared files, and which names the plug-in accepts from the server.
#pragma once

#include <cstdint>
#include <string>

// Server layout, relative to the account's login folder.
constexpr const char* kServerNewsPath = "Vistarig/Versions.txt";
constexpr const char* kServerFolder = "Vistarig/CommunityFiles";
constexpr const char* kServerFilePrefix = "Vistarig/CommunityFiles/";

// A 32-bit sum with wrap-around: each byte as a signed 8-bit value, shifted left by 8
// at odd positions. "abc" gives 25284.
uint32_t textHash(const char* text);

// "%lu%lu%lu_%s": upload time, hash of the local path, hash of the version, then the
// bare camera file name. Only makes the name new at each upload; never read back.
std::string sharedFileName(uint32_t uploadTime, const char* localPath, const char* version,
                           const char* cameraFileName);

// Whether a name the server listed may become a local file in the community folder.
// A server is outside our control, so anything that could reach outside that folder,
// hide there, or trouble a file system is refused: "/", "\", "..", ":" (drive letters
// and Windows streams), control bytes, a leading ".", empty names and names over 255 bytes.
bool isSafeCommunityName(const std::string& name);
