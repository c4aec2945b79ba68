// Community files against a real FTP server on loopback: the names and the readers of
// what a server sends, sharing a camera file, the updater's check and update jobs, and
// what a broken or hostile server can and cannot do to the user's disk and time.
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <thread>

#include "community/community_names.h"
#include "community/ftp_session.h"
#include "community/server_text.h"
#include "community/share.h"
#include "community/updater_jobs.h"
#include "data/camera_file.h"
#include "support/community_server_fixture.h"
#include "user_files_fixture.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// ---------------------------------------------------------------- names and server text

TEST(CommunityNames, TextHashSignedBytesAndSharedNames) {
    EXPECT_EQ(textHash("abc"), 25284u);
    EXPECT_EQ(textHash(""), 0u);
    // A byte above 127 counts as negative.
    EXPECT_LT(static_cast<int32_t>(textHash("a\xE9")), static_cast<int32_t>(textHash("a")));
    EXPECT_EQ(textHash("\xFF"), 0xFFFFFFFFu);     // wraps round
    // Same second, same path and version: the same name. An empty version gives 0.
    EXPECT_EQ(sharedFileName(1700000000, "/A/Vistarig_C.csv", "v1", "Vistarig_C.csv"),
              sharedFileName(1700000000, "/A/Vistarig_C.csv", "v1", "Vistarig_C.csv"));
    EXPECT_EQ(sharedFileName(7, "abc", "", "Vistarig_C.csv"), "7252840_Vistarig_C.csv");
}

TEST(CommunityNames, OnlyNamesThatStayInTheFolderAreSafe) {
    for (const char* bad : {"", "../x.csv", "..", "a/b.csv", "/etc/passwd", "a\\b.csv", "C:x.csv", "tab\t.csv",
                            "del\x7f.csv", ".hidden", "a..b.csv"})
        EXPECT_FALSE(isSafeCommunityName(bad)) << bad;
    EXPECT_FALSE(isSafeCommunityName(std::string(256, 'x')));
    EXPECT_TRUE(isSafeCommunityName(std::string(255, 'x')));
    EXPECT_TRUE(isSafeCommunityName("1700000000123_Vistarig_Cessna 172.csv"));
}

TEST(CommunityServerText, ListingTakesPrefixedSafeNamesCaseBlindInAnyPieces) {
    const std::string text =
        "Vistarig/CommunityFiles/b.csv\r\nnoise\r\nVistarig/CommunityFiles/A.csv\r\n"
        "Vistarig/CommunityFiles/a.CSV\r\nVistarig/CommunityFiles/../up.csv\r\nVistarig/CommunityFiles/last.csv";
    for (size_t piece : {size_t(1), size_t(7), text.size()}) {
        ServerListing listing;
        for (size_t at = 0; at < text.size(); at += piece)
            feedListing(listing, text.data() + at, std::min(piece, text.size() - at));
        finishListing(listing);
        EXPECT_EQ(listing.serverCount, 4) << "a duplicate counts, the refused name doesn't";
        EXPECT_EQ(listing.unsafeNames, 1);
        ASSERT_EQ(listing.files.size(), 3u);
        EXPECT_EQ(listing.files.at("A.CSV").entry.name, "A.csv") << "the first of two case twins stays";
        EXPECT_TRUE(listing.files.count("LAST.CSV"));
        EXPECT_FALSE(listing.tooLong);
    }
}

TEST(CommunityServerText, EndlessLinesAndHugeListingsAreBounded) {
    ServerListing listing;
    const std::string block(65536, 'A');
    int fed = 0;
    while (feedListing(listing, block.data(), block.size()) && fed < 10000) ++fed;
    EXPECT_TRUE(listing.tooLong);
    EXPECT_LT(fed, 200) << "stops after its byte bound";
    EXPECT_LE(listing.lines.partial.size(), 1999u);

    ServerListing many;
    std::string lines;
    for (int i = 0; i < 25000; ++i) lines += "Vistarig/CommunityFiles/" + std::to_string(i) + ".csv\n";
    feedListing(many, lines.data(), lines.size());
    EXPECT_TRUE(many.tooLong);
    EXPECT_LE(many.files.size(), ServerListing::kMaxNames);

    NewsText news;
    const std::string text = "First\n\n\r\n" + std::string(5000, 'x') + "\nhttps://example.org/x\n";
    feedNews(news, text.data(), text.size());
    finishNews(news);
    ASSERT_EQ(news.lines.size(), 3u);
    EXPECT_EQ(news.lines[1].size(), 1999u) << "a long line is cut, its rest skipped";
    EXPECT_EQ(news.lines[2], "https://example.org/x");
}

// ---------------------------------------------------------------- against the server

