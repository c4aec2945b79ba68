#include "data/camera_file.h"

#include <cmath>
#include <cstring>
#include <ctime>

#include "XPLMDataAccess.h"
#include "data/aircraft_files.h"
#include "data/integration_values.h"
#include "data/kept_copies.h"
#include "data/plugin_state.h"
#include "data/quick_look.h"
#include "data/text_io.h"
#include "data/user_messages.h"
#include "data/world_position.h"
#include "platform/runtime.h"

namespace {

const char kHeader[] =
    "Category Name,Camera Name,View ID,X,Y,Z,heading,pitch,TrackIR Enabled,Smooth Transition,HeadShake,"
    "RetainMouseLookPosition, Enable Temporary Positioning,Enable Linear Transition,Linear Transition Frames,"
    "Enable Auto Advance,Limit TrackIR, Max TrackIR X,Max TrackIR Y,Max TrackIR Z,Min TrackIR X,Min TrackIR Y,"
    "Min TrackIR Z,Zoom,FOV,Enable FOV,Smooth Camera Joins, Enable Track Heading, Enable Track Pitch, CGY Offset, "
    "CGZ Offset, Enable Level Camera, Enable View Axis, Enable External Camera, Enable Cineflex Camera, Enable Free "
    "Camera, Initial Movement Range, Enable Bezier Transition, Run Code,Transition Seconds,Hidden Camera,Vistarig "
    "Version,Default FOV,Aircraft,Author,Camera File Version,Category Index,Manual Enable, Latitude,Longitude, "
    "Elevation, X-Plane 9 Chase View, roll, Target Following Camera, Scenic Flyer GA Panel, Scenic Flyer Glass "
    "Panel, Cinema Verite, CGX Offset, Hide Yoke, Enable Camera Axis, Enable XPRealistic, Enable RealView, Disable "
    "3D Cockpit Zoom, AGL Camera, Height ABove AGL (Meters),Circle View, Transition Delay, Script ID, Camera "
    "Origin,Target Reciprocal \n";

// World coordinates beyond this don't parse and are not written: they keep every row
// well inside the reader's line limit, so what is written always reads back.
constexpr double kWorldLimit = 1e9;

// The stand-in list head when the model has none (never in the plug-in itself).
CameraFile fallbackHead;

// What the row being read could not take over, and how its numbers are written. Set
// by readCameraText for the rows of one file.
struct RowContext {
    ReadLosses* losses = nullptr;
    bool decimalComma = false;  // a spreadsheet's export with ';' between values
    bool linkOnce = false;      // the reader of a whole file links the set at its end
};
RowContext rowContext;

void countLoss(int ReadLosses::*counter) {
    if (rowContext.losses) ++(rowContext.losses->*counter);
}

bool blankToken(const char* token) {
    while (*token == ' ' || *token == '\t') ++token;
    return !*token;
}

// The number's text as the parser wants it: a decimal comma becomes a point.
const char* numberText(const char* token) {
    if (!rowContext.decimalComma || !std::strchr(token, ',')) return token;
    static char scratch[kCameraLineLimit + 1];
    copyText(scratch, sizeof scratch, token, kCameraLineLimit);
    for (char* p = scratch; *p; ++p)
        if (*p == ',') *p = '.';
    return scratch;
}

void noteNumber(NumberField read) {
    if (read == NumberField::partial || read == NumberField::bad) countLoss(&ReadLosses::badNumbers);
}

// Blanks around the word are trimmed, so a hand-edited " TRUE" stays true. Anything
// but "TRUE" or "FALSE" is still read by its first word, and counted as not read.
bool isTrue(const char* token) {
    // The words as written, first: the general path took a sixth of a file's reading.
    if (token[0] == 'T' && token[1] == 'R' && token[2] == 'U' && token[3] == 'E' && !token[4]) return true;
    if (token[0] == 'F' && token[1] == 'A' && token[2] == 'L' && token[3] == 'S' && token[4] == 'E' && !token[5])
        return false;
    while (*token == ' ' || *token == '\t') ++token;
    size_t length = 0;
    while (token[length] && token[length] != ' ' && token[length] != '\t' && token[length] != '\r' &&
           token[length] != '\n')
        ++length;
    bool isTrueWord = length == 4 && std::strncmp(token, "TRUE", 4) == 0;
    bool isFalseWord = length == 5 && std::strncmp(token, "FALSE", 5) == 0;
    if (!(isTrueWord || isFalseWord || length == 0) || !blankToken(token + length))
        countLoss(&ReadLosses::badBooleans);
    return isTrueWord;
}

void readFloat(const char* token, float& field) { noteNumber(readFloatField(numberText(token), &field)); }
void readInt(const char* token, int32_t& field) { noteNumber(readIntField(numberText(token), &field)); }
void readWorld(const char* token, double& field) {
    double value = field;
    noteNumber(readDoubleField(numberText(token), &value));
    if (std::fabs(value) <= kWorldLimit) field = value;
}

// copyText that counts a text longer than its field.
void copyField(char* field, int capacity, const char* token, int limit) {
    if (static_cast<int>(std::strlen(token)) > limit) countLoss(&ReadLosses::cutTexts);
    copyText(field, capacity, token, limit);
}

void copyTrimmed(char* field, int capacity, const char* token, int limit) {
    char scratch[kCameraLineLimit + 1];
    copyText(scratch, sizeof scratch, token, kCameraLineLimit);
    copyField(field, capacity, trimText(scratch), limit);
}

CameraFile* listHead() {
    CameraFile* head = cameraFileListHead();
    return head ? head : &fallbackHead;
}

std::string airportCameraPath(const CameraFile& file) {
    std::string folder;
    pluginDirectory(folder);
    return folder + (file.folderIndex == 1 ? "CommunityAirportCameras" : "MyAirportCameras") + "/" + file.fileName;
}

// ---- writing

struct RowWriter {
    std::string& out;
    char number[400];
    void text(const char* value) {
        out += value;
        out += ',';
    }
    void integer(int64_t value) {
        formatInt(number, sizeof number, value);
        text(number);
    }
    void real(double value, int decimals = 6) {
        formatFixed(number, sizeof number, value, decimals);
        text(number);
    }
    void world(double value) { real(std::fabs(value) <= kWorldLimit ? value : 0.0); }
    void flag(bool value) { out += value ? "TRUE," : "FALSE,"; }
};

// `fingerprint` leaves out what changes without the user: the simulator's field of view,
// the aircraft's name and a free camera's local position (which moves with the local
// origin), so that two sets compare equal when the user changed nothing.
void writeRow(std::string& out, const CameraFile& file, const Category& category, const Camera& c, float fileFov,
              bool fingerprint) {
    RowWriter w{out, {}};
    w.text(category.name);
    w.text(c.name);
    w.integer(c.viewId);
    bool local = !(fingerprint && c.freeCamera);
    w.real(local ? c.x : 0.0f);
    w.real(local ? c.y : 0.0f);
    w.real(local ? c.z : 0.0f);
    w.real(c.heading);
    w.real(c.pitch);
    w.flag(c.trackIrEnabled);
    w.flag(c.smoothTransition);
    w.flag(c.headShake);
    w.flag(c.retainMouseLook);
    w.flag(c.temporaryPositioning);
    w.flag(c.linearTransition);
    w.integer(c.linearTransitionFrames);
    w.flag(c.autoAdvance);
    w.flag(c.limitTrackIr);
    w.real(c.trackIrMax.x);
    w.real(c.trackIrMax.y);
    w.real(c.trackIrMax.z);
    w.real(c.trackIrMin.x);
    w.real(c.trackIrMin.y);
    w.real(c.trackIrMin.z);
    w.real(c.zoom);
    w.real(c.fov);
    w.flag(c.enableFov);
    w.flag(c.smoothCameraJoins);
    w.flag(c.trackHeading);
    w.flag(c.trackPitch);
    w.real(c.cgY);
    w.real(c.cgZ);
    w.flag(c.levelCamera);
    w.flag(c.viewAxis);
    w.flag(c.external);
    w.flag(c.cineflex);
    w.flag(c.freeCamera);
    w.integer(c.initialMovementRange);
    w.flag(c.bezierTransition);
    w.integer(c.runCode);
    w.real(c.transitionSeconds, 1);
    w.flag(c.hidden);
    out += std::to_string(VISTARIG_MAJOR) + "." VISTARIG_MINOR ",";
    w.real(fileFov);
    w.text(fingerprint ? "" : file.aircraft);
    out += file.author;
    out += " ,";
    out += file.fileVersion;
    out += " ,";
    w.integer(c.categoryIndex);
    w.flag(file.manualEnable);
    if (c.freeCamera) {
        w.world(c.latitude);
        w.world(c.longitude);
        w.world(c.elevation);
    } else {
        out += "0,0,0,";
    }
    w.flag(c.chaseView9);
    w.real(c.roll);
    w.flag(c.targetFollowing);
    w.flag(c.scenicFlyerGaPanel);
    w.flag(c.scenicFlyerGlassPanel);
    w.flag(c.cinemaVerite);
    w.real(c.cgX);
    w.integer(c.hideYoke);
    w.flag(c.cameraAxis);
    w.flag(c.xpRealistic);
    w.flag(c.realView);
    w.flag(c.disable3dCockpitZoom);
    w.flag(c.aglCamera);
    w.real(c.aglHeight);
    w.flag(c.circleView);
    w.real(c.transitionDelay, 1);
    w.integer(c.scriptId);
    w.integer(c.cameraOrigin);
    out += c.targetReciprocal ? "TRUE" : "FALSE";
    out += '\n';
}

// Commas would split the token, control characters the line; both become blanks. A
// double quote at the front of a field would make the reader take the row for a
// spreadsheet's quoted export: it becomes a single quote.
void cleanText(char* text) {
    for (char* p = text; *p; ++p)
        if (*p == ',' || static_cast<unsigned char>(*p) < 0x20 || *p == 0x7f) *p = ' ';
    char* first = text;
    while (*first == ' ' || *first == '\t') ++first;
    if (*first == '"') *first = '\'';
}

// A name must survive the reader: at most 30 characters, no comma, not empty (an
// empty token vanishes and would shift the row).
void makeNameWritable(char* name, int capacity, const char* fallback) {
    cleanText(name);
    if (static_cast<int>(std::strlen(name)) > kNameCopyLimit) name[kNameCopyLimit] = 0;
    if (!*name) copyText(name, capacity, fallback, kNameCopyLimit);
}

// What the reader would make of the camera's values, applied before writing, so that
// the file reads back to the very values that were written.
void applyReadingRules(Camera& c) {
    if (!(c.zoom >= 1.0f)) c.zoom = 1.0f;
    if (!(c.fov >= 15.0f && c.fov <= 170.0f)) c.fov = defaultFov();
    if (c.cineflex && c.targetFollowing) c.cineflex = false;
    if (c.cineflex || c.freeCamera || c.chaseView9 || c.targetFollowing) c.external = true;
    if (c.initialMovementRange > 3 || c.initialMovementRange < 0) c.initialMovementRange = 1;
    if (c.bezierTransition) {
        c.smoothCameraJoins = c.smoothTransition = c.linearTransition = false;
    } else if (c.linearTransition) {
        c.smoothTransition = false;
    }
    if (c.xpRealistic) c.headShake = c.realView = false;
    else if (c.realView) c.headShake = false;
}

bool nameTakenBefore(const CameraSet& set, int index, const char* name) {
    for (int i = 0; i < index; ++i)
        if (std::strcmp(set.categories[i].name, name) == 0) return true;
    return false;
}

void buildNewAircraftCamera() {
    int index = findOrAddCategory("Cockpit", true);
    if (index < 0) return;
    Category& category = workingSet().categories[index];
    Camera& camera = category.cameras[0];
    resetCamera(&camera);
    copyText(camera.name, "Pilot View", kNameCopyLimit);
    camera.viewId = 1;
    auto value = [](const char* name) {
        XPLMDataRef ref = XPLMFindDataRef(name);
        return ref ? XPLMGetDataf(ref) : 0.0f;
    };
    camera.x = value("sim/graphics/view/pilots_head_x");
    camera.y = value("sim/graphics/view/pilots_head_y");
    camera.z = value("sim/graphics/view/pilots_head_z");
    camera.heading = value("sim/graphics/view/pilots_head_psi");
    camera.pitch = value("sim/graphics/view/pilots_head_the");
    category.cameraCount = 1;
    category.currentCamera = 0;
    refreshHomePose(&camera);
}

void buildNewAirportCamera() {
    int index = findOrAddCategory("Airport", true);
    if (index < 0) return;
    Category& category = workingSet().categories[index];
    Camera& camera = category.cameras[0];
    resetCamera(&camera);
    copyText(camera.name, "Camera 1", kNameCopyLimit);
    camera.external = true;
    camera.freeCamera = true;
    camera.airportCamera = true;
    camera.initialMovementRange = 2;
    auto value = [](const char* name) {
        XPLMDataRef ref = XPLMFindDataRef(name);
        return ref ? XPLMGetDatad(ref) : 0.0;
    };
    camera.x = float(value("sim/flightmodel/position/local_x"));
    camera.y = float(value("sim/flightmodel/position/local_y"));
    camera.z = float(value("sim/flightmodel/position/local_z"));
    camera.heading = float(value("sim/flightmodel/position/psi"));
    camera.pitch = 0;
    localToWorld(&camera);
    category.cameraCount = 1;
    category.currentCamera = 0;
    refreshHomePose(&camera);
}

const char kNoQuickLookText[] =
    "Vistarig created a new camera file for this plane!\n\nOpen the Vistarig Control Panel and use the Browse "
    "Community Files button to load\ncamera definitions for a similar aircraft or create your own custom "
    "cameras.\n\nUse the Save All button in the control panel to save your camera definitions for this plane.";

const char kQuickLookText[] =
    "Vistarig created a new camera file for this plane!\n\nVistarig also found some X-Plane Quick Look Views which "
    "can be imported\nPress OK to import the Quick Look Views.\n\nYou can also open the Vistarig Control Panel and "
    "use the Browse Community Files button to load\ncamera definitions for a similar aircraft or create your own "
    "custom cameras.\n\nUse the Save All button in the control panel to save your camera definitions for this "
    "plane.";

void buildNewFile(CameraFile& file) {
    if (file.kind == 1) {
        buildNewAirportCamera();
    } else {
        buildNewAircraftCamera();
        if (countQuickLookViews() > 0) showMessageBoxWithCallback("INFO", kQuickLookText, importQuickLookViews);
        else showMessageBox("INFO", kNoQuickLookText);
    }
    file.author[0] = 0;
    copyText(file.fileVersion, localTimeText().c_str());
    setCurrentCategoryIndex(0);
    saveCameraFile(false, false);
}

}  // namespace

