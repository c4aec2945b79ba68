// Where the TrackIR client library lives. On Windows the vendor's software records its
// folder in the registry (HKEY_CURRENT_USER "Software\NaturalPoint\NATURALPOINT\NPClient
// Location", value "Path"). Linux has no registry and no vendor install, so the same
// folder is read from the first line of the text file "NPClient Location.txt" in the
// plug-in's own folder; no environment variable is consulted.
#pragma once

// Text that stands in the path buffer while no location is known; loading it fails.
constexpr const char* kUnknownLocation = "Error";

// Fills `path` (capacity bytes) with the client's folder and returns true, or leaves
// "Error" in it and returns false. A folder that doesn't fit the buffer counts as
// unknown. `pluginFolder` (with its trailing "/") is only used on Linux.
bool readTrackIrLocation(const char* pluginFolder, char* path, int capacity);

// Name of the Linux location file inside the plug-in's folder.
constexpr const char* kTrackIrLocationFileName = "NPClient Location.txt";
