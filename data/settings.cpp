#include "data/settings.h"

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "data/aircraft_files.h"
#include "data/kept_copies.h"
#include "data/text_io.h"
#include "platform/runtime.h"

namespace {

enum class Kind { real, integer, boolean, position };

struct Key {
    const char* name;
    size_t length;
    Kind kind;
    size_t offset;
};

#define KEY(field, kind) {#field, sizeof #field - 1, Kind::kind, offsetof(Settings, field)}

// The order of the lines in the file.
const Key keys[] = {
    KEY(INI_FILE_VERSION, integer),
    KEY(SMALL_ROTATION_SPEED, real),
    KEY(MEDIUM_ROTATION_SPEED, real),
    KEY(LARGE_ROTATION_SPEED, real),
    KEY(VERY_LARGE_ROTATION_SPEED, real),
    KEY(SMALL_MOVEMENT_SPEED, real),
    KEY(MEDIUM_MOVEMENT_SPEED, real),
    KEY(LARGE_MOVEMENT_SPEED, real),
    KEY(VERY_LARGE_MOVEMENT_SPEED, real),
    KEY(SMALL_HEADTRACK_RANGE, real),
    KEY(MEDIUM_HEADTRACK_RANGE, real),
    KEY(LARGE_HEADTRACK_RANGE, real),
    KEY(VERY_LARGE_HEADTRACK_RANGE, real),
    KEY(ENABLE_PANSPEED_TOGGLE, boolean),
    KEY(ENABLE_AUTO_SHOW_MINI_CONTROL_PANEL, boolean),
    KEY(MOUSE_SMOOTHING_FACTOR, integer),
    KEY(MOUSE_SPEED_FACTOR, real),
    KEY(MOVEMENT_SMOOTHING_FACTOR, integer),
    KEY(MINI_CONTROL_PANEL_MONITOR_INDEX, integer),
    KEY(ENABLE_OPEN_MINI_CONTROL_PANEL_ON_START, boolean),
    KEY(ENABLE_TRANSPARENT_MINI_CONTROL_PANEL, boolean),
    KEY(ENABLE_SOLID_CONTROL_PANEL, boolean),
    KEY(ENABLE_SHOW_TARGET_INFORMATION, boolean),
    KEY(LOCK_KEYBOARD_CONTROL, boolean),
    KEY(PAUSE_ON_FREE_TARGET_AIM, boolean),
    KEY(HIDE_FAVORITES, boolean),
    KEY(SMOOTH_WINDOW, integer),
    KEY(DISABLE_QUICK_LOOK_EMULATION, boolean),
    KEY(ENABLE_FORCE_FOV, boolean),
    KEY(ALWAYS_SHOW_ADVANCED_CAMERA_OPTIONS, boolean),
    KEY(HEAD_TRACK_SMOOTHING_FACTOR, integer),
    KEY(VIEW_AXIS_SMOOTHING_FACTOR, integer),
    KEY(DISABLE_VOICE_PROMPTS, boolean),
    KEY(POPPED_OUT_MINI_PANEL_ALWAYS_ON_TOP, boolean),
    KEY(REVERSE_CIRCLE_VIEW_MOUSE_Y, boolean),
    KEY(CIRCLE_VIEW_WHEEL_ZOOM, boolean),
    KEY(USE_SMALL_FONT, boolean),
    KEY(MIDDLE_MOUSE_BEHAVIOR, integer),
    KEY(VIEW_AXIS_NULL_ZONE, real),
    KEY(VIEW_AXIS_HEADING_CENTER, real),
    KEY(VIEW_AXIS_PITCH_CENTER, real),
    KEY(VIEW_AXIS_ZOOM_CENTER, real),
    KEY(VIEW_AXIS_CAMERA_LR_CENTER, real),
    KEY(VIEW_AXIS_CAMERA_UD_CENTER, real),
    KEY(VIEW_AXIS_CAMERA_FB_CENTER, real),
    KEY(LAST_CONTROL_PANEL_POSITION, position),
    KEY(LAST_MINI_CONTROL_PANEL_POSITION, position),
};
#undef KEY

Settings current = builtInSettings();
Settings saved = builtInSettings();

constexpr size_t kKeyCount = sizeof keys / sizeof keys[0];

// The key after the one found last is tried first: a file holds them in the order
// written. Then the length and the first letter before the whole word: comparing the
// whole word with every key was half of a file's reading.
const Key* findKey(const char* upper, size_t length, size_t& next) {
    auto same = [&](const Key& key) {
        return key.length == length && key.name[0] == upper[0] && std::memcmp(key.name, upper, length) == 0;
    };
    if (next < kKeyCount && same(keys[next])) return &keys[next++];
    for (size_t k = 0; k < kKeyCount; ++k)
        if (same(keys[k])) {
            next = k + 1;
            return &keys[k];
        }
    return nullptr;
}

bool parsePosition(const char* text, WindowPosition& out) {
    // Colons become blanks; all five numbers must scan, else the field stays.
    char copy[128];
    copyText(copy, sizeof copy, text, sizeof copy - 1);
    for (char* p = copy; *p; ++p)
        if (*p == ':') *p = ' ';
    int32_t values[5];
    const char* p = copy;
    for (int i = 0; i < 5; ++i) {
        while (*p == ' ') ++p;
        if (!parseInt(p, &values[i])) return false;
        while (*p && *p != ' ') ++p;
    }
    out.kind = values[0];
    out.left = values[1];
    out.top = values[2];
    out.right = values[3];
    out.bottom = values[4];
    return true;
}

// False when the value was not read whole (the field keeps what it held, or what the
// front of the value gave, as "%d" and "%f" would).
bool applyValue(Settings& into, const Key& key, const char* value) {
    char* field = reinterpret_cast<char*>(&into) + key.offset;
    switch (key.kind) {
        case Kind::real:
            parseFloat(value, reinterpret_cast<float*>(field));
            return isWholeNumber(value, false);
        case Kind::integer:
            parseInt(value, reinterpret_cast<int32_t*>(field));
            return isWholeNumber(value, true);
        case Kind::boolean: {
            int32_t number;
            if (parseInt(value, &number)) *reinterpret_cast<bool*>(field) = number != 0;
            return isWholeNumber(value, true);
        }
        case Kind::position:
            return parsePosition(value, *reinterpret_cast<WindowPosition*>(field));
    }
    return true;
}

// The bytes between words: white space (1) and NUL (2). One look-up a byte instead of
// seven comparisons, which the fuzzing build traces one by one.
struct Separators {
    unsigned char of[256];
    constexpr Separators() : of{} {
        for (unsigned char c : {' ', '\t', '\n', '\r', '\f', '\v'}) of[c] = 1;
        of[0] = 2;
    }
};
constexpr Separators kSeparators;

bool isSeparator(char c) { return kSeparators.of[static_cast<unsigned char>(c)] != 0; }

// The end of the word at `p`: eight bytes at a time while none of them is below '!'
// (every separator is), then byte by byte.
const char* wordEnd(const char* p, const char* end) {
    p = skipWordBytes(p, end);
    while (p != end && !isSeparator(*p)) ++p;
    return p;
}

// Files beyond this are not settings files; the first part is still read.
constexpr size_t kSettingsReadLimit = 1 << 20;

}  // namespace