const char* cameraFileHeader() { return kHeader; }

// ---------------------------------------------------------------- reading

bool readCameraRow(char** tokens, int count) {
    CameraFile* file = activeFile() ? activeFile() : listHead();
    // Cut first: a longer name would never match the stored one and would open a new
    // category on every row.
    char categoryName[kNameCopyLimit + 1];
    copyField(categoryName, sizeof categoryName, tokens[0], kNameCopyLimit);
    int index = findOrAddCategory(categoryName, true);
    if (index < 0) {
        logMessage("Maximum allowed camera categories");
        return false;
    }
    Category& category = workingSet().categories[index];
    if (category.cameraCount >= kMaxCameras) {
        logMessage("Maximum allowed cameras in a category");
        return false;
    }
    Camera& c = category.cameras[category.cameraCount];
    if (count > kCameraColumns) {
        countLoss(&ReadLosses::extraValues);
        count = kCameraColumns;
    }
    for (int column = 1; column < count; ++column) {
        const char* t = tokens[column];
        switch (column) {
            case 1: copyField(c.name, sizeof c.name, t, kNameCopyLimit); break;
            case 2: readInt(t, c.viewId); break;
            case 3: readFloat(t, c.x); break;
            case 4: readFloat(t, c.y); break;
            case 5: readFloat(t, c.z); break;
            case 6: readFloat(t, c.heading); break;
            case 7: readFloat(t, c.pitch); break;
            case 8: c.trackIrEnabled = isTrue(t); break;
            case 9: c.smoothTransition = isTrue(t); break;
            case 10: c.headShake = isTrue(t); break;
            case 11: c.retainMouseLook = isTrue(t); break;
            case 12: c.temporaryPositioning = isTrue(t); break;
            case 13: c.linearTransition = isTrue(t); break;
            case 14: readInt(t, c.linearTransitionFrames); break;
            case 15: c.autoAdvance = isTrue(t); break;
            case 16: c.limitTrackIr = isTrue(t); break;
            case 17: readFloat(t, c.trackIrMax.x); break;
            case 18: readFloat(t, c.trackIrMax.y); break;
            case 19: readFloat(t, c.trackIrMax.z); break;
            case 20: readFloat(t, c.trackIrMin.x); break;
            case 21: readFloat(t, c.trackIrMin.y); break;
            case 22: readFloat(t, c.trackIrMin.z); break;
            case 23:
                readFloat(t, c.zoom);
                if (!(c.zoom >= 1.0f)) c.zoom = 1.0f;
                break;
            case 24:
                readFloat(t, c.fov);
                if (!(c.fov >= 15.0f && c.fov <= 170.0f)) c.fov = defaultFov();
                break;
            case 25: c.enableFov = isTrue(t); break;
            case 26: c.smoothCameraJoins = isTrue(t); break;
            case 27: c.trackHeading = isTrue(t); break;
            case 28: c.trackPitch = isTrue(t); break;
            case 29: readFloat(t, c.cgY); break;
            case 30: readFloat(t, c.cgZ); break;
            case 31: c.levelCamera = isTrue(t); break;
            case 32: c.viewAxis = isTrue(t); break;
            case 33: c.external = isTrue(t); break;
            case 34:
                c.cineflex = isTrue(t);
                if (c.cineflex) c.external = true, c.targetFollowing = false;
                break;
            case 35:
                c.freeCamera = isTrue(t);
                if (c.freeCamera) c.external = true;
                break;
            case 36: readInt(t, c.initialMovementRange); break;
            case 37: c.bezierTransition = isTrue(t); break;
            case 38: readInt(t, c.runCode); break;
            case 39: readFloat(t, c.transitionSeconds); break;
            case 40: c.hidden = isTrue(t); break;
            case 41: copyField(file->programVersion, sizeof file->programVersion, t, kFileInfoCopyLimit); break;
            case 42: readFloat(t, file->defaultFov); break;
            case 43: copyField(file->aircraft, sizeof file->aircraft, t, kFileInfoCopyLimit); break;
            case 44: copyTrimmed(file->author, sizeof file->author, t, kFileInfoCopyLimit); break;
            case 45: copyTrimmed(file->fileVersion, sizeof file->fileVersion, t, kFileInfoCopyLimit); break;
            case 46: break;
            case 47: file->manualEnable = isTrue(t); break;
            case 48: readWorld(t, c.latitude); break;
            case 49: readWorld(t, c.longitude); break;
            case 50: readWorld(t, c.elevation); break;
            case 51:
                c.chaseView9 = isTrue(t);
                if (c.chaseView9) c.external = true;
                break;
            case 52: readFloat(t, c.roll); break;
            case 53:
                c.targetFollowing = isTrue(t);
                if (c.targetFollowing) c.external = true, c.cineflex = false;
                break;
            case 54: c.scenicFlyerGaPanel = isTrue(t); break;
            case 55: c.scenicFlyerGlassPanel = isTrue(t); break;
            case 56: c.cinemaVerite = isTrue(t); break;
            case 57: readFloat(t, c.cgX); break;
            case 58:
            {
                char word[8];
                copyText(word, sizeof word, t, 6);
                trimText(word);
                if (std::strcmp(word, "TRUE") == 0) c.hideYoke = 1;
                else if (std::strcmp(word, "FALSE") == 0) c.hideYoke = 0;
                else readInt(t, c.hideYoke);
                break;
            }
            case 59: c.cameraAxis = isTrue(t); break;
            case 60: c.xpRealistic = isTrue(t); break;
            case 61: c.realView = isTrue(t); break;
            case 62: c.disable3dCockpitZoom = isTrue(t); break;
            case 63: c.aglCamera = isTrue(t); break;
            case 64: readFloat(t, c.aglHeight); break;
            case 65: c.circleView = isTrue(t); break;
            case 66: readFloat(t, c.transitionDelay); break;
            case 67: readInt(t, c.scriptId); break;
            case 68: readInt(t, c.cameraOrigin); break;
            case 69: c.targetReciprocal = isTrue(t); break;
        }
    }
    if (c.initialMovementRange > 3 || c.initialMovementRange < 0) c.initialMovementRange = 1;
    if (c.bezierTransition) {
        c.smoothCameraJoins = c.smoothTransition = c.linearTransition = false;
    } else if (c.linearTransition) {
        c.bezierTransition = c.smoothTransition = false;
    } else if (c.smoothTransition) {
        c.linearTransition = c.bezierTransition = false;
    }
    if (c.freeCamera) {
        if (count > 50) worldToLocal(&c);
        else localToWorld(&c);
    }
    refreshHomePose(&c);
    ++category.cameraCount;
    // A whole file links its set once, after its last row: linking after every row
    // made a full file's reading quadratic.
    if (!rowContext.linkOnce) relinkSet(true);
    return true;
}

