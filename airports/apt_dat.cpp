#include "airports/apt_dat.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "XPLMUtilities.h"
#include "data/camera_set.h"
#include "data/text_io.h"

namespace {

constexpr size_t kLineLimit = 2000;
constexpr int kMaxFields = 24;

// One pass over the rows of a file with one working record: the record is emptied at
// each airport header by its counts alone, and each row that adds an entry clears that
// entry first, so the 500 signs are never cleared wholesale for every airport.
struct AptPass {
    AirportScenery* work;
    const char* wanted;
    bool complete = false;

    // The rows of one line; false once the wanted airport is complete.
    bool line(const char* text, size_t length);
};

// What each byte is to the splitter: part of a field, a blank between fields, or the
// end of the line (NUL). One look-up a byte instead of five comparisons, which the
// fuzzing build traces one by one.
enum : unsigned char { kFieldByte, kBlankByte, kEndByte };
struct ByteKinds {
    unsigned char of[256];
    constexpr ByteKinds() : of{} {
        for (unsigned char c : {' ', '\t', '\r', '\v', '\f'}) of[c] = kBlankByte;
        of[0] = kEndByte;
    }
};
constexpr ByteKinds kByteKinds;

unsigned char kindOf(char c) { return kByteKinds.of[static_cast<unsigned char>(c)]; }
bool isBlank(char c) { return kindOf(c) == kBlankByte; }

// The end of the field at `p` in a terminated text ending at `end`: eight bytes at a
// time while none is below '!' (every blank and NUL is), then byte by byte.
const char* fieldEnd(const char* p, const char* end) {
    p = skipWordBytes(p, end);
    while (kindOf(*p) == kFieldByte) ++p;
    return p;
}

// The fields of a line, split at white space; `rest(i)` is the line from field i on.
struct Fields {
    char text[kLineLimit + 1];
    const char* starts[kMaxFields];
    const char* ends[kMaxFields];
    int count = 0;
    size_t length = 0;

