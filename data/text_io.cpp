#include "data/text_io.h"

#include <sys/stat.h>

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <type_traits>

#include "platform/file_system.h"

#ifdef _WIN32
#define getc_unlocked _getc_nolock
#endif

namespace {

// White space as isspace has it in the C locale, by a look-up: numbers are read by the
// thousand for every file, and the fuzzing build traces each comparison.
struct SpaceBytes {
    bool of[256];
    constexpr SpaceBytes() : of{} {
        for (unsigned char c : {' ', '\t', '\r', '\n', '\f', '\v'}) of[c] = true;
    }
};
constexpr SpaceBytes kSpaceBytes;

// One comparison a character: '0'..'9' are the values 0..9 after the subtraction.
bool isDigit(char c) { return unsigned(c - '0') <= 9; }

const char* skipToNumber(const char* text) {
    while (kSpaceBytes.of[static_cast<unsigned char>(*text)]) ++text;
    if (*text == '+' && text[1] != '-' && text[1] != '+') ++text;
    return text;
}

constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                   1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// A plain decimal ("-12.500000", "3", ".25"), the numbers the plug-in writes and nearly
// every file holds, without from_chars, which took a fifth of a camera file's reading.
// With at most 2^53 as digits and 10^22 as divisor both are exact doubles, so one
// division rounds correctly (Clinger's fast path). A float rounded from that double
// is the correctly rounded float unless the double fell exactly on the midpoint of two
// floats; then, as for exponents, long digit strings, "inf" or "nan", null is returned
// and from_chars decides.
template <typename T>
const char* parsePlainDecimal(const char* p, T& out) {
    bool negative = *p == '-';
    if (negative) ++p;
    constexpr uint64_t kDigitsLimit = (uint64_t(1) << 53) / 10;
    uint64_t digits = 0;
    int fraction = 0;
    bool any = false;
    for (; isDigit(*p); ++p, any = true) {
        if (digits >= kDigitsLimit) return nullptr;
        digits = digits * 10 + uint64_t(*p - '0');
    }
    if (*p == '.') {
        for (++p; isDigit(*p); ++p, any = true, ++fraction) {
            if (digits >= kDigitsLimit || fraction >= 22) return nullptr;
            digits = digits * 10 + uint64_t(*p - '0');
        }
    }
    if (!any || *p == 'e' || *p == 'E') return nullptr;
    double value = double(digits) / kPowersOfTen[fraction];
    if constexpr (std::is_same_v<T, float>) {
        uint64_t bits;
        std::memcpy(&bits, &value, sizeof bits);
        if ((bits & 0x1FFFFFFFu) == 0x10000000u) return nullptr;
        out = negative ? -float(value) : float(value);
    } else {
        out = negative ? -value : value;
    }
    return p;
}

template <typename T>
bool parseReal(const char* text, T* out) {
    if (!text) return false;
    const char* start = skipToNumber(text);
    if (parsePlainDecimal(start, *out)) return true;
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

namespace {

template <typename T>
NumberField readField(const char* text, T* out) {
    const char* start = skipToNumber(text);
    if (!*start) return NumberField::empty;
    T value{};
    const char* rest = nullptr;
    if constexpr (std::is_floating_point_v<T>) rest = parsePlainDecimal(start, value);
    if (!rest) {
        const char* end = start + std::strlen(start);
        std::from_chars_result result;
        if constexpr (std::is_floating_point_v<T>)
            result = std::from_chars(start, end, value, std::chars_format::general);
        else
            result = std::from_chars(start, end, value);
        if (result.ec != std::errc()) return NumberField::bad;
        if constexpr (std::is_floating_point_v<T>)
            if (!std::isfinite(value)) return NumberField::bad;
        rest = result.ptr;
    }
    *out = value;
    while (*rest == ' ' || *rest == '\t' || *rest == '\r' || *rest == '\n') ++rest;
    return *rest ? NumberField::partial : NumberField::whole;
}

}  // namespace

NumberField readIntField(const char* text, int32_t* out) { return readField(text, out); }
NumberField readFloatField(const char* text, float* out) { return readField(text, out); }
NumberField readDoubleField(const char* text, double* out) { return readField(text, out); }
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
        // The token's end by strchr: a loop over its bytes was a tenth of a camera
        // file's reading under the fuzzer.
        char* comma = std::strchr(p, ',');
        if (comma) {
            *comma = 0;
            p = comma + 1;
        } else {
            p += std::strlen(p);
        }
        if (count < capacity) tokens[count++] = start;
    }
    return count;
}