bool readCameraText(const char* text, size_t size, CameraFile& file, ReadLosses* losses) {
    CameraFile* previous = activeFile();
    bool borrowed = previous != &file;
    if (borrowed) setActiveFile(&file);
    ReadLosses counted;
    rowContext = RowContext();
    rowContext.losses = &counted;
    rowContext.linkOnce = true;
    static char line[kCameraLineLimit + 1];
    char* tokens[kCameraColumns + 1];
    TextLines lines(text, size);
    counted.unreadableBytes = countControlBytes(text, size);
    bool ok = true;
    bool first = true;
    char separator = ',';
    while (lines.next(line, sizeof line)) {
        if (first) {
            // The first line with text tells how the file was exported.
            bool blank = true;
            for (const char* p = line; *p && blank; ++p) blank = *p == ' ' || *p == '\t';
            if (blank) continue;
            separator = detectSeparator(line);
            rowContext.decimalComma = separator == ';';
            first = false;
        }
        int count = splitDelimitedLine(line, tokens, kCameraColumns + 1, separator);
        if (count == 0) continue;
        if (count < kCameraMinColumns) {
            logMessage("The camera file does not have the minimum number of camera parameters");
            counted.shortRows = 1;
            while (lines.next(line, sizeof line)) {
                const char* p = line;
                while (*p == ' ' || *p == '\t' || *p == ',' || *p == ';') ++p;
                if (*p) ++counted.rowsAfterShortRow;
            }
            ok = false;
            break;
        }
        if (std::strcmp(tokens[0], "Category Name") == 0 && std::strcmp(tokens[1], "Camera Name") == 0) continue;
        if (!readCameraRow(tokens, count)) {
            logMessage("Unexpected error reading camera parameters");
            ++counted.droppedRows;
        }
    }
    counted.unreadableBytes += lines.droppedBytes + lines.cutLines;
    rowContext = RowContext();
    relinkSet(true);
    if (losses) *losses = counted;
    if (borrowed) setActiveFile(previous);
    return ok;
}