Settings builtInSettings() {
    Settings s{};
    s.SMALL_ROTATION_SPEED = 0.5f;
    s.MEDIUM_ROTATION_SPEED = 1.0f;
    s.LARGE_ROTATION_SPEED = 1.0f;
    s.VERY_LARGE_ROTATION_SPEED = 2.0f;
    s.SMALL_MOVEMENT_SPEED = 0.0005f;
    s.MEDIUM_MOVEMENT_SPEED = 0.005f;
    s.LARGE_MOVEMENT_SPEED = 0.1f;
    s.VERY_LARGE_MOVEMENT_SPEED = 1.0f;
    s.SMALL_HEADTRACK_RANGE = 1.0f;
    s.MEDIUM_HEADTRACK_RANGE = 1.0f;
    s.LARGE_HEADTRACK_RANGE = 1.0f;
    s.VERY_LARGE_HEADTRACK_RANGE = 1.0f;
    s.panSpeedFactor = 3.0f;
    s.movementSpeedFactor = 3.0f;
    s.ENABLE_AUTO_SHOW_MINI_CONTROL_PANEL = true;
    s.MOUSE_SMOOTHING_FACTOR = 10;
    s.MOUSE_SPEED_FACTOR = 1.0f;
    s.VIEW_AXIS_SMOOTHING_FACTOR = 5;
    s.ENABLE_SHOW_TARGET_INFORMATION = true;
    s.SMOOTH_WINDOW = kSmoothWindowFloor;
    s.VIEW_AXIS_NULL_ZONE = 0.025f;
    return s;
}

Settings& settings() { return current; }
Settings& defaults() { return saved; }

std::string settingsPath() {
    std::string folder;
    if (!pluginDirectory(folder)) return std::string();
    return folder + "Vistarig.ini";
}

void parseSettingsText(const char* text, size_t length, Settings& into, ReadLosses* losses) {
    ReadLosses counted;
    // Pairs of words split at any white space or NUL; a key is compared in upper case.
    const char* p = text;
    const char* const end = text + length;
    auto nextWord = [&](const char*& word, size_t& size) {
        while (p != end && isSeparator(*p)) {
            if (*p == 0) ++counted.unreadableBytes;
            ++p;
        }
        if (p == end) return false;
        word = p;
        p = wordEnd(p, end);
        size = size_t(p - word);
        return true;
    };
    constexpr size_t kLongestKey = 64;  // longer words are no key
    char key[kLongestKey + 1];
    std::string value;
    size_t nextKey = 0;
    const char* word;
    size_t size;
    while (nextWord(word, size)) {
        const Key* found = nullptr;
        if (nextKey < kKeyCount && size == keys[nextKey].length && std::memcmp(word, keys[nextKey].name, size) == 0) {
            found = &keys[nextKey++];  // the next key as written: already in upper case
        } else if (size <= kLongestKey) {
            for (size_t k = 0; k < size; ++k) key[k] = char(std::toupper(static_cast<unsigned char>(word[k])));
            key[size] = 0;
            found = findKey(key, size, nextKey);
        }
        const char* valueWord;
        size_t valueSize;
        if (!nextWord(valueWord, valueSize)) {
            ++counted.extraValues;  // a key without its value
            break;
        }
        if (!found) {
            ++counted.extraValues;
            continue;
        }
        value.assign(valueWord, valueSize);
        if (!applyValue(into, *found, value.c_str())) ++counted.badNumbers;
    }
    if (into.SMOOTH_WINDOW < kSmoothWindowFloor) into.SMOOTH_WINDOW = kSmoothWindowFloor;
    if (losses) *losses = counted;
}

