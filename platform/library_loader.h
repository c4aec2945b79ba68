// Run-time loading of outside libraries (the head tracker's client library): open by
// path, look up an entry point, and the platform's name and separator for that client.
// A thin layer over LoadLibrary/GetProcAddress on Windows and dlopen/dlsym elsewhere.
#pragma once

// Null when the library can't be loaded; the reason is the platform's and not reported.
void* loadLibrary(const char* path);
// Null when the library doesn't export `name`.
void* findLibrarySymbol(void* library, const char* name);

// File name of the TrackIR client library on this platform.
const char* trackIrLibraryName();
// Separator put between the client's folder and its file name.
char librarySeparator();
