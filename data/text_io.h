// Plain-text plumbing shared by every reader and writer of user files: numbers parsed
// and printed without the process locale (X-Plane and other plug-ins change it), the
// comma splitter of camera and target files, bounded line reading that survives any
// bytes, and the temp-file-and-rename replacement that never loses the old file.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

// Like "%d", "%f", "%lf": leading white space and a '+' are skipped and the longest
// number at the front is taken. False (and *out untouched) when nothing parses, the
// value is out of range, or it is not finite.
bool parseInt(const char* text, int32_t* out);
bool parseFloat(const char* text, float* out);
bool parseDouble(const char* text, double* out);

// Fixed notation with `decimals` places, C locale, always terminated; returns the
// length. A value that is not finite is written as 0.
int formatFixed(char* buffer, int capacity, double value, int decimals);
int formatInt(char* buffer, int capacity, int64_t value);

// Splits `line` in place on commas; a run of commas is one separator and no token is
// empty. Returns the number of tokens, at most `capacity` (the rest are dropped).
int splitCommaLine(char* line, char** tokens, int capacity);

// Trims white space at both ends, in place; returns `text`.
char* trimText(char* text);

// Reads one line into `line` (capacity bytes, always terminated). The newline and a
// carriage return before it are dropped, NUL bytes are skipped, and the part of a line
// that does not fit is read and thrown away. False at the end of the file when nothing
// was read.
bool readBoundedLine(std::FILE* file, char* line, int capacity);

// Replaces the file at `path` with `content`: written to a temporary file in the same
// folder, flushed to disk, then renamed over the old one. When any step fails the old
// file is left as it was, the temporary file is removed, and false is returned.
bool replaceFileAtomically(const char* path, const std::string& content);

// Whether `path` can be opened for reading.
bool fileReadable(const char* path);

// The present local time as "%Y-%m-%d %H:%M:%S": the stamp of new files and shares.
std::string localTimeText();