bool readCameraRows(std::FILE* stream, CameraFile& file, ReadLosses* losses) {
    std::string text;
    char chunk[65536];
    size_t got;
    while ((got = std::fread(chunk, 1, sizeof chunk, stream)) > 0) text.append(chunk, got);
    return readCameraText(text.data(), text.size(), file, losses);
}

namespace {

// The working set as last loaded or saved, to tell unsaved edits from none.
CameraSet cleanSet;
CameraFile cleanFile;
bool cleanKnown = false;
size_t lastAutosaveHash = 0;

void markSetClean() {
    CameraFile* file = activeFile();
    if (!file) {
        cleanKnown = false;
        return;
    }
    cleanSet = workingSet();
    cleanFile = *file;
    cleanKnown = true;
    lastAutosaveHash = 0;
}

// A damaged file leaves the user where the simulator put their eye: the set a new
// file would get, kept in memory only. Saving it at once, as a new file is saved, would
// replace what could not be read, and the new-file box would say something untrue.
void buildStandInSet(CameraFile& file) {
    if (file.kind == 1) buildNewAirportCamera();
    else buildNewAircraftCamera();
    setCurrentCategoryIndex(0);
}

// The file a load reads: its bytes and the path they came from.
struct ChosenFile {
    std::string setPath;   // where the set belongs and later saves go
    std::string readPath;  // where the bytes came from; empty when nothing could be opened
    std::string text;
    bool truncated = false;
};

// Far beyond any file of 20 categories of 150 cameras (about 2.5 MB).
constexpr size_t kCameraFileReadLimit = size_t(64) << 20;

bool readCandidate(const std::string& path, ChosenFile& chosen) {
    if (!readWholeFile(path.c_str(), chosen.text, kCameraFileReadLimit, &chosen.truncated)) return false;
    chosen.readPath = path;
    return true;
}

}  // namespace

