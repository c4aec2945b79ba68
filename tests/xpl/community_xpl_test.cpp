// Community files as a new user meets them, through the runner, the real .xpl and the
// panel driver (tests/scenarios/community_share.scn) against tools/community-server on
// loopback: the default aircraft's file shared, seen on the server, fetched by the
// updater, and imported into a second aircraft.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "../support/community_server_fixture.h"

namespace fs = std::filesystem;

namespace {

TEST(CommunityShare, ANewUserSharesUpdatesAndImportsIntoASecondAircraft) {
    LoopbackFtpServer server;
    std::string error;
    ASSERT_TRUE(server.start(false, error)) << error;
    fs::path work = fs::temp_directory_path() / ("vistarig-community-" + std::to_string(::getpid()));
    fs::remove_all(work);
    fs::create_directories(work / "Aircraft/Second");
    std::ofstream(work / "Aircraft/Second/Second.acf") << "I\n1100 Version\n";
    std::ofstream(work / "Aircraft/Second/Vistarig_Second.csv")
        << "Category Name,Camera Name,View ID,X,Y,Z,heading,pitch,TrackIR Enabled,Smooth Transition\n"
           "Cockpit,Own View,1,-0.3,1.05,0.35,0,0,FALSE,FALSE\n";

    std::ifstream in(std::string(VISTARIG_SOURCE_DIR) + "/tests/scenarios/community_share.scn");
    std::stringstream scenario;
    scenario << "community_server 127.0.0.1:" << server.port << "\n" << in.rdbuf();
    const fs::path script = work / "community_share.scn";
    std::ofstream(script) << scenario.str();

    const std::string command =
        std::string("'") + VISTARIG_SIM_PATH + "' '" + script.string() + "' --work '" + work.string() + "' 2>&1";
    std::FILE* pipe = ::popen(command.c_str(), "r");
    ASSERT_TRUE(pipe);
    std::string output;
    char buffer[4096];
    while (std::fgets(buffer, sizeof buffer, pipe)) output += buffer;
    const int status = ::pclose(pipe);
    EXPECT_EQ(status, 0) << output;

    int shared = 0;
    for (const auto& entry : fs::directory_iterator(server.filesFolder())) {
        ++shared;
        EXPECT_NE(entry.path().filename().string().find("_Vistarig_Cessna_172SP.csv"), std::string::npos);
    }
    EXPECT_EQ(shared, 1) << "the file stands on the server";
    for (const char* picture : {"community-share.png", "community-updater.png", "community-browse.png"})
        EXPECT_NE(output.find(picture), std::string::npos) << picture;
    server.stop();
    if (!HasFailure()) fs::remove_all(work);
}

}  // namespace
