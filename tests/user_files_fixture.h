// A throw-away X-Plane tree for the tests of the user's files: a fresh host rooted in
// a temporary folder, an aircraft "Aircraft/Test Plane/Cub.test.acf" and the plug-in's
// folder below "Resources/plugins/Vistarig/".
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "data/aircraft_files.h"
#include "data/camera_set.h"
#include "data/settings.h"
#include "host/host.h"

class UserFilesTest : public ::testing::Test {
protected:
    std::string root;
    std::string aircraftDir;
    std::string pluginDir;

    void SetUp() override {
        char pattern[] = "/tmp/vistarig-files-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        root = std::string(pattern) + "/";
        aircraftDir = root + "Aircraft/Test Plane/";
        pluginDir = root + "Resources/plugins/Vistarig/";
        for (const char* sub : {"AircraftCameraBackups", "CommunityAircraftCameras", "MyTargets", "MyAirportCameras",
                                "CommunityAirportCameras"})
            std::filesystem::create_directories(pluginDir + sub);
        std::filesystem::create_directories(aircraftDir);
        xphost::reset();
        xphost::setRoot(root);
        xphost::setUserAircraft("Aircraft/Test Plane/Cub.test.acf");
        overridePluginDirectory(pluginDir.c_str());
        setActiveFile(nullptr);
        CameraFile* head = cameraFileListHead();
        head->kind = 0;
        head->readFromPath = 0;
        head->savedCategory = 0;
        head->savedCamera = 0;
        clearWorkingSet();
    }

    void TearDown() override {
        // Leave the process as a fresh plug-in has it, for the tests that follow.
        overridePluginDirectory(nullptr);
        setActiveFile(nullptr);
        clearWorkingSet();
        settings() = builtInSettings();
        defaults() = builtInSettings();
        std::error_code ignored;
        std::filesystem::remove_all(root, ignored);
    }

    static void writeFile(const std::string& path, const std::string& content) {
        std::ofstream out(path, std::ios::binary);
        out << content;
    }
    static std::string readFile(const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }
    static bool exists(const std::string& path) { return std::filesystem::exists(path); }
    std::string perModelPath() const { return aircraftDir + "Vistarig_Cub.csv"; }
    std::string folderPath() const { return aircraftDir + "Vistarig.csv"; }
    static bool logHas(const std::string& text) { return xphost::logText().find(text) != std::string::npos; }
};