bool workingSetHasUnsavedEdits() {
    CameraFile* file = activeFile();
    if (!cleanKnown || !file || categoryCount() == 0) return false;
    return formatCameraSet(workingSet(), *file, true) != formatCameraSet(cleanSet, cleanFile, true);
}

void autosaveUnsavedEdits() {
    CameraFile* file = activeFile();
    if (!file || !file->path[0] || !workingSetHasUnsavedEdits()) return;
    prepareSetForWriting(*file);
    std::string text = formatCameraFile(*file);
    size_t hash = std::hash<std::string>()(text);
    if (hash == lastAutosaveHash) return;  // these very edits were kept already
    std::string kept = writeAutosave(file->path, text);
    if (kept.empty()) {
        logMessage("Unsaved camera edits of %s could not be kept", file->path);
        announce("Unsaved camera edits could not be kept.");
        return;
    }
    lastAutosaveHash = hash;
    logMessage("Unsaved camera edits of %s were kept as %s", file->path, kept.c_str());
    announce("Unsaved camera edits were kept in the backups folder.");
}

bool loadCameraFile(CameraFile* file) {
    // An import from a file that can't be read changes nothing, and says so.
    bool importing = file && file->kind == 0 && file->readFromPath;
    if (importing && !fileReadable(file->path)) {
        logMessage("Unable to read %s", file->path);
        announce("Unable to import the camera file.");
        return false;
    }
    // Edits that were never saved are kept before the set is replaced.
    autosaveUnsavedEdits();

    // 1. The set that leaves the working set is kept, with its selection.
    if (CameraFile* active = activeFile()) {
        active->savedCategory = currentCategoryIndex();
        Category* category = currentCategory();
        active->savedCamera = category ? category->currentCamera : 0;
        savedSet(active->kind == 1 ? 1 : 0) = workingSet();
    }

    // 2. Which file.
    CameraFile* head = listHead();
    ChosenFile chosen;
    // The set's own file is there but could not be read: a new file saved over it would
    // lose it.
    bool ownFileUnread = false;
    if (file && file->kind != 0) {
        chosen.setPath = airportCameraPath(*file);
        if (!readCandidate(chosen.setPath, chosen)) ownFileUnread = !fileMissing(chosen.setPath.c_str());
    } else {
        perModelCameraPath(chosen.setPath);
        if (importing) {
            readCandidate(file->path, chosen);
            if (file == head) file->readFromPath = 0;
            file = nullptr;
        } else if (!readCandidate(chosen.setPath, chosen)) {
            ownFileUnread = !fileMissing(chosen.setPath.c_str());
        }
        if (chosen.readPath.empty()) {
            std::string folderPath;
            folderCameraPath(folderPath);
            readCandidate(folderPath, chosen);
        }
    }

    clearWorkingSet();
    copyText(head->fileName, aircraftCameraFileName().c_str(), 999);
    CameraFile* active = file ? file : head;
    setActiveFile(active);
    copyText(active->path, chosen.setPath.c_str());
    active->manualEnable = false;

    bool complete = true;
    ReadLosses losses;
    if (!chosen.readPath.empty()) {
        complete = readCameraText(chosen.text.data(), chosen.text.size(), *active, &losses);
        if (chosen.truncated) ++losses.unreadableBytes;
        protectPartlyReadFile(chosen.readPath.c_str(), "Camera file", losses);
    }
    if (ownFileUnread) {
        ReadLosses unread;
        unread.unreadableBytes = 1;
        protectPartlyReadFile(chosen.setPath.c_str(), "Camera file", unread);
    }

    if (categoryCount() == 0) {
        if (!ownFileUnread && (chosen.readPath.empty() || !losses.any())) {
            buildNewFile(*active);
        } else {
            buildStandInSet(*active);
            complete = true;  // the stand-in is whole: the remaining steps run on it
        }
    }
    if (!complete) {
        markSetClean();
        return false;
    }

    for (int i = 0; i < categoryCount(); ++i) {
        Category& category = workingSet().categories[i];
        for (int j = 0; j < category.cameraCount; ++j) {
            Camera& c = category.cameras[j];
            c.airportCamera = active->kind == 1;
            if (c.xpRealistic) c.headShake = c.realView = false;
            else if (c.realView) c.headShake = c.xpRealistic = false;
        }
    }
    relinkSet(true);

    if (active->savedCategory >= 0 && active->savedCategory < categoryCount()) {
        setCurrentCategoryIndex(active->savedCategory);
        Category& category = workingSet().categories[active->savedCategory];
        category.currentCamera =
            active->savedCamera >= 0 && active->savedCamera < category.cameraCount ? active->savedCamera : 0;
    } else {
        setCurrentCategoryIndex(0);
        workingSet().categories[0].currentCamera = 0;
    }
    clearEffectScriptOffsets();
    markSetClean();
    return losses.shortRows == 0;
}

