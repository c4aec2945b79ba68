#include "data/quick_look.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "data/aircraft_files.h"
#include "data/angles.h"
#include "data/camera_file.h"
#include "data/camera_set.h"
#include "data/text_io.h"
#include "data/vector_math.h"
#include "platform/runtime.h"

namespace {

QuickLookView table[kQuickLookViews];

enum Field { kType, kX, kY, kZ, kLookHeading, kLookPitch, kCircleHeading, kCirclePitch, kCircleDistance };

// In the order they are looked for: the type first.
const struct {
    const char* key;
    Field field;
} kKeys[] = {
    {"_iql_view_type_", kType},         {"_iql_pe_x_", kX},
    {"_iql_pe_y_", kY},                 {"_iql_pe_z_", kZ},
    {"_iql_look_os_psi_", kLookHeading}, {"_iql_look_os_the_", kLookPitch},
    {"_iql_circ_psi_", kCircleHeading}, {"_iql_circ_the_", kCirclePitch},
    {"_iql_circ_dis_", kCircleDistance},
};

bool taken(const char* type) {
    return !std::strcmp(type, "v_3dc") || !std::strcmp(type, "v_cha") || !std::strcmp(type, "v_rid") ||
           !std::strcmp(type, "v_cir");
}

void readLine(const char* line) {
    for (const auto& key : kKeys) {
        const char* at = std::strstr(line, key.key);
        if (!at) continue;
        const char* digits = at + std::strlen(key.key);
        int number = 0, count = 0;
        while (*digits >= '0' && *digits <= '9' && count < 4) number = number * 10 + (*digits++ - '0'), ++count;
        // A view number beyond the table has no slot.
        if (count == 0 || number >= kQuickLookViews) return;
        const char* blank = std::strchr(line, ' ');
        if (!blank) return;
        QuickLookView& view = table[number];
        if (key.field == kType) {
            char word[16] = {0};
            const char* value = blank + 1;
            while (*value == ' ' || *value == '\t') ++value;
            size_t length = std::strcspn(value, " \t\r\n");
            if (length < sizeof word) std::memcpy(word, value, length);
            view.type[0] = 0;
            if (taken(word)) std::memcpy(view.type, word, sizeof view.type);
            return;
        }
        float* fields[] = {nullptr, &view.x, &view.y, &view.z, &view.lookHeading, &view.lookPitch,
                           &view.circleHeading, &view.circlePitch, &view.circleDistance};
        parseFloat(blank + 1, fields[key.field]);
        return;
    }
}

Camera& nextSlot(Category& category, int number) {
    Camera& camera = category.cameras[category.cameraCount];
    resetCamera(&camera);
    char name[32];
    std::snprintf(name, sizeof name, "Quick Look %d", number);
    copyText(camera.name, name, kNameCopyLimit);
    category.currentCamera = category.cameraCount;
    return camera;
}

void finishCamera(Category& category, Camera& camera, int number) {
    ++category.cameraCount;
    setViewId(number + 1);
    refreshHomePose(&camera);
}

}  // namespace

int parseQuickLookViews(const char* text, size_t size) {
    std::memset(table, 0, sizeof table);
    static char line[2001];
    TextLines lines(text, size);
    while (lines.next(line, sizeof line)) readLine(line);
    int count = 0;
    for (const QuickLookView& view : table) count += view.type[0] != 0;
    return count;
}

int countQuickLookViews() {
    std::memset(table, 0, sizeof table);
    std::string path;
    aircraftPrefsPath(path);
    std::string text;
    if (!readWholeFile(path.c_str(), text, size_t(16) << 20)) {
        logMessage("Unable to read %s", path.c_str());
        return 0;
    }
    return parseQuickLookViews(text.data(), text.size());
}

const QuickLookView* quickLookTable() { return table; }

void importQuickLookViews() {
    if (categoryCount() == 0) return;
    CameraSet& set = workingSet();
    Category& cockpit = set.categories[0];
    setCurrentCategoryIndex(0);
    bool outside = false;
    for (int n = 0; n < kQuickLookViews; ++n) {
        const QuickLookView& view = table[n];
        if (std::strcmp(view.type, "v_3dc") != 0) {
            outside |= view.type[0] != 0;
            continue;
        }
        if (cockpit.cameraCount >= kMaxCameras) break;
        if (cockpit.cameraCount == 0) cockpit.cameraCount = 1;  // the first camera stays in front
        Camera& camera = nextSlot(cockpit, n);
        camera.x = view.x, camera.y = view.y, camera.z = view.z;
        camera.heading = view.lookHeading;
        camera.pitch = view.lookPitch;
        camera.smoothTransition = true;
        camera.transitionSeconds = 0.5f;
        finishCamera(cockpit, camera, n);
    }
    if (outside && set.categoryCount < kMaxCategories) {
        int index = set.categoryCount < 2 ? 1 : set.categoryCount;
        Category& external = set.categories[index];
        copyText(external.name, "External", kNameCopyLimit);
        external.cameraCount = 0;
        if (set.categoryCount < index + 1) set.categoryCount = index + 1;
        setCurrentCategoryIndex(index);
        for (int n = 0; n < kQuickLookViews; ++n) {
            const QuickLookView& view = table[n];
            if (!view.type[0] || !std::strcmp(view.type, "v_3dc")) continue;
            if (external.cameraCount >= kMaxCameras) break;
            Camera& camera = nextSlot(external, n);
            if (!std::strcmp(view.type, "v_cha")) {
                camera.z = view.circleDistance;
                camera.chaseView9 = true;
            } else {
                float pitch = wrapAngle(-view.circlePitch);
                float heading = wrapAngle(-view.circleHeading);
                Vector3 at = rotateVector(Vector3{0, 0, view.circleDistance}, pitch, 0, 0);
                at = rotateVector(at, 0, heading, 0);
                camera.x = float(at.x), camera.y = float(at.y), camera.z = float(at.z);
                camera.heading = wrapAngle(wrapAngle(-view.circleHeading) + view.lookHeading);
                camera.pitch = wrapAngle(wrapAngle(-view.circlePitch) + view.lookPitch);
                if (!std::strcmp(view.type, "v_cir")) camera.trackHeading = camera.trackPitch = true;
            }
            camera.external = true;
            camera.initialMovementRange = 2;
            finishCamera(external, camera, n);
        }
        external.currentCamera = 0;
    }
    setCurrentCategoryIndex(0);
    cockpit.currentCamera = 0;
    relinkSet(true);
    saveCameraFile(false, false);
}
