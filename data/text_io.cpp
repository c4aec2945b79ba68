#include "data/text_io.h"

#include <fcntl.h>
#include <unistd.h>

#include <sys/stat.h>

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace {

const char* skipToNumber(const char* text) {
    while (*text == ' ' || *text == '\t' || *text == '\r' || *text == '\n' || *text == '\f' || *text == '\v') ++text;
    if (*text == '+' && text[1] != '-' && text[1] != '+') ++text;
    return text;
}

template <typename T>
bool parseReal(const char* text, T* out) {
    if (!text) return false;
    const char* start = skipToNumber(text);
    const char* end = start + std::strlen(start);
    T value{};
    auto result = std::from_chars(start, end, value, std::chars_format::general);
    if (result.ec != std::errc() || !std::isfinite(value)) return false;
    *out = value;
    return true;
}

}  // namespace

bool parseInt(const char* text, int32_t* out) {
    if (!text) return false;
    const char* start = skipToNumber(text);
    const char* end = start + std::strlen(start);
    int32_t value = 0;
    auto result = std::from_chars(start, end, value);
    if (result.ec != std::errc()) return false;
    *out = value;
    return true;
}

bool parseFloat(const char* text, float* out) { return parseReal(text, out); }
bool parseDouble(const char* text, double* out) { return parseReal(text, out); }

int formatFixed(char* buffer, int capacity, double value, int decimals) {
    if (capacity <= 0) return 0;
    if (!std::isfinite(value)) value = 0;
    char scratch[400];
    auto result = std::to_chars(scratch, scratch + sizeof scratch, value, std::chars_format::fixed, decimals);
    int length = result.ec == std::errc() ? int(result.ptr - scratch) : 0;
    if (length == 0) scratch[length++] = '0';
    if (length >= capacity) length = capacity - 1;
    std::memcpy(buffer, scratch, size_t(length));
    buffer[length] = 0;
    return length;
}

int formatInt(char* buffer, int capacity, int64_t value) {
    if (capacity <= 0) return 0;
    char scratch[32];
    auto result = std::to_chars(scratch, scratch + sizeof scratch, value);
    int length = int(result.ptr - scratch);
    if (length >= capacity) length = capacity - 1;
    std::memcpy(buffer, scratch, size_t(length));
    buffer[length] = 0;
    return length;
}

int splitCommaLine(char* line, char** tokens, int capacity) {
    int count = 0;
    char* p = line;
    while (*p) {
        while (*p == ',') ++p;
        if (!*p) break;
        char* start = p;
        while (*p && *p != ',') ++p;
        if (*p) *p++ = 0;
        if (count < capacity) tokens[count++] = start;
    }
    return count;
}

char* trimText(char* text) {
    size_t length = std::strlen(text);
    while (length > 0 && std::strchr(" \t\r\n\f\v", text[length - 1])) --length;
    text[length] = 0;
    size_t start = 0;
    while (text[start] && std::strchr(" \t\r\n\f\v", text[start])) ++start;
    if (start) std::memmove(text, text + start, length - start + 1);
    return text;
}

bool readBoundedLine(std::FILE* file, char* line, int capacity) {
    int length = 0;
    bool any = false;
    int c;
    while ((c = getc_unlocked(file)) != EOF) {
        any = true;
        if (c == '\n') break;
        if (c == 0) continue;
        if (length < capacity - 1) line[length++] = char(c);
    }
    if (capacity > 0) {
        if (length > 0 && line[length - 1] == '\r') --length;
        line[length] = 0;
    }
    return any;
}

bool replaceFileAtomically(const char* path, const std::string& content) {
    std::string temporary = std::string(path) + ".tmpXXXXXX";
    int fd = mkstemp(&temporary[0]);
    if (fd < 0) return false;
    bool ok = true;
    const char* data = content.data();
    size_t left = content.size();
    while (ok && left > 0) {
        ssize_t written = ::write(fd, data, left);
        if (written < 0) {
            if (errno == EINTR) continue;
            ok = false;
        } else {
            data += written;
            left -= size_t(written);
        }
    }
    // mkstemp gives 0600; a user file should keep the usual permissions.
    if (ok) {
        mode_t mask = umask(0);
        umask(mask);
        fchmod(fd, 0666 & ~mask);
    }
    if (ok && fsync(fd) != 0) ok = false;
    if (::close(fd) != 0) ok = false;
    if (ok && std::rename(temporary.c_str(), path) != 0) ok = false;
    if (!ok) ::unlink(temporary.c_str());
    return ok;
}

bool fileReadable(const char* path) {
    std::FILE* file = std::fopen(path, "r");
    if (!file) return false;
    std::fclose(file);
    return true;
}

std::string localTimeText() {
    std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char text[64];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
    return text;
}