// ---------------------------------------------------------------- writing

void prepareSetForWriting(CameraFile& file) {
    cleanText(file.author);
    trimText(file.author);
    cleanText(file.fileVersion);
    trimText(file.fileVersion);
    if (file.kind == 1) {
        copyText(file.aircraft, "N/A");
    } else {
        copyText(file.aircraft, aircraftModelName().c_str(), kFileInfoCopyLimit);
    }
    cleanText(file.aircraft);
    file.aircraft[kFileInfoCopyLimit] = 0;
    trimText(file.aircraft);
    if (!file.aircraft[0]) copyText(file.aircraft, "N/A");

    CameraSet& set = workingSet();
    // A free camera's world position is its master, and the file keeps six decimals of
    // it: snap it to what the file will hold and derive the local position from that,
    // so the set in memory is the set the file reads back as.
    for (int i = 0; i < set.categoryCount; ++i) {
        Category& category = set.categories[i];
        for (int j = 0; j < category.cameraCount; ++j) {
            Camera& camera = category.cameras[j];
            applyReadingRules(camera);
            if (!camera.freeCamera) continue;
            for (double* value : {&camera.latitude, &camera.longitude, &camera.elevation}) {
                char text[400];
                if (!(std::fabs(*value) <= kWorldLimit)) *value = 0;
                formatFixed(text, sizeof text, *value, 6);
                parseDouble(text, value);
            }
            worldToLocal(&camera);
        }
    }
    char fallback[40];
    for (int i = 0; i < set.categoryCount; ++i) {
        Category& category = set.categories[i];
        std::snprintf(fallback, sizeof fallback, "Category %d", i + 1);
        makeNameWritable(category.name, sizeof category.name, fallback);
        // A repeated name would merge two categories on reading.
        for (int n = 2; nameTakenBefore(set, i, category.name); ++n) {
            char suffix[16];
            int length = std::snprintf(suffix, sizeof suffix, " %d", n);
            char base[32];
            copyText(base, category.name, kNameCopyLimit - length);
            std::string numbered = std::string(base) + suffix;
            copyText(category.name, numbered.c_str(), kNameCopyLimit);
        }
        for (int j = 0; j < category.cameraCount; ++j) {
            Camera& camera = category.cameras[j];
            std::snprintf(fallback, sizeof fallback, "Camera %d", j + 1);
            makeNameWritable(camera.name, sizeof camera.name, fallback);
            // The row would pass for the header line.
            if (std::strcmp(category.name, "Category Name") == 0 && std::strcmp(camera.name, "Camera Name") == 0)
                copyText(camera.name, "Camera Name 1");
        }
    }
}

