// The settings file: defaults under every shape of file, the floor of the smoothing
// window, lower-case keys, the fixed order of a written file, "Default Settings" and
// the rule that a disable keeps only the panels' places.
#include <algorithm>
#include <clocale>
#include <cstring>

#include "data/settings.h"
#include "user_files_fixture.h"

namespace {

class SettingsTest : public UserFilesTest {
protected:
    std::string iniPath() const { return pluginDir + "Vistarig.ini"; }
};

bool sameSettings(const Settings& a, const Settings& b) { return formatSettingsText(a) == formatSettingsText(b); }

TEST_F(SettingsTest, OnlySmoothWindowTenGivesTheFloorAndDefaultsElsewhere) {
    writeFile(iniPath(), "SMOOTH_WINDOW 10\n");
    readSettings();
    Settings expected = builtInSettings();
    EXPECT_EQ(settings().SMOOTH_WINDOW, 60);
    EXPECT_TRUE(sameSettings(settings(), expected));
    EXPECT_EQ(readFile(iniPath()), "SMOOTH_WINDOW 10\n");  // reading never writes

    writeFile(iniPath(), "");
    readSettings();
    EXPECT_TRUE(sameSettings(settings(), expected));
    EXPECT_EQ(readFile(iniPath()), "");
}

TEST_F(SettingsTest, KeysOfAnyCaseAndAnyVersionAreReadAndRubbishIsSkipped) {
    writeFile(iniPath(),
              "ini_file_version 1\r\nsmall_rotation_speed 0.75\r\nMouse_Smoothing_Factor 12\n"
              "NO_SUCH_KEY 5 LOCK_KEYBOARD_CONTROL 1\n"
              "MEDIUM_ROTATION_SPEED not-a-number\nLARGE_ROTATION_SPEED 1e99\n"
              "LAST_CONTROL_PANEL_POSITION 1:10:500:400:100\nLAST_MINI_CONTROL_PANEL_POSITION 2:3\n"
              "SMOOTH_WINDOW 90\nVIEW_AXIS_NULL_ZONE");
    readSettings();
    const Settings& s = settings();
    EXPECT_EQ(s.INI_FILE_VERSION, 1);
    EXPECT_FLOAT_EQ(s.SMALL_ROTATION_SPEED, 0.75f);
    EXPECT_EQ(s.MOUSE_SMOOTHING_FACTOR, 12);
    EXPECT_TRUE(s.LOCK_KEYBOARD_CONTROL);
    EXPECT_FLOAT_EQ(s.MEDIUM_ROTATION_SPEED, 1.0f);  // unparsable: the default stays
    EXPECT_FLOAT_EQ(s.LARGE_ROTATION_SPEED, 1.0f);   // out of range for a float
    EXPECT_EQ(s.LAST_CONTROL_PANEL_POSITION.kind, 1);
    EXPECT_EQ(s.LAST_CONTROL_PANEL_POSITION.bottom, 100);
    EXPECT_EQ(s.LAST_MINI_CONTROL_PANEL_POSITION.kind, 0);  // incomplete: untouched
    EXPECT_EQ(s.SMOOTH_WINDOW, 90);
    EXPECT_FLOAT_EQ(s.VIEW_AXIS_NULL_ZONE, 0.025f);
}

TEST_F(SettingsTest, MissingFileIsCreatedWithEveryKeyInOrderWhateverTheLocale) {
    // Other plug-ins switch the locale; the file must still hold full stops.
    const char* previous = std::setlocale(LC_NUMERIC, nullptr);
    std::string saved = previous ? previous : "C";
    std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
    readSettings();
    std::string text = readFile(iniPath());
    std::setlocale(LC_NUMERIC, saved.c_str());
    ASSERT_FALSE(text.empty());
    EXPECT_EQ(text.rfind("INI_FILE_VERSION 2413\nSMALL_ROTATION_SPEED 0.500000\n", 0), 0u);
    EXPECT_NE(text.find("\nSMALL_MOVEMENT_SPEED 0.000500\n"), std::string::npos);
    EXPECT_NE(text.find("\nVIEW_AXIS_CAMERA_FB_CENTER 0.000000\nLAST_CONTROL_PANEL_POSITION 0:0:0:0:0\n"
                        "LAST_MINI_CONTROL_PANEL_POSITION 0:0:0:0:0\n"),
              std::string::npos);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 47);
    EXPECT_EQ(text.find("panSpeedFactor"), std::string::npos);

    // What was written reads back to the same record.
    settings().MOUSE_SPEED_FACTOR = 1.234567f;
    settings().LAST_MINI_CONTROL_PANEL_POSITION = {2, -1920, 1080, -100, 40};
    ASSERT_TRUE(writeSettings());
    Settings written = settings();
    readSettings();
    EXPECT_TRUE(sameSettings(settings(), written));
}

TEST_F(SettingsTest, DefaultSettingsAndDisableKeepOnlyWhatBelongsToTheMachine) {
    writeFile(iniPath(), "MOUSE_SPEED_FACTOR 2.5\nVIEW_AXIS_PITCH_CENTER 0.3\n");
    readSettings();
    settings().panSpeedFactor = 7;
    settings().MOUSE_SPEED_FACTOR = 4;
    settings().VIEW_AXIS_PITCH_CENTER = 0.4f;
    settings().VIEW_AXIS_NULL_ZONE = 0.1f;
    settings().LAST_CONTROL_PANEL_POSITION = {1, 10, 800, 600, 200};

    // "Default Settings": the values before the file was read, calibration and places kept.
    applyDefaultSettings();
    EXPECT_FLOAT_EQ(settings().MOUSE_SPEED_FACTOR, 1.0f);
    EXPECT_FLOAT_EQ(settings().panSpeedFactor, 3.0f);
    EXPECT_FLOAT_EQ(settings().VIEW_AXIS_PITCH_CENTER, 0.4f);
    EXPECT_FLOAT_EQ(settings().VIEW_AXIS_NULL_ZONE, 0.1f);
    EXPECT_EQ(settings().LAST_CONTROL_PANEL_POSITION.top, 800);
    EXPECT_EQ(readFile(iniPath()), "MOUSE_SPEED_FACTOR 2.5\nVIEW_AXIS_PITCH_CENTER 0.3\n");

    // Disable: unsaved edits go, the panels' latest places stay.
    settings().MOUSE_SPEED_FACTOR = 9;
    settings().LAST_MINI_CONTROL_PANEL_POSITION = {3, 1, 2, 3, 4};
    writeSettingsKeepingPanelPositions();
    readSettings();
    EXPECT_FLOAT_EQ(settings().MOUSE_SPEED_FACTOR, 2.5f);
    EXPECT_FLOAT_EQ(settings().VIEW_AXIS_PITCH_CENTER, 0.3f);
    EXPECT_EQ(settings().LAST_CONTROL_PANEL_POSITION.top, 800);
    EXPECT_EQ(settings().LAST_MINI_CONTROL_PANEL_POSITION.kind, 3);
    EXPECT_FLOAT_EQ(settings().panSpeedFactor, 3.0f);
}

TEST_F(SettingsTest, AFolderThatCannotBeWrittenLogsAndKeepsTheRecord) {
    overridePluginDirectory((root + "no/such/folder/").c_str());
    readSettings();
    EXPECT_TRUE(logHas("Unable to create " + root + "no/such/folder/Vistarig.ini"));
    EXPECT_EQ(settings().SMOOTH_WINDOW, 60);
}

}  // namespace
