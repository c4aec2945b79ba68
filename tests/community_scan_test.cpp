// The community scan thread: it analyses every file of the folder off the main thread,
// reports progress, refuses a second start while it runs, and never calls the simulator.
#include <sys/stat.h>

#include <chrono>
#include <fcntl.h>
#include <thread>

#include "data/camera_file.h"
#include "user_files_fixture.h"

namespace {

class CommunityScanThreadTest : public UserFilesTest {};

std::string csvRow(const std::string& aircraft, const std::string& author, int categoryIndex) {
    std::string line = "C,Cam";
    for (int c = 2; c < 70; ++c) {
        line += ",";
        if (c == 43) line += aircraft;
        else if (c == 44) line += author + " ";
        else if (c == 46) line += std::to_string(categoryIndex);
        else line += "0";
    }
    return line + "\n";
}

bool waitForScan(int seconds) {
    auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    while (communityScanProgress(nullptr, nullptr)) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

TEST_F(CommunityScanThreadTest, ScanAnalysesEveryFileAndIsJoinedAfterItsFlagFalls) {
    std::string folder = pluginDir + "CommunityAircraftCameras/";
    for (int i = 0; i < 30; ++i)
        writeFile(folder + "file" + std::to_string(100 + i) + ".csv",
                  std::string(cameraFileHeader()) + csvRow("Cub", "Pilot" + std::to_string(i), 0) +
                      csvRow("Cub", "Pilot" + std::to_string(i), i % 3));
    // A FIFO holds the thread in its open until the test lets it go, so the scan is
    // certainly running while the second start is tried.
    std::string fifo = folder + "zzz_waiting.csv";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);

    std::thread* scan = startCommunityScan();
    ASSERT_NE(scan, nullptr);
    int done = -1, total = -1;
    EXPECT_TRUE(communityScanProgress(&done, &total));
    EXPECT_EQ(total, 31);
    EXPECT_EQ(startCommunityScan(), nullptr);

    int writer = open(fifo.c_str(), O_WRONLY);  // blocks until the thread opens it
    ASSERT_GE(writer, 0);
    close(writer);
    ASSERT_TRUE(waitForScan(20));

    bool requested = false;
    serviceCommunityScan(scan, requested);
    EXPECT_EQ(scan, nullptr);
    communityScanProgress(&done, &total);
    EXPECT_EQ(done, 31);
    ASSERT_EQ(communityFileList().size(), 31u);
    const CommunityFile& first = communityFileList()[0];
    EXPECT_STREQ(first.file.fileName, "file100.csv");
    EXPECT_EQ(first.file.readFromPath, 1);
    EXPECT_EQ(first.file.cameraTotal, 2);
    EXPECT_EQ(first.file.categoryTotal, 1);
    EXPECT_STREQ(first.searchText, "CUB PILOT0 ");
    EXPECT_EQ(communityFileList()[2].file.categoryTotal, 3);
    EXPECT_EQ(communityFileCount("Cub"), 30);
    EXPECT_EQ(xphost::threadViolationCount(), 0);

    // A request starts a new scan from the flight loop's housekeeping.
    requested = true;
    std::filesystem::remove(fifo);
    serviceCommunityScan(scan, requested);
    ASSERT_NE(scan, nullptr);
    EXPECT_FALSE(requested);
    ASSERT_TRUE(waitForScan(20));
    serviceCommunityScan(scan, requested);
    EXPECT_EQ(scan, nullptr);
    EXPECT_EQ(communityFileList().size(), 30u);
}

TEST_F(CommunityScanThreadTest, EmptyOrMissingFolderGivesAnEmptyList) {
    std::filesystem::remove_all(pluginDir + "CommunityAircraftCameras");
    std::thread* scan = startCommunityScan();
    ASSERT_NE(scan, nullptr);
    ASSERT_TRUE(waitForScan(20));
    bool requested = false;
    serviceCommunityScan(scan, requested);
    EXPECT_TRUE(communityFileList().empty());
}

}  // namespace