    void split(const char* line, size_t size) {
        length = size < kLineLimit ? size : kLineLimit;
        std::memcpy(text, line, length);
        while (length > 0 && isBlank(text[length - 1])) --length;
        text[length] = 0;
        count = 0;
        const char* p = text;
        const char* const end = text + length;
        while (count < kMaxFields) {
            while (isBlank(*p)) ++p;
            if (!*p) break;
            starts[count] = p;
            p = fieldEnd(p, end);
            ends[count++] = p;
        }
    }
    // Field i as a separate text (cut to `capacity`), empty when the row lacks it.
    void copy(int i, char* out, size_t capacity) const {
        if (capacity == 0) return;
        size_t size = i < count ? size_t(ends[i] - starts[i]) : 0;
        if (size >= capacity) size = capacity - 1;
        if (size) std::memcpy(out, starts[i], size);
        out[size] = 0;
    }
    void rest(int i, char* out, size_t capacity) const {
        if (capacity == 0) return;
        size_t size = i < count ? size_t(text + length - starts[i]) : 0;
        if (size >= capacity) size = capacity - 1;
        if (size) std::memcpy(out, starts[i], size);
        out[size] = 0;
    }
    template <typename T>
    T numberAt(int i, bool (*parse)(const char*, T*)) const {
        T value = 0;
        if (i < count) {
            char field[64];
            copy(i, field, sizeof field);
            parse(field, &value);
        }
        return value;
    }
    float number(int i) const { return numberAt<float>(i, parseFloat); }
    double real(int i) const { return numberAt<double>(i, parseDouble); }
};

// The row code: the number the line begins with, 0 when it begins with none.
int rowCode(const char* text, size_t length) {
    const char* p = text;
    const char* const end = text + length;
    while (p != end && isBlank(*p)) ++p;
    // At most six digits. One comparison a digit: this runs for every row of a file.
    const char* const first = p;
    const char* const last = end - p > 6 ? p + 6 : end;
    int code = 0;
    unsigned digit;
    while (p != last && (digit = unsigned(*p - '0')) <= 9) {
        code = code * 10 + int(digit);
        ++p;
    }
    return p != first ? code : 0;
}

bool AptPass::line(const char* text, size_t length) {
    int code = rowCode(text, length);
    switch (code) {
        case 1: case 14: case 15: case 16: case 17: case 20: case 100: case 101: case 102: case 1300: case 1302:
            break;
        default:
            return true;  // most rows of a file: taxi routes, pavement, lights
    }
    static Fields f;
    f.split(text, length);
    AirportScenery& a = *work;
    switch (code) {
        case 1:
        case 16:
        case 17: {
            if (std::strcmp(wanted, a.id) == 0) {
                complete = true;
                return false;
            }
            a.runwayCount = a.startCount = a.signCount = a.viewPointCount = a.helipadCount = 0;
            a.elevation = f.real(1);
            f.copy(4, a.id, sizeof a.id);
            break;
        }
        case 14:
            if (a.viewPointCount < kMaxViewPoints) {
                ViewPoint& v = a.viewPoints[a.viewPointCount++];
                std::memset(&v, 0, sizeof v);
                v.latitude = f.number(1);
                v.longitude = f.number(2);
                v.height = f.number(3);
                f.rest(5, v.name, sizeof v.name);
                if (!v.name[0]) copyText(v.name, sizeof v.name, "Viewpoint", -1);
            }
            break;
        case 15:
        case 1300:
            if (a.startCount < kMaxStartLocations) {
                StartLocation& s = a.starts[a.startCount++];
                std::memset(&s, 0, sizeof s);
                s.latitude = f.number(1);
                s.longitude = f.number(2);
                s.heading = f.number(3);
                f.rest(code == 15 ? 4 : 6, s.name, sizeof s.name);
            }
            break;
        case 20:
            if (a.signCount < kMaxSigns) {
                Sign& s = a.signs[a.signCount++];
                std::memset(&s, 0, sizeof s);
                s.latitude = f.number(1);
                s.longitude = f.number(2);
                char code20[kLineLimit + 1];
                f.rest(6, code20, sizeof code20);
                cleanSignText(code20, s.text, sizeof s.text);
            }
            break;
        case 100:
        case 101:
            if (a.runwayCount < kMaxRunways) {
                Runway& r = a.runways[a.runwayCount++];
                std::memset(&r, 0, sizeof r);
                // Land runways: width and six numbers, then each end's name and place
                // with six numbers between; water runways: two numbers, then the ends.
                const int first = code == 100 ? 8 : 3;
                const int step = code == 100 ? 9 : 3;
                for (int e = 0; e < 2; ++e) {
                    int at = first + e * step;
                    f.copy(at, r.ends[e].name, sizeof r.ends[e].name);
                    r.ends[e].latitude = f.number(at + 1);
                    r.ends[e].longitude = f.number(at + 2);
                }
            }
            break;
        case 102:
            if (a.helipadCount < kMaxHelipads) {
                Helipad& h = a.helipads[a.helipadCount++];
                std::memset(&h, 0, sizeof h);
                f.copy(1, h.name, sizeof h.name);
                h.latitude = f.number(2);
                h.longitude = f.number(3);
            }
            break;
        case 1302: {
            char key[32], value[64];
            f.copy(1, key, sizeof key);
            f.copy(2, value, sizeof value);
            if (value[0] && (std::strcmp(key, "icao_code") == 0 || std::strcmp(key, "faa_code") == 0))
                copyText(a.id, sizeof a.id, value, 10);
            break;
        }
    }
    return true;
}

// The wanted airport copied into `out`, only what the counts cover: clearing or copying
// the whole half megabyte for every answer took most of the apt.dat fuzzer's time.
bool answer(AptPass& pass, AirportScenery& out) {
    const AirportScenery& a = *pass.work;
    if (std::strcmp(pass.wanted, a.id) != 0) return false;
    out.elevation = a.elevation;
    std::memcpy(out.id, a.id, sizeof a.id);
    out.runwayCount = a.runwayCount;
    out.startCount = a.startCount;
    out.signCount = a.signCount;
    out.viewPointCount = a.viewPointCount;
    out.helipadCount = a.helipadCount;
    std::memcpy(out.runways, a.runways, sizeof(Runway) * size_t(a.runwayCount));
    std::memcpy(out.starts, a.starts, sizeof(StartLocation) * size_t(a.startCount));
    std::memcpy(out.signs, a.signs, sizeof(Sign) * size_t(a.signCount));
    std::memcpy(out.viewPoints, a.viewPoints, sizeof(ViewPoint) * size_t(a.viewPointCount));
    std::memcpy(out.helipads, a.helipads, sizeof(Helipad) * size_t(a.helipadCount));
    return true;
}

// A copy for the caller to delete, or null.
AirportScenery* answer(AptPass& pass) {
    if (std::strcmp(pass.wanted, pass.work->id) != 0) return nullptr;
    AirportScenery* found = new AirportScenery;
    answer(pass, *found);
    return found;
}

// The working record of every pass, made once: half a megabyte that a search of a
// world's airports would otherwise allocate and clear again and again. Emptied by its
// counts; every entry is cleared as a row fills it.
AirportScenery* freshRecord() {
    static AirportScenery work;  // static storage: nothing to free when the plug-in unloads
    work.elevation = 0;
    std::memset(work.id, 0, sizeof work.id);
    work.runwayCount = work.startCount = work.signCount = work.viewPointCount = work.helipadCount = 0;
    return &work;
}

AptPass passOverText(const char* text, size_t size, const char* id) {
    AptPass pass{freshRecord(), id ? id : ""};
    size_t at = 0;
    while (at < size) {
        const char* start = text + at;
        const char* newline = static_cast<const char*>(std::memchr(start, '\n', size - at));
        size_t length = newline ? size_t(newline - start) : size - at;
        if (!pass.line(start, length)) break;
        at += length + 1;
    }
    return pass;
}

std::string systemPath() {
    char path[2048] = {0};
    XPLMGetSystemPath(path);
    path[sizeof path - 1] = 0;
    return path;
}

}  // namespace

