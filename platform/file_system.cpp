#include "platform/file_system.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#ifdef _WIN32
#include <direct.h>
#include <io.h>
#include <windows.h>

#include <random>

int makeTemporaryFile(std::string& path) {
    if (path.size() < 6) return -1;
    static std::minstd_rand random(static_cast<unsigned>(GetTickCount()) ^ static_cast<unsigned>(GetCurrentProcessId()));
    const char letters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    for (int attempt = 0; attempt < 100; ++attempt) {
        for (size_t i = path.size() - 6; i < path.size(); ++i) path[i] = letters[random() % 36];
        int fd = _open(path.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY, _S_IREAD | _S_IWRITE);
        if (fd >= 0 || errno != EEXIST) return fd;
    }
    return -1;
}

int openForRewrite(const char* path) { return _open(path, _O_WRONLY | _O_TRUNC | _O_BINARY); }

bool writeAllBytes(int fd, const std::string& bytes) {
    size_t done = 0;
    while (done < bytes.size()) {
        const size_t chunk = bytes.size() - done > (1u << 30) ? (1u << 30) : bytes.size() - done;
        int n = _write(fd, bytes.data() + done, static_cast<unsigned>(chunk));
        if (n <= 0) return false;
        done += static_cast<size_t>(n);
    }
    return true;
}

bool syncFile(int fd) { return _commit(fd) == 0; }
bool closeFile(int fd) { return _close(fd) == 0; }
bool removeFile(const char* path) { return _unlink(path) == 0; }

bool renameReplacing(const char* from, const char* to) {
    if (MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) return true;
    errno = EACCES;
    return false;
}

bool readSymbolicLink(const std::string&, std::string&) { return false; }

bool writeAllowed(const char* path) { return _access(path, 2) == 0; }

bool pathPresent(const char* path) { return GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES; }

void copyOwnerAndMode(int, const struct stat&) {}
void giveNewFileMode(int) {}

bool makeFolder(const char* path) {
    if (_mkdir(path) == 0) return true;
    const DWORD attributes = GetFileAttributesA(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

std::tm localTimeOf(std::time_t when) {
    std::tm local{};
    localtime_s(&local, &when);
    return local;
}

bool isPathSeparator(char c) { return c == '/' || c == '\\'; }

namespace {
EntryKind kindOfAttributes(DWORD attributes) {
    if (attributes & FILE_ATTRIBUTE_REPARSE_POINT) return EntryKind::other;
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) ? EntryKind::folder : EntryKind::file;
}
}  // namespace

EntryKind entryKind(const char* path) {
    const DWORD attributes = GetFileAttributesA(path);
    return attributes == INVALID_FILE_ATTRIBUTES ? EntryKind::missing : kindOfAttributes(attributes);
}

bool listFolder(const char* folder, const std::function<bool(const char*, EntryKind)>& visit) {
    std::string pattern = folder;
    if (!pattern.empty() && !isPathSeparator(pattern.back())) pattern += '\\';
    pattern += '*';
    WIN32_FIND_DATAA entry;
    HANDLE search = FindFirstFileA(pattern.c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) return false;
    do {
        if (!std::strcmp(entry.cFileName, ".") || !std::strcmp(entry.cFileName, "..")) continue;
        if (!visit(entry.cFileName, kindOfAttributes(entry.dwFileAttributes))) break;
    } while (FindNextFileA(search, &entry));
    FindClose(search);
    return true;
}

bool modificationTime(const char* path, int64_t& nanoseconds) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExA(path, GetFileExInfoStandard, &data)) return false;
    // 100-nanosecond ticks since 1601.
    const uint64_t ticks = (uint64_t(data.ftLastWriteTime.dwHighDateTime) << 32) | data.ftLastWriteTime.dwLowDateTime;
    nanoseconds = (int64_t(ticks) - 116444736000000000LL) * 100;
    return true;
}

#else
#include <dirent.h>
#include <unistd.h>

int makeTemporaryFile(std::string& path) { return mkstemp(&path[0]); }

int openForRewrite(const char* path) { return ::open(path, O_WRONLY | O_TRUNC); }

bool writeAllBytes(int fd, const std::string& bytes) {
    size_t done = 0;
    while (done < bytes.size()) {
        ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += size_t(n);
    }
    return true;
}