// Everything under a folder, file by file, with its bytes, for before-and-after checks.
std::map<std::string, std::string> snapshot(const std::string& folder) {
    std::map<std::string, std::string> files;
    std::error_code ignored;
    for (auto it = std::filesystem::recursive_directory_iterator(folder, ignored);
         it != std::filesystem::recursive_directory_iterator(); it.increment(ignored)) {
        if (!it->is_regular_file(ignored)) continue;
        std::ifstream in(it->path(), std::ios::binary);
        files[it->path().string()] = std::string(std::istreambuf_iterator<char>(in), {});
    }
    return files;
}

class CommunityServerTest : public UserFilesTest {
protected:
    static LoopbackFtpServer* server;
    static void SetUpTestSuite() {
        server = new LoopbackFtpServer;
        std::string error;
        if (server->start(true, error)) return;
        delete server;
        server = nullptr;
        FAIL() << "no loopback FTP server: " << error;
    }
    static void TearDownTestSuite() {
        if (server) server->stop();
        delete server;
        server = nullptr;
    }
    void SetUp() override {
        UserFilesTest::SetUp();
        ASSERT_NE(server, nullptr);
        server->setMode("normal");
        server->clearFiles();
        xphost::setCommunityServer("127.0.0.1:" + std::to_string(server->port));
    }
    void TearDown() override {
        server->setMode("normal");
        UserFilesTest::TearDown();
    }
    std::string localFolder() const { return pluginDir + "CommunityAircraftCameras"; }
    void serverFile(const std::string& name, const std::string& text = "C,Cam\n") const {
        writeFile(server->filesFolder() + name, text);
    }
    std::vector<std::string> serverNames() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(server->filesFolder()))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
    // A set ready to share: the aircraft's new file with an author and a version.
    void readyToShare(const char* version) {
        if (!activeFile()) {
            ASSERT_TRUE(loadCameraFile(nullptr));
        }
        std::snprintf(activeFile()->author, sizeof activeFile()->author, "Tester");
        std::snprintf(activeFile()->fileVersion, sizeof activeFile()->fileVersion, "%s", version);
    }
    std::shared_ptr<UpdaterJob> newJob() const {
        auto job = std::make_shared<UpdaterJob>();
        job->localFolder = localFolder();
        return job;
    }
};
LoopbackFtpServer* CommunityServerTest::server = nullptr;

TEST_F(CommunityServerTest, ShareStoresThenReplacesTheEarlierUploadAndRecordsIt) {
    serverFile("someone_else.csv");
    readyToShare("v1");
    const ShareOutcome first = shareCameraFile();
    ASSERT_TRUE(first.sent) << first.logLine;
    EXPECT_EQ(first.title, "Thank You");
    EXPECT_NE(first.serverName.find("_Vistarig_Cub.csv"), std::string::npos);
    EXPECT_EQ(serverNames(), (std::vector<std::string>{first.serverName, "someone_else.csv"}))
        << "the first upload deletes nothing";
    EXPECT_EQ(readFile(server->filesFolder() + first.serverName), readFile(perModelPath()));
    SharedInfo info = readSharedInfo();
    EXPECT_STREQ(info.version, "v1");
    EXPECT_EQ(info.fileName, first.serverName);

    std::this_thread::sleep_for(milliseconds(1100));  // a new second: a new name
    readyToShare("v2");
    const ShareOutcome second = shareCameraFile();
    ASSERT_TRUE(second.sent);
    EXPECT_EQ(serverNames(), (std::vector<std::string>{second.serverName, "someone_else.csv"}));
    EXPECT_EQ(std::string(readSharedInfo().fileName), second.serverName);

    // A refused store leaves the server file and the shared-info file as they were.
    server->setMode("refuse-store");
    readyToShare("v3");
    const ShareOutcome refused = shareCameraFile();
    EXPECT_FALSE(refused.sent);
    EXPECT_EQ(refused.title, "Error");
    EXPECT_EQ(refused.text, "Unable to send aircraft file to the community server");
    EXPECT_EQ(serverNames(), (std::vector<std::string>{second.serverName, "someone_else.csv"}));
    EXPECT_STREQ(readSharedInfo().version, "v2");
}

TEST_F(CommunityServerTest, ShareReportsAnUnreachableServerAndABannerThatNeverComesWithinTenSeconds) {
    readyToShare("v1");
    xphost::setCommunityServer("127.0.0.1:1");
    ShareOutcome outcome = shareCameraFile();
    EXPECT_FALSE(outcome.sent);
    EXPECT_EQ(outcome.text, "Unable to connect to the community file server");
    EXPECT_FALSE(readSharedInfo().present);

    xphost::setCommunityServer("127.0.0.1:" + std::to_string(server->port));
    server->setMode("stall-banner");
    const auto before = snapshot(root);
    outcome = shareCameraFile();
    EXPECT_FALSE(outcome.sent);
    EXPECT_EQ(outcome.text, "Unable to connect to the community file server");
    EXPECT_NE(outcome.logLine.find("did not answer within 10 seconds"), std::string::npos);
    EXPECT_LE(outcome.waited.count(), 10500) << "the worst stall of the simulator";
    EXPECT_GE(outcome.waited.count(), 9900);
    std::printf("[ figures  ] share against a silent server held the main thread %lld ms\n",
                static_cast<long long>(outcome.waited.count()));
    EXPECT_EQ(snapshot(root), before);
}