int splitDelimitedLine(char* line, char** tokens, int capacity, char separator) {
    bool quoted = false;
    for (const char* p = std::strchr(line, '"'); p; p = std::strchr(p + 1, '"')) {
        const char* before = p;
        while (before > line && (before[-1] == ' ' || before[-1] == '\t')) --before;
        if (before == line || before[-1] == separator) {
            quoted = true;
            break;
        }
    }
    if (!quoted) {
        if (separator == ',') return splitCommaLine(line, tokens, capacity);
        int count = 0;
        char* p = line;
        while (*p) {
            while (*p == separator) ++p;
            if (!*p) break;
            char* start = p;
            while (*p && *p != separator) ++p;
            if (*p) *p++ = 0;
            if (count < capacity) tokens[count++] = start;
        }
        return count;
    }
    int count = 0;
    char* read = line;
    for (;;) {
        char* field = read;
        char* write = read;
        char* start = read;
        while (*start == ' ' || *start == '\t') ++start;
        if (*start == '"') {
            read = start + 1;
            for (;;) {
                if (!*read) break;
                if (*read == '"') {
                    if (read[1] == '"') {
                        *write++ = '"';
                        read += 2;
                        continue;
                    }
                    ++read;
                    break;
                }
                *write++ = *read++;
            }
            // Anything between the closing quote and the separator belongs to the field.
            while (*read && *read != separator) *write++ = *read++;
        } else {
            while (*read && *read != separator) *write++ = *read++;
        }
        bool more = *read == separator;
        if (more) ++read;
        *write = 0;
        if (count < capacity) tokens[count++] = field;
        if (!more) break;
    }
    // A separator at the end of the row closes it; it opens no empty last field.
    while (count > 0 && !*tokens[count - 1]) --count;
    return count;
}

char detectSeparator(const char* firstLine) {
    bool inQuotes = false;
    bool semicolon = false;
    for (const char* p = firstLine; *p; ++p) {
        if (*p == '"') inQuotes = !inQuotes;
        else if (!inQuotes && *p == ',') return ',';
        else if (!inQuotes && *p == ';') semicolon = true;
    }
    return semicolon ? ';' : ',';
}

bool isWholeNumber(const char* text, bool integer) {
    if (!text) return false;
    const char* start = skipToNumber(text);
    const char* end = start + std::strlen(start);
    const char* stop;
    if (integer) {
        int32_t value;
        auto result = std::from_chars(start, end, value);
        if (result.ec != std::errc()) return false;
        stop = result.ptr;
    } else {
        double value;
        auto result = std::from_chars(start, end, value, std::chars_format::general);
        if (result.ec != std::errc() || !std::isfinite(value)) return false;
        stop = result.ptr;
    }
    while (*stop == ' ' || *stop == '\t' || *stop == '\r' || *stop == '\n') ++stop;
    return *stop == 0;
}

namespace {

int countControlIn(const char* text, size_t size) {
    int count = 0;
    for (size_t i = 0; i < size; ++i) {
        unsigned char c = static_cast<unsigned char>(text[i]);
        count += c < 0x20 && c != 0 && c != '\t' && c != '\n' && c != '\r';
    }
    return count;
}

}  // namespace

int countControlBytes(const char* text, size_t size) {
    // Eight bytes at a time: only a word with a byte below 0x20 (in a text file, the one
    // with the line's end) is looked at byte by byte.
    constexpr uint64_t kOnes = 0x0101010101010101u;
    int count = 0;
    size_t i = 0;
    for (; i + 8 <= size; i += 8) {
        uint64_t word;
        std::memcpy(&word, text + i, sizeof word);
        if (((word - kOnes * 0x20) & ~word & kOnes * 0x80) != 0) count += countControlIn(text + i, 8);
    }
    return count + countControlIn(text + i, size - i);
}

TextLines::TextLines(const char* text, size_t length) : data(text), size(length) {
    if (size >= 3 && static_cast<unsigned char>(data[0]) == 0xEF && static_cast<unsigned char>(data[1]) == 0xBB &&
        static_cast<unsigned char>(data[2]) == 0xBF)
        at = 3;
}