std::string formatSettingsText(const Settings& values) {
    std::string out;
    out.reserve(2048);  // the whole file, at one allocation
    char number[400];
    for (const Key& key : keys) {
        const char* field = reinterpret_cast<const char*>(&values) + key.offset;
        out += key.name;
        out += ' ';
        switch (key.kind) {
            case Kind::real:
                formatFixed(number, sizeof number, *reinterpret_cast<const float*>(field), 6);
                out += number;
                break;
            case Kind::integer:
                formatInt(number, sizeof number, *reinterpret_cast<const int32_t*>(field));
                out += number;
                break;
            case Kind::boolean:
                out += *reinterpret_cast<const bool*>(field) ? '1' : '0';
                break;
            case Kind::position: {
                const WindowPosition& p = *reinterpret_cast<const WindowPosition*>(field);
                const int64_t parts[5] = {p.kind, p.left, p.top, p.right, p.bottom};
                for (int n = 0; n < 5; ++n) {
                    if (n) out += ':';
                    formatInt(number, sizeof number, parts[n]);
                    out += number;
                }
                break;
            }
        }
        out += '\n';
    }
    return out;
}

void readSettings() {
    current = builtInSettings();
    saved = current;
    std::string path = settingsPath();
    std::FILE* file = path.empty() ? nullptr : std::fopen(path.c_str(), "rb");
    if (!file) {
        if (path.empty() || fileMissing(path.c_str())) {
            writeSettings();
        } else {
            // There but unreadable: the defaults written over it would lose the user's settings.
            ReadLosses unread;
            unread.unreadableBytes = 1;
            protectPartlyReadFile(path.c_str(), "Settings file", unread);
        }
        return;
    }
    std::string text;
    char chunk[4096];
    size_t got;
    while (text.size() < kSettingsReadLimit && (got = std::fread(chunk, 1, sizeof chunk, file)) > 0)
        text.append(chunk, got);
    bool more = std::fgetc(file) != EOF;
    std::fclose(file);
    ReadLosses losses;
    parseSettingsText(text.data(), text.size(), current, &losses);
    if (more) ++losses.unreadableBytes;
    protectPartlyReadFile(path.c_str(), "Settings file", losses);
}

bool writeSettings() {
    current.INI_FILE_VERSION = kIniFileVersion;
    std::string path = settingsPath();
    std::string why;
    if (path.empty() || replacingForbidden(path.c_str()) ||
        !replaceFileAtomically(path.c_str(), formatSettingsText(current), &why)) {
        logMessage("Unable to create %s", path.empty() ? "Vistarig.ini" : path.c_str());
        if (!why.empty()) logMessage("%s was left as it was: %s", path.c_str(), why.c_str());
        return false;
    }
    return true;
}

void applyDefaultSettings() {
    Settings kept = current;
    current = saved;
    current.VIEW_AXIS_NULL_ZONE = kept.VIEW_AXIS_NULL_ZONE;
    current.VIEW_AXIS_HEADING_CENTER = kept.VIEW_AXIS_HEADING_CENTER;
    current.VIEW_AXIS_PITCH_CENTER = kept.VIEW_AXIS_PITCH_CENTER;
    current.VIEW_AXIS_ZOOM_CENTER = kept.VIEW_AXIS_ZOOM_CENTER;
    current.VIEW_AXIS_CAMERA_LR_CENTER = kept.VIEW_AXIS_CAMERA_LR_CENTER;
    current.VIEW_AXIS_CAMERA_UD_CENTER = kept.VIEW_AXIS_CAMERA_UD_CENTER;
    current.VIEW_AXIS_CAMERA_FB_CENTER = kept.VIEW_AXIS_CAMERA_FB_CENTER;
    current.LAST_CONTROL_PANEL_POSITION = kept.LAST_CONTROL_PANEL_POSITION;
    current.LAST_MINI_CONTROL_PANEL_POSITION = kept.LAST_MINI_CONTROL_PANEL_POSITION;
}

void writeSettingsKeepingPanelPositions() {
    WindowPosition control = current.LAST_CONTROL_PANEL_POSITION;
    WindowPosition mini = current.LAST_MINI_CONTROL_PANEL_POSITION;
    readSettings();
    current.LAST_CONTROL_PANEL_POSITION = control;
    current.LAST_MINI_CONTROL_PANEL_POSITION = mini;
    writeSettings();
}