TEST_F(CommunityServerTest, CheckComparesCaseBlindAndUpdateDeletesThenDownloadsWithARescan) {
    std::filesystem::create_directories(server->folder + "/Vistarig");
    writeFile(server->folder + "/Vistarig/Versions.txt", "News one\n\nSee https://example.org/v\n");
    serverFile("Same.csv");
    serverFile("new.csv", "C,New camera\n");
    writeFile(localFolder() + "/SAME.csv", "local");
    writeFile(localFolder() + "/old.csv", "gone");

    auto job = newJob();
    runUpdaterCheck(*job);
    ASSERT_EQ(job->state, UpdaterJob::checkDone) << job->errorText;
    EXPECT_EQ(job->newsLines(), (std::vector<std::string>{"News one", "See https://example.org/v"}));
    EXPECT_EQ(job->serverCount, 2);
    EXPECT_EQ(job->localCount, 2);
    EXPECT_EQ(job->filesToDownload, std::vector<std::string>{"new.csv"});
    EXPECT_EQ(job->filesToRemove, std::vector<std::string>{"old.csv"});

    runUpdaterUpdate(*job);
    EXPECT_EQ(job->state, UpdaterJob::complete) << job->errorText;
    EXPECT_EQ(job->processed, 2);
    EXPECT_EQ(job->rescanWanted, 1);
    EXPECT_FALSE(exists(localFolder() + "/old.csv"));
    EXPECT_EQ(readFile(localFolder() + "/new.csv"), "C,New camera\n");
    EXPECT_EQ(readFile(localFolder() + "/SAME.csv"), "local") << "same name but for case: the same file";

    auto again = newJob();
    runUpdaterCheck(*again);
    EXPECT_EQ(again->state, UpdaterJob::checkDone);
    EXPECT_TRUE(again->filesToDownload.empty());
    EXPECT_TRUE(again->filesToRemove.empty());
}

TEST_F(CommunityServerTest, CancelDuringRemovalsAndDuringATricklingDownloadEndsQuicklyAndLeavesNoPart) {
    writeFile(localFolder() + "/one.csv", "1");
    auto job = newJob();
    job->filesToRemove = {"one.csv"};
    job->cancelRequested = 1;
    runUpdaterUpdate(*job);
    EXPECT_EQ(job->state, UpdaterJob::canceled);
    EXPECT_TRUE(exists(localFolder() + "/one.csv"));
    EXPECT_EQ(job->rescanWanted, 0);

    serverFile("slow.csv", std::string(5000, 'x'));
    server->setMode("trickle");
    job = newJob();
    job->filesToDownload = {"slow.csv"};
    job->markRunning();
    std::thread worker([job] {
        runUpdaterUpdate(*job);
        job->markFinished();
    });
    std::this_thread::sleep_for(milliseconds(500));
    const auto cancelAt = steady_clock::now();
    job->cancelRequested = 1;
    const bool ended = job->waitUntilFinished(milliseconds(2000));
    const auto took = std::chrono::duration_cast<milliseconds>(steady_clock::now() - cancelAt).count();
    EXPECT_TRUE(ended) << "Cancel waited " << took << " ms";
    worker.join();
    EXPECT_EQ(job->state, UpdaterJob::canceled);
    EXPECT_EQ(job->rescanWanted, 0);
    for (const auto& entry : std::filesystem::directory_iterator(localFolder()))
        EXPECT_EQ(entry.path().filename(), "one.csv") << "no partial file";
}

TEST_F(CommunityServerTest, FailedDownloadReportsAndStillRescansRemovalsNeedNoServer) {
    serverFile("a.csv", std::string(20000, 'a'));
    serverFile("b.csv");
    server->setMode("drop");
    auto job = newJob();
    job->filesToDownload = {"a.csv", "b.csv"};
    runUpdaterUpdate(*job);
    EXPECT_EQ(job->state, UpdaterJob::failed);
    EXPECT_EQ(job->errorText.rfind("Unable to get aircraft file, a.csv, from the community server, error: ", 0), 0u)
        << job->errorText;
    EXPECT_EQ(job->rescanWanted, 1);
    for (const auto& entry : std::filesystem::directory_iterator(localFolder()))
        ADD_FAILURE() << "left behind: " << entry.path() << " " << entry.file_size() << " bytes";

    writeFile(localFolder() + "/old.csv", "x");
    xphost::setCommunityServer("127.0.0.1:1");
    job = newJob();
    job->filesToRemove = {"old.csv"};
    runUpdaterUpdate(*job);
    EXPECT_EQ(job->state, UpdaterJob::complete);
    EXPECT_EQ(job->rescanWanted, 1);

    writeFile(localFolder() + "/kept.csv", "x");
    job = newJob();
    runUpdaterCheck(*job);
    EXPECT_EQ(job->state, UpdaterJob::failed);
    EXPECT_EQ(job->errorText, "Unable to connect to the community file server: ");
    EXPECT_EQ(job->localCount, 1);
}