std::string formatCameraSet(const CameraSet& set, const CameraFile& file, bool fingerprint) {
    std::string out;
    size_t rows = 0;
    int categories = set.categoryCount < 0 ? 0 : set.categoryCount > kMaxCategories ? kMaxCategories : set.categoryCount;
    for (int i = 0; i < categories; ++i) rows += size_t(set.categories[i].cameraCount);
    out.reserve(sizeof kHeader + rows * 800);
    out += kHeader;
    float fileFov = fingerprint ? 0.0f : defaultFov();
    for (int i = 0; i < categories; ++i) {
        const Category& category = set.categories[i];
        for (int j = 0; j < category.cameraCount && j < kMaxCameras; ++j)
            writeRow(out, file, category, category.cameras[j], fileFov, fingerprint);
    }
    return out;
}

std::string formatCameraFile(const CameraFile& file) { return formatCameraSet(workingSet(), file, false); }

std::string cameraFileText(CameraFile& file) {
    prepareSetForWriting(file);
    return formatCameraFile(file);
}

bool saveCameraFile(bool announceSave, bool backup) {
    CameraFile* file = activeFile();
    if (categoryCount() > 0) refreshHomePose(currentCamera());
    if (!file) {
        logMessage("Unable to write camera file");
        return false;
    }
    // A file read only in part whose original could not be kept is never replaced.
    if (replacingForbidden(file->path)) {
        logMessage("Unable to write camera file");
        return false;
    }
    std::string why;
    if (!replaceFileAtomically(file->path, cameraFileText(*file), &why)) {
        logMessage("Unable to write camera file");
        logMessage("%s was left as it was: %s", file->path, why.c_str());
        return false;
    }
    markSetClean();
    if (file->kind == 0 && backup) backupCameraFile(file->path);
    relinkSet(true);
    for (int id = 1; id <= kMaxViewId; ++id) {
        Camera* found[2];
        if (camerasWithViewId(id, found, 2) > 1) {
            showMessageBox("WARNING",
                           "Some cameras have duplicate View IDs. Use the Display View IDs function in the File menu "
                           "to see the assignments.");
            break;
        }
    }
    if (announceSave) announce("Cameras Saved");
    return true;
}