bool syncFile(int fd) { return fsync(fd) == 0; }
bool closeFile(int fd) { return ::close(fd) == 0; }
bool removeFile(const char* path) { return ::unlink(path) == 0; }
bool renameReplacing(const char* from, const char* to) { return std::rename(from, to) == 0; }

bool readSymbolicLink(const std::string& path, std::string& target) {
    struct stat info;
    if (lstat(path.c_str(), &info) != 0 || !S_ISLNK(info.st_mode)) return false;
    target.assign(size_t(info.st_size > 0 ? info.st_size : 4096) + 1, '\0');
    ssize_t length = readlink(path.c_str(), &target[0], target.size());
    if (length < 0 || size_t(length) >= target.size()) return false;
    target.resize(size_t(length));
    return true;
}

bool writeAllowed(const char* path) { return ::access(path, W_OK) == 0; }

bool pathPresent(const char* path) {
    struct stat info;
    return lstat(path, &info) == 0;
}

void copyOwnerAndMode(int fd, const struct stat& from) {
    // Best effort: the owner can only be given back where we may do so.
    if (fchown(fd, from.st_uid, from.st_gid) != 0) {
    }
    fchmod(fd, from.st_mode & 07777);
}

void giveNewFileMode(int fd) {
    // mkstemp gives 0600; a new user file gets the usual permissions.
    mode_t mask = umask(0);
    umask(mask);
    fchmod(fd, 0666 & ~mask);
}

bool makeFolder(const char* path) {
    if (mkdir(path, 0755) == 0) return true;
    struct stat info;
    return ::stat(path, &info) == 0 && S_ISDIR(info.st_mode);
}

std::tm localTimeOf(std::time_t when) {
    std::tm local{};
    localtime_r(&when, &local);
    return local;
}

bool isPathSeparator(char c) { return c == '/'; }

namespace {
EntryKind kindOfMode(mode_t mode) {
    if (S_ISDIR(mode)) return EntryKind::folder;
    return S_ISREG(mode) ? EntryKind::file : EntryKind::other;
}
}  // namespace

EntryKind entryKind(const char* path) {
    struct stat info;
    return lstat(path, &info) != 0 ? EntryKind::missing : kindOfMode(info.st_mode);
}

bool listFolder(const char* path, const std::function<bool(const char*, EntryKind)>& visit) {
    DIR* folder = opendir(path);
    if (!folder) return false;
    while (const dirent* entry = readdir(folder)) {
        const char* name = entry->d_name;
        if (!std::strcmp(name, ".") || !std::strcmp(name, "..")) continue;
        EntryKind kind = EntryKind::other;
        switch (entry->d_type) {
            case DT_DIR: kind = EntryKind::folder; break;
            case DT_REG: kind = EntryKind::file; break;
            case DT_UNKNOWN: {
                // The listing doesn't tell on some file systems: ask, so a folder there
                // still reads as a folder.
                struct stat status;
                kind = fstatat(dirfd(folder), name, &status, AT_SYMLINK_NOFOLLOW) != 0 ? EntryKind::file
                                                                                      : kindOfMode(status.st_mode);
                break;
            }
            default: break;
        }
        if (!visit(name, kind)) break;
    }
    closedir(folder);
    return true;
}

bool modificationTime(const char* path, int64_t& nanoseconds) {
    struct stat info {};
    if (::stat(path, &info) != 0) return false;
    nanoseconds = static_cast<int64_t>(info.st_mtim.tv_sec) * 1000000000 + info.st_mtim.tv_nsec;
    return true;
}
#endif

bool fileSize(const char* path, uint64_t& bytes) {
#ifdef _WIN32
    struct _stat64 info;
    if (_stat64(path, &info) != 0) return false;
#else
    struct stat info;
    if (::stat(path, &info) != 0) return false;
#endif
    bytes = static_cast<uint64_t>(info.st_size);
    return true;
}

size_t lastPathSeparator(const std::string& path) {
    for (size_t i = path.size(); i > 0; --i)
        if (isPathSeparator(path[i - 1])) return i - 1;
    return std::string::npos;
}

bool isAbsolutePath(const std::string& path) {
    if (!path.empty() && isPathSeparator(path[0])) return true;
#ifdef _WIN32
    const bool letter = path.size() >= 3 && ((path[0] >= 'A' && path[0] <= 'Z') || (path[0] >= 'a' && path[0] <= 'z'));
    if (letter && path[1] == ':' && isPathSeparator(path[2])) return true;
#endif
    return false;
}