// What a hostile server tries: nothing outside the community folder changes, nothing
// partial stays, every bound holds, and every job ends.
TEST_F(CommunityServerTest, HostileServersCannotReachOutsideTheFolderNorFillTheDisk) {
    std::filesystem::create_directories(server->folder + "/Vistarig");
    writeFile(server->folder + "/Vistarig/Versions.txt", "news\n");
    serverFile("good.csv", "C,Good\n");
    serverFile("big.csv", "C,Big\n");
    writeFile(root + "escaped.csv", "mine");
    const auto outside = [&] {
        auto all = snapshot(root);
        for (auto it = all.begin(); it != all.end();)
            it = it->first.rfind(localFolder(), 0) == 0 ? all.erase(it) : std::next(it);
        return all;
    };
    const auto before = outside();

    server->setMode("bad-names");
    auto job = newJob();
    runUpdaterCheck(*job);
    EXPECT_EQ(job->state, UpdaterJob::checkDone) << job->errorText;
    EXPECT_EQ(job->refusedNames, 9);
    EXPECT_EQ(job->filesToDownload, std::vector<std::string>{"good.csv"});
    server->setMode("normal");
    runUpdaterUpdate(*job);
    EXPECT_EQ(job->state, UpdaterJob::complete) << job->errorText;

    server->setMode("many-names");
    job = newJob();
    runUpdaterCheck(*job);
    EXPECT_EQ(job->state, UpdaterJob::failed);
    EXPECT_NE(job->errorText.find("longer than 20000 names"), std::string::npos);
    EXPECT_TRUE(job->filesToRemove.size() <= 1u);

    server->setMode("endless-lines");
    job = newJob();
    const auto start = steady_clock::now();
    runUpdaterCheck(*job);
    EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(10));
    EXPECT_EQ(job->state, UpdaterJob::failed);
    const auto news = job->newsLines();
    ASSERT_FALSE(news.empty());
    EXPECT_LE(news.front().size(), 1999u);
    EXPECT_EQ(news.back(), "(The rest of the news was too long to show.)");

    server->setMode("huge-file");
    job = newJob();
    job->filesToDownload = {"big.csv"};
    runUpdaterUpdate(*job);
    EXPECT_EQ(job->state, UpdaterJob::failed);
    EXPECT_NE(job->errorText.find("larger than a camera file can be"), std::string::npos) << job->errorText;

    EXPECT_EQ(outside(), before) << "nothing outside the community folder changed";
    std::vector<std::string> local;
    for (const auto& entry : std::filesystem::directory_iterator(localFolder()))
        local.push_back(entry.path().filename().string());
    EXPECT_EQ(local, std::vector<std::string>{"good.csv"}) << "no partial or refused file";
}

// The threads of the updater, for ThreadSanitizer too: the panel's side reads the
// state, counts and news while the check runs, and gives up waiting on a silent server.
TEST_F(CommunityServerTest, UpdaterThreadsHandOverAndASilentServerIsLeftBehindInTime) {
    std::filesystem::create_directories(server->folder + "/Vistarig");
    writeFile(server->folder + "/Vistarig/Versions.txt", "line 1\nline 2\n");
    serverFile("x.csv");
    auto job = newJob();
    job->markRunning();
    std::thread worker([job] {
        runUpdaterCheck(*job);
        job->markFinished();
    });
    size_t seen = 0;
    while (job->state < UpdaterJob::checkDone) {
        seen = std::max(seen, job->newsLines().size());
        (void)job->serverCount.load();
        std::this_thread::yield();
    }
    EXPECT_EQ(job->filesToDownload, std::vector<std::string>{"x.csv"});
    EXPECT_TRUE(job->waitUntilFinished(milliseconds(2000)));
    worker.join();

    server->setMode("stall-reply");
    job = newJob();
    job->markRunning();
    worker = std::thread([job] {
        runUpdaterCheck(*job);
        job->markFinished();
    });
    const auto start = steady_clock::now();
    job->cancelRequested = 1;
    EXPECT_FALSE(job->waitUntilFinished(milliseconds(2000)));
    EXPECT_LT(steady_clock::now() - start, milliseconds(2200));
    worker.detach();  // ends when the server goes at the end of the suite
}

}  // namespace