// ---------------------------------------------------------------- the rest

bool analyseCameraFileQuietly(CameraFile* file) {
    std::FILE* stream = std::fopen(file->path, "rb");
    if (!stream) return false;
    char line[kCameraLineLimit + 1];
    char* tokens[kCameraColumns + 1];
    while (readBoundedLine(stream, line, sizeof line)) {
        int count = splitCommaLine(line, tokens, kCameraColumns + 1);
        if (count == 0) continue;
        if (count >= 2 && std::strcmp(tokens[0], "Category Name") == 0 && std::strcmp(tokens[1], "Camera Name") == 0)
            continue;
        ++file->cameraTotal;
        if (count > 41) copyText(file->programVersion, tokens[41], kFileInfoCopyLimit);
        if (count > 42) parseFloat(tokens[42], &file->defaultFov);
        if (count > 43) copyText(file->aircraft, tokens[43], kFileInfoCopyLimit);
        if (count > 44) copyText(file->author, tokens[44], kFileInfoCopyLimit);
        if (count > 45) copyText(file->fileVersion, tokens[45], kFileInfoCopyLimit);
        int32_t categoryIndex;
        if (count > 46 && parseInt(tokens[46], &categoryIndex) && categoryIndex > file->categoryTotal &&
            categoryIndex < kMaxCategories)
            file->categoryTotal = categoryIndex;
    }
    std::fclose(stream);
    ++file->categoryTotal;
    return true;
}

void analyseCameraFile(CameraFile* file) {
    if (!analyseCameraFileQuietly(file)) logMessage("Unable to read %s", file->path);
}

bool cameraFileExists() {
    std::string path;
    perModelCameraPath(path);
    return fileReadable(path.c_str());
}

void restoreAllCameras() {
    loadCameraFile(nullptr);
    setCurrentCategoryIndex(0);
    if (categoryCount() > 0) workingSet().categories[0].currentCamera = 0;
}