bool TextLines::next(char* line, int capacity) {
    if (at >= size) return false;
    // The line runs to the first newline or carriage return; the bulk moves by memchr.
    const char* start = data + at;
    size_t left = size - at;
    const char* newline = static_cast<const char*>(std::memchr(start, '\n', left));
    size_t span = newline ? size_t(newline - start) : left;
    const char* carriage = static_cast<const char*>(std::memchr(start, '\r', span));
    if (carriage) span = size_t(carriage - start);
    at += span;
    if (at < size) {
        if (data[at] == '\r' && at + 1 < size && data[at + 1] == '\n') ++at;
        ++at;
    }
    int length = 0;
    bool cut = false;
    const char* p = start;
    const char* end = start + span;
    while (p < end) {
        const char* zero = static_cast<const char*>(std::memchr(p, 0, size_t(end - p)));
        const char* stop = zero ? zero : end;
        size_t chunk = size_t(stop - p);
        size_t room = capacity > 0 ? size_t(capacity - 1 - length) : 0;
        if (chunk > room) {
            chunk = room;
            cut = true;
        }
        std::memcpy(line + length, p, chunk);
        length += int(chunk);
        if (!zero) break;
        ++droppedBytes;
        p = zero + 1;
    }
    if (cut) ++cutLines;
    if (capacity > 0) line[length] = 0;
    return true;
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

namespace {

std::string folderOf(const std::string& path) {
    size_t slash = path.size();
    while (slash > 0 && !isPathSeparator(path[slash - 1])) --slash;
    if (slash == 0) return std::string();
    --slash;
    if (slash == std::string::npos) return std::string();
    return path.substr(0, slash + 1);
}

void setReason(std::string* why, const std::string& text) {
    if (why) *why = text;
}

// A file with other names (hard links) must keep them: the new bytes go into the same
// file. Its old bytes are first put aside in a complete copy, which is removed only
// when the new bytes are on disk, and copied back when the rewrite fails.
bool rewriteInPlace(const std::string& target, const std::string& content, std::string* why) {
    std::string old;
    if (!readWholeFile(target.c_str(), old, SIZE_MAX)) {
        setReason(why, "it could not be read first");
        return false;
    }
    std::string aside = target + ".oldXXXXXX";
    int asideFd = makeTemporaryFile(aside);
    if (asideFd < 0) {
        setReason(why, std::string("no copy of it could be made: ") + std::strerror(errno));
        return false;
    }
    bool kept = writeAllBytes(asideFd, old) && syncFile(asideFd);
    if (!closeFile(asideFd)) kept = false;
    if (!kept) {
        removeFile(aside.c_str());
        setReason(why, "no copy of it could be made");
        return false;
    }
    auto rewrite = [&](const std::string& bytes) {
        int fd = openForRewrite(target.c_str());
        if (fd < 0) return false;
        bool ok = writeAllBytes(fd, bytes) && syncFile(fd);
        if (!closeFile(fd)) ok = false;
        return ok;
    };
    if (rewrite(content)) {
        removeFile(aside.c_str());
        return true;
    }
    // Put the old bytes back; if even that fails, the copy aside stays for the user.
    if (rewrite(old)) removeFile(aside.c_str());
    setReason(why, "it could not be rewritten");
    return false;
}

}  // namespace

std::string resolveLinks(const std::string& path) {
    std::string current = path;
    // As many hops as the system allows before it calls a chain a loop.
    for (int hop = 0; hop < 40; ++hop) {
        std::string target;
        if (!readSymbolicLink(current, target) || target.empty()) return current;
        current = isAbsolutePath(target) ? target : folderOf(current) + target;
    }
    return current;
}

bool readWholeFile(const char* path, std::string& out, size_t limit, bool* truncated) {
    out.clear();
    if (truncated) *truncated = false;
    std::FILE* file = std::fopen(path, "rb");
    if (!file) return false;
    char chunk[65536];
    size_t got;
    bool ok = true;
    while ((got = std::fread(chunk, 1, sizeof chunk, file)) > 0) {
        if (out.size() + got > limit) {
            out.append(chunk, limit - out.size());
            if (truncated) *truncated = true;
            break;
        }
        out.append(chunk, got);
    }
    if (std::ferror(file)) ok = false;
    std::fclose(file);
    return ok;
}

bool replaceFileAtomically(const char* path, const std::string& content, std::string* why) {
    if (!path || !*path) {
        setReason(why, "no path");
        return false;
    }
    std::string target = resolveLinks(path);
    struct stat info;
    bool exists = ::stat(target.c_str(), &info) == 0;
    if (exists) {
        if (!S_ISREG(info.st_mode)) {
            setReason(why, "it is not a plain file");
            return false;
        }
        // The mode counts even where the system would let us through (as root): a file
        // without any write permission was protected by its user on purpose.
        if ((info.st_mode & 0222) == 0 || !writeAllowed(target.c_str())) {
            setReason(why, "it is read-only");
            return false;
        }
        if (info.st_nlink > 1) return rewriteInPlace(target, content, why);
    }

    std::string temporary = target + ".tmpXXXXXX";
    int fd = makeTemporaryFile(temporary);
    if (fd < 0) {
        setReason(why, std::string("its folder can't be written: ") + std::strerror(errno));
        return false;
    }
    bool ok = writeAllBytes(fd, content);
    if (ok) {
        if (exists)
            copyOwnerAndMode(fd, info);
        else
            giveNewFileMode(fd);
    }
    if (ok && !syncFile(fd)) ok = false;
    if (!closeFile(fd)) ok = false;
    if (ok && !renameReplacing(temporary.c_str(), target.c_str())) ok = false;
    if (!ok) {
        setReason(why, std::string("writing failed: ") + std::strerror(errno));
        removeFile(temporary.c_str());
    }
    return ok;
}

bool fileReadable(const char* path) {
    std::FILE* file = std::fopen(path, "r");
    if (!file) return false;
    std::fclose(file);
    return true;
}

bool fileMissing(const char* path) {
    struct stat info;
    return ::stat(path, &info) != 0 && errno == ENOENT;
}

std::string localTimeText(const char* format) {
    std::time_t now = std::time(nullptr);
    std::tm local = localTimeOf(now);
    char text[64];
    if (std::strftime(text, sizeof text, format, &local) == 0) text[0] = 0;
    return text;
}
