// Plain-text plumbing shared by every reader and writer of user files: numbers parsed
// and printed without the process locale (X-Plane and other plug-ins change it), the
// comma splitter of camera and target files, bounded line reading that survives any
// bytes, and the temp-file-and-rename replacement that never loses the old file.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

// Like "%d", "%f", "%lf": leading white space and a '+' are skipped and the longest
// number at the front is taken. False (and *out untouched) when nothing parses, the
// value is out of range, or it is not finite.
bool parseInt(const char* text, int32_t* out);
bool parseFloat(const char* text, float* out);
bool parseDouble(const char* text, double* out);

// The same for a field of a file, telling how much of it was a number: `whole` (nothing
// but white space around it), `partial` (the front was taken, as "%d" and "%f" take it,
// and *out set), `bad` (nothing parsed, *out untouched) or `empty`.
enum class NumberField { empty, whole, partial, bad };
NumberField readIntField(const char* text, int32_t* out);
NumberField readFloatField(const char* text, float* out);
NumberField readDoubleField(const char* text, double* out);

// Fixed notation with `decimals` places, C locale, always terminated; returns the
// length. A value that is not finite is written as 0.
int formatFixed(char* buffer, int capacity, double value, int decimals);
int formatInt(char* buffer, int capacity, int64_t value);

// Splits `line` in place on commas; a run of commas is one separator and no token is
// empty. Returns the number of tokens, at most `capacity` (the rest are dropped).
int splitCommaLine(char* line, char** tokens, int capacity);

// Splits `line` in place as spreadsheet programs export it, when a field starts with a
// double quote: every separator ends a field (so empty fields count), a quoted field
// may hold separators, and a doubled quote inside it stands for one. A line without
// such a field is split as splitCommaLine does, on `separator` (',' or ';').
int splitDelimitedLine(char* line, char** tokens, int capacity, char separator);

// The separator of a file from its first line: ';' when the line holds semicolons and
// no comma (a spreadsheet's export where the decimal mark is a comma), else ','.
char detectSeparator(const char* firstLine);

// Whether `text` is one number (an integer when asked) with nothing but white space
// around it: a field that "%d" or "%f" would read only in part is not.
bool isWholeNumber(const char* text, bool integer);

// Control bytes other than tab, line ends and NUL (which TextLines counts): bytes no
// camera or target file holds, and that a write would not give back.
int countControlBytes(const char* text, size_t size);

// Moves `p` on eight bytes at a time while none of them is below '!' (every blank, line
// end and NUL is), stopping at the first word that holds one or fewer than eight bytes
// before `end`; the caller finishes byte by byte. The fast part of the word scanners.
inline const char* skipWordBytes(const char* p, const char* end) {
    constexpr uint64_t kOnes = 0x0101010101010101u;
    while (end - p >= 8) {
        uint64_t chunk;
        std::memcpy(&chunk, p, sizeof chunk);
        if (((chunk - kOnes * '!') & ~chunk & kOnes * 0x80) != 0) break;
        p += 8;
    }
    return p;
}

// Lines of a text in memory, read as readBoundedLine reads a file, and more: a leading
// UTF-8 byte order mark is skipped, a lone carriage return ends a line too (old
// spreadsheet exports), and what had to be dropped is counted.
struct TextLines {
    const char* data;
    size_t size;
    size_t at = 0;
    int droppedBytes = 0;  // NUL bytes
    int cutLines = 0;      // lines longer than the capacity, cut

    TextLines(const char* text, size_t length);
    // False at the end of the text.
    bool next(char* line, int capacity);
};

// Trims white space at both ends, in place; returns `text`.
char* trimText(char* text);

// Reads one line into `line` (capacity bytes, always terminated). The newline and a
// carriage return before it are dropped, NUL bytes are skipped, and the part of a line
// that does not fit is read and thrown away. False at the end of the file when nothing
// was read.
bool readBoundedLine(std::FILE* file, char* line, int capacity);

// Replaces the file at `path` with `content` without ever losing the old one: written
// to a temporary file in the same folder, flushed to disk, then renamed over it. A
// symbolic link stays a link (its final target is replaced), the file keeps its mode
// (and owner, where allowed), and a hard-linked file is rewritten in place with its old
// bytes kept aside until the new ones are on disk. A file the user may not write, or
// made read-only, is left untouched. When any step fails the old file is left as it
// was and false is returned, with the reason in `why` when given.
bool replaceFileAtomically(const char* path, const std::string& content, std::string* why = nullptr);

// The file a write of `path` lands in: symbolic links followed to their final target
// (which need not exist yet). `path` itself when it is no link.
std::string resolveLinks(const std::string& path);

// The whole file, at most `limit` bytes; false when it can't be opened or read.
// `truncated` tells whether the file held more.
bool readWholeFile(const char* path, std::string& out, size_t limit, bool* truncated = nullptr);

// Whether `path` can be opened for reading.
bool fileReadable(const char* path);
// Whether nothing stands at `path` (a dangling link counts as nothing): only then may a
// reader that could not open it start a new file there.
bool fileMissing(const char* path);

// The present local time, by default as "%Y-%m-%d %H:%M:%S": the stamp of new files
// and shares.
std::string localTimeText(const char* format = "%Y-%m-%d %H:%M:%S");
