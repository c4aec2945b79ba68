// File-system calls where Windows and POSIX differ: temporary files, flushing, a rename
// that replaces its target, symbolic links, folders, local time, and what an absolute
// path looks like. The safe writer of data/text_io is built on these.
#pragma once

#include <cstdint>
#include <ctime>
#include <functional>
#include <string>

struct stat;

// Creates a new file from `path`, whose last six characters "XXXXXX" are replaced, and
// opens it for binary writing: the descriptor, or -1.
int makeTemporaryFile(std::string& path);
// Opens an existing file for binary writing, emptying it: the descriptor, or -1.
int openForRewrite(const char* path);
// Writes every byte; false on any failure.
bool writeAllBytes(int fd, const std::string& bytes);
// Flushes a descriptor's bytes to the disk.
bool syncFile(int fd);
bool closeFile(int fd);
bool removeFile(const char* path);
// Renames over an existing file (Windows' rename refuses one; its replace is one step).
bool renameReplacing(const char* from, const char* to);

// The target of a symbolic link as stored; false when `path` is no link (never one on
// Windows, whose links the writer treats as files).
bool readSymbolicLink(const std::string& path, std::string& target);
// Whether this process may write the file (the system's own answer).
bool writeAllowed(const char* path);
// Whether anything (a dangling link too) stands at `path`.
bool pathPresent(const char* path);
// Gives a file just written the owner and mode of the file it replaces, or a new
// file the usual mode; nothing on Windows, where a new file is writable as it is.
void copyOwnerAndMode(int fd, const struct stat& from);
void giveNewFileMode(int fd);
// Makes one folder (the parent must exist); true when it is there afterwards.
bool makeFolder(const char* path);
// Local time of `when`.
std::tm localTimeOf(std::time_t when);
// "/x", and on Windows also "C:\x", "C:/x" and "\\server\x".
bool isAbsolutePath(const std::string& path);
// Whether `c` separates folders in a path: '/', and '\' as well on Windows (X-Plane
// reports native paths there, "C:\X-Plane 12\Aircraft\...").
bool isPathSeparator(char c);
// The place of the last separator in `path`, or npos.
size_t lastPathSeparator(const std::string& path);

// What stands at a path, links not followed: a link is `other`.
enum class EntryKind { missing, folder, file, other };
EntryKind entryKind(const char* path);
// Calls `visit` with every entry of a folder but "." and "..", until it returns false;
// false when the folder can't be read.
bool listFolder(const char* folder, const std::function<bool(const char* name, EntryKind kind)>& visit);
// The file's modification time in nanoseconds since 1970; false when it can't be read.
bool modificationTime(const char* path, int64_t& nanoseconds);
// The file's size in bytes; false when it can't be read.
bool fileSize(const char* path, uint64_t& bytes);
