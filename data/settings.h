// The plug-in's settings: the one `Settings` record that every part reads through
// `settings()`, its defaults, and the file "Vistarig.ini" in the plug-in's folder.
// Main thread only.
#pragma once

#include <cstdint>
#include <string>

#include "data/kept_copies.h"
#include "data/window_position.h"

// Each field is named by its key in the file; the two speed factors have no key.
struct Settings {
    float SMALL_ROTATION_SPEED;
    float MEDIUM_ROTATION_SPEED;
    float LARGE_ROTATION_SPEED;
    float VERY_LARGE_ROTATION_SPEED;
    float SMALL_MOVEMENT_SPEED;
    float MEDIUM_MOVEMENT_SPEED;
    float LARGE_MOVEMENT_SPEED;
    float VERY_LARGE_MOVEMENT_SPEED;
    float SMALL_HEADTRACK_RANGE;
    float MEDIUM_HEADTRACK_RANGE;
    float LARGE_HEADTRACK_RANGE;
    float VERY_LARGE_HEADTRACK_RANGE;
    float panSpeedFactor;
    float movementSpeedFactor;
    bool ENABLE_PANSPEED_TOGGLE;
    bool ENABLE_AUTO_SHOW_MINI_CONTROL_PANEL;
    bool ENABLE_TRANSPARENT_MINI_CONTROL_PANEL;
    bool ENABLE_SOLID_CONTROL_PANEL;
    bool ENABLE_OPEN_MINI_CONTROL_PANEL_ON_START;
    int32_t MOUSE_SMOOTHING_FACTOR;
    float MOUSE_SPEED_FACTOR;
    int32_t HEAD_TRACK_SMOOTHING_FACTOR;
    int32_t VIEW_AXIS_SMOOTHING_FACTOR;
    int32_t MOVEMENT_SMOOTHING_FACTOR;
    bool ENABLE_SHOW_TARGET_INFORMATION;
    bool LOCK_KEYBOARD_CONTROL;
    bool PAUSE_ON_FREE_TARGET_AIM;
    int32_t SMOOTH_WINDOW;
    bool HIDE_FAVORITES;
    bool DISABLE_QUICK_LOOK_EMULATION;
    float VIEW_AXIS_HEADING_CENTER;
    float VIEW_AXIS_PITCH_CENTER;
    float VIEW_AXIS_ZOOM_CENTER;
    float VIEW_AXIS_CAMERA_LR_CENTER;
    float VIEW_AXIS_CAMERA_UD_CENTER;
    float VIEW_AXIS_CAMERA_FB_CENTER;
    float VIEW_AXIS_NULL_ZONE;
    bool ENABLE_FORCE_FOV;
    bool ALWAYS_SHOW_ADVANCED_CAMERA_OPTIONS;
    bool DISABLE_VOICE_PROMPTS;
    bool USE_SMALL_FONT;
    int32_t MIDDLE_MOUSE_BEHAVIOR;
    int32_t MINI_CONTROL_PANEL_MONITOR_INDEX;
    int32_t INI_FILE_VERSION;
    bool REVERSE_CIRCLE_VIEW_MOUSE_Y;
    bool CIRCLE_VIEW_WHEEL_ZOOM;
    WindowPosition LAST_CONTROL_PANEL_POSITION;
    WindowPosition LAST_MINI_CONTROL_PANEL_POSITION;
    bool POPPED_OUT_MINI_PANEL_ALWAYS_ON_TOP;
};

constexpr int32_t kIniFileVersion = 2413;
constexpr int32_t kSmoothWindowFloor = 60;

Settings& settings();
// The values as they stood before the file was last read.
Settings& defaults();
// The record with every field at its built-in default.
Settings builtInSettings();

// Sets the defaults, then reads "Vistarig.ini"; a missing file is created.
void readSettings();
// Writes "Vistarig.ini" in its fixed order; false when it could not be written.
bool writeSettings();
// "Default Settings": the defaults again, but calibration and panel places stay.
void applyDefaultSettings();
// At host disable: the file gets the panels' latest places and nothing else of what
// memory holds (unsaved edits are thrown away).
void writeSettingsKeepingPanelPositions();

// The file's path: the plug-in folder + "Vistarig.ini".
std::string settingsPath();

// Pure halves, for tests and the fuzzer: read pairs from text into `into` (which the
// caller has set to its starting values), and the text of the file.
void parseSettingsText(const char* text, size_t length, Settings& into, ReadLosses* losses = nullptr);
std::string formatSettingsText(const Settings& values);