void cleanSignText(const char* code, char* out, size_t capacity) {
    if (capacity == 0) return;
    std::string text;
    int depth = 0;
    for (const char* p = code; *p; ++p) {
        if (*p == '{') {
            if (depth++ == 0) text += ' ';
        } else if (*p == '}') {
            if (depth > 0) --depth;
        } else if (depth == 0) {
            text += *p == '_' ? ' ' : *p;
        }
    }
    // Runs of white space shrink to one character, and the ends are trimmed.
    std::string shrunk;
    for (char c : text) {
        bool blank = c == ' ' || c == '\t';
        if (blank && !shrunk.empty() && (shrunk.back() == ' ' || shrunk.back() == '\t')) continue;
        shrunk += c;
    }
    size_t start = 0, end = shrunk.size();
    while (start < end && (shrunk[start] == ' ' || shrunk[start] == '\t')) ++start;
    while (end > start && (shrunk[end - 1] == ' ' || shrunk[end - 1] == '\t')) --end;
    size_t size = end - start;
    if (size >= capacity) size = capacity - 1;
    std::memcpy(out, shrunk.data() + start, size);
    out[size] = 0;
}

bool readAptDatText(const char* text, size_t size, const char* id, AirportScenery& out) {
    AptPass pass = passOverText(text, size, id);
    return answer(pass, out);
}

AirportScenery* readAptDatText(const char* text, size_t size, const char* id) {
    AptPass pass = passOverText(text, size, id);
    return answer(pass);
}

AirportScenery* readAptDat(std::FILE* file, const char* id) {
    if (!file) return nullptr;
    AptPass pass{freshRecord(), id ? id : ""};
    // One buffer for the whole file: a world's airports run to hundreds of megabytes.
    constexpr size_t kBuffer = size_t(1) << 20;
    std::vector<char> buffer(kBuffer);
    size_t have = 0;
    bool skipping = false;  // the rest of a line longer than the buffer
    for (;;) {
        size_t got = std::fread(buffer.data() + have, 1, kBuffer - have, file);
        have += got;
        size_t start = 0;
        bool more = true;
        while (more) {
            const char* line = buffer.data() + start;
            const char* newline = static_cast<const char*>(std::memchr(line, '\n', have - start));
            if (!newline) break;
            if (!skipping) more = pass.line(line, size_t(newline - line));
            skipping = false;
            start = size_t(newline - buffer.data()) + 1;
        }
        if (!more) break;
        if (got == 0) {
            if (start < have && !skipping) pass.line(buffer.data() + start, have - start);
            break;
        }
        std::memmove(buffer.data(), buffer.data() + start, have - start);
        have -= start;
        if (have == kBuffer) {
            if (!skipping && !pass.line(buffer.data(), kLineLimit)) break;
            skipping = true;
            have = 0;
        }
    }
    return answer(pass);
}

AirportScenery* searchPack(const char* folder, const char* id) {
    std::string path = folder ? folder : "";
    size_t newline = path.find_first_of("\r\n");
    if (newline != std::string::npos) path.resize(newline);
    path += "Earth nav data/apt.dat";
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file) return nullptr;
    AirportScenery* found = readAptDat(file, id);
    std::fclose(file);
    return found;
}

AirportScenery* findAirport(const char* id) {
    std::string system = systemPath();
    AirportScenery* found = nullptr;
    std::FILE* packs = std::fopen((system + "Custom Scenery/scenery_packs.ini").c_str(), "rb");
    if (packs) {
        static char line[kLineLimit + 1];
        static const char keyword[] = "SCENERY_PACK";
        while (!found && readBoundedLine(packs, line, sizeof line)) {
            const char* at = std::strstr(line, keyword);
            if (!at) continue;
            std::string folder;
            if (std::strstr(line, "SCENERY_PACK *GLOBAL_AIRPORTS*")) {
                folder = system + "Global Scenery/Global Airports/";
            } else if (const char* custom = std::strstr(line, "Custom Scenery/")) {
                folder = system + custom;
            } else {
                size_t behind = size_t(at - line) + sizeof keyword;  // the keyword and one blank
                if (std::strlen(line) <= behind) continue;
                folder = line + behind;
            }
            found = searchPack(folder.c_str(), id);
        }
        std::fclose(packs);
    }
    if (!found) found = searchPack((system + "Resources/default scenery/default apt dat/").c_str(), id);
    return found;
}
