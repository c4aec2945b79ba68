// The file selector's tree without any window: root paths as typed, the lower-case
// filter over a tree already read, the one selected file, counts as shown, the check
// of a chosen camera file, and the scan on its worker thread (run again under
// ThreadSanitizer): what it takes from a real folder, and how soon Cancel stops it.
// VISTARIG_SCAN_FILES=200000 scans a tree of that many files (ten a folder) and prints
// the time and the tree's memory.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>

#include "data/file_tree.h"

namespace fs = std::filesystem;

namespace {

FileEntry entry(const std::string& name) {
    FileEntry file;
    file.name = name;
    for (char c : name) file.lowerName += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return file;
}

// Aircraft/
//   Cub/            Vistarig_Cub.csv, Cub.acf
//   Heavy/          heavy.acf
//     liveries/     vistarig_heavy_old.csv
//   Empty/          notes.txt
FileNode sampleTree() {
    FileNode root = makeFolderNode("/x/Aircraft/");
    FileNode cub = makeFolderNode("/x/Aircraft/Cub/");
    cub.files = {entry("Vistarig_Cub.csv"), entry("Cub.acf")};
    FileNode heavy = makeFolderNode("/x/Aircraft/Heavy/");
    heavy.files = {entry("heavy.acf")};
    FileNode liveries = makeFolderNode("/x/Aircraft/Heavy/liveries/");
    liveries.files = {entry("vistarig_heavy_old.csv")};
    heavy.folders.push_back(liveries);
    FileNode empty = makeFolderNode("/x/Aircraft/Empty/");
    empty.files = {entry("notes.txt")};
    root.folders = {cub, heavy, empty};
    return root;
}

TEST(FileTree, RootPathsAreTrimmedWithForwardSlashesAndOneTrailingSlash) {
    EXPECT_EQ(normaliseRootPath("C:\\X-Plane 12\\Aircraft\\ "), "C:/X-Plane 12/Aircraft/");
    EXPECT_EQ(normaliseRootPath("  /home/pilot/X-Plane/Aircraft\t"), "/home/pilot/X-Plane/Aircraft/");
    EXPECT_EQ(normaliseRootPath("/already/"), "/already/");
    EXPECT_EQ(normaliseRootPath(""), "/");
    EXPECT_EQ(normaliseRootPath(std::string(3000, 'a').c_str()).size(), 2001u) << "2000 taken, then the slash";
    EXPECT_EQ(makeFolderNode("/x/Aircraft/Cub/").name, "Cub");
    EXPECT_EQ(makeFolderNode("/").name, "/");
}

TEST(FileTree, CountsShowAThousandsSeparatorEveryThreeDigits) {
    EXPECT_EQ(countWithSeparators(0), "0");
    EXPECT_EQ(countWithSeparators(999), "999");
    EXPECT_EQ(countWithSeparators(1000), "1,000");
    EXPECT_EQ(countWithSeparators(200000), "200,000");
    EXPECT_EQ(countWithSeparators(1000000), "1,000,000");
    EXPECT_EQ(countWithSeparators(-12345), "-12,345");
}

TEST(FileTree, TheFilterIsLowerCaseAndShowsOnlyFoldersWithAMatchBelow) {
    FileNode root = sampleTree();
    std::string selected = "/x/Aircraft/Cub/Cub.acf";
    applyFilter(root, "VISTARIG_", selected);
    EXPECT_TRUE(selected.empty()) << "a filter clears the selection";
    EXPECT_TRUE(root.hasMatch);
    EXPECT_TRUE(root.folders[0].files[0].visible);
    EXPECT_FALSE(root.folders[0].files[1].visible);
    // Heavy holds no match itself, but its liveries do: it shows.
    EXPECT_TRUE(root.folders[1].hasMatch);
    EXPECT_FALSE(root.folders[1].files[0].visible);
    EXPECT_TRUE(root.folders[1].folders[0].files[0].visible) << "vistarig_ in lower case matches too";
    EXPECT_FALSE(root.folders[2].hasMatch);

    applyFilter(root, "", selected);
    EXPECT_TRUE(root.folders[2].hasMatch && root.folders[2].files[0].visible) << "no filter: every file";
    applyFilter(root, "no such file", selected);
    EXPECT_FALSE(root.hasMatch);
}

TEST(FileTree, AtMostOneFileIsSelectedAndDeselectingLeavesNoPath) {
    FileNode root = sampleTree();
    std::string selected;
    FileNode& cub = root.folders[0];
    FileNode& liveries = root.folders[1].folders[0];
    selectFile(root, cub, cub.files[0], true, selected);
    EXPECT_EQ(selected, "/x/Aircraft/Cub/Vistarig_Cub.csv");
    selectFile(root, liveries, liveries.files[0], true, selected);
    EXPECT_EQ(selected, "/x/Aircraft/Heavy/liveries/vistarig_heavy_old.csv");
    EXPECT_FALSE(cub.files[0].selected) << "the second file deselects the first";
    EXPECT_TRUE(liveries.files[0].selected);
    selectFile(root, liveries, liveries.files[0], false, selected);
    EXPECT_TRUE(selected.empty());
    EXPECT_FALSE(liveries.files[0].selected);

    selectFile(root, cub, cub.files[1], true, selected);
    applyFilter(root, "vistarig", selected);
    EXPECT_TRUE(selected.empty());
    EXPECT_FALSE(cub.files[1].selected) << "a filter leaves nothing selected";
}

class FileScanThreadTest : public ::testing::Test {
protected:
    fs::path folder;
    void SetUp() override {
        folder = fs::temp_directory_path() / ("vistarig-tree-" + std::to_string(::getpid()) + "-" +
                                              ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(folder);
        fs::create_directories(folder);
    }
    void TearDown() override { fs::remove_all(folder); }
    void write(const fs::path& path, const std::string& text) {
        fs::create_directories(path.parent_path());
        std::ofstream(path) << text;
    }
    // `files` files, ten a folder, in folders of a hundred subfolders each.
    void makeWideTree(int files) {
        const int folders = (files + 9) / 10;
        for (int f = 0; f < folders; ++f) {
            const fs::path dir = folder / ("group" + std::to_string(f / 100)) / ("plane" + std::to_string(f));
            fs::create_directories(dir);
            for (int i = 0; i < 10 && f * 10 + i < files; ++i)
                std::ofstream(dir / ("Vistarig_file" + std::to_string(i) + ".csv"));
        }
    }
};

TEST_F(FileScanThreadTest, CameraFilesWithoutColumnNamesOrMissingAreRefused) {
    write(folder / "good.csv", "Category Name,Camera Name,View ID\nCockpit,Pilot View,1\n");
    write(folder / "bom.csv", "\xEF\xBB\xBF" "Category Name,Camera Name\n");
    write(folder / "bad.csv", "Cockpit,Pilot View,1\nCategory Name\n");
    write(folder / "empty.csv", "");
    EXPECT_EQ(cameraFileProblem((folder / "good.csv").c_str()), "");
    EXPECT_EQ(cameraFileProblem((folder / "bom.csv").c_str()), "");
    EXPECT_EQ(cameraFileProblem((folder / "bad.csv").c_str()), "Does not appear to be a valid Vistarig file")
        << "the names must stand in the first line";
    EXPECT_EQ(cameraFileProblem((folder / "empty.csv").c_str()), "Does not appear to be a valid Vistarig file");
    EXPECT_EQ(cameraFileProblem((folder / "gone.csv").c_str()), "File does not exist");
}

TEST_F(FileScanThreadTest, ReadsFoldersAndRegularFilesAndSkipsTheRest) {
    write(folder / "Cub/Vistarig_Cub.csv", "x");
    write(folder / "Cub/Cub.acf", "x");
    write(folder / "Heavy/liveries/deep/er/Vistarig_Heavy.csv", "x");
    fs::create_directories(folder / "Empty");
    fs::create_symlink(folder / "Cub", folder / "link-to-cub");  // a link to a folder: no loop
    fs::create_symlink(folder / "Cub/Cub.acf", folder / "link.acf");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);

    FileNode root = makeFolderNode(normaliseRootPath(folder.c_str()));
    FileScan scan;
    std::string selected = "stale";
    ASSERT_TRUE(startScan(scan, &root, "vistarig_", &selected));
    joinScan(scan);
    EXPECT_FALSE(scan.running.load());
    EXPECT_EQ(scan.count.load(), 3);
    EXPECT_EQ(treeFileCount(root), 3u);
    EXPECT_EQ(treeFolderCount(root), 6u);  // Cub, Heavy, liveries, deep, er, Empty
    EXPECT_TRUE(selected.empty()) << "the worker's filter pass clears the selection";
    for (const FileNode& node : root.folders) {
        EXPECT_EQ(node.path, root.path + node.name + "/");
        if (node.name == "Empty") {
            EXPECT_FALSE(node.hasMatch);
        }
        if (node.name == "Heavy") {
            EXPECT_TRUE(node.hasMatch) << "a match four folders down";
        }
    }

    // A folder that can't be read gives an empty tree and a finished scan.
    FileNode missing = makeFolderNode((folder / "nowhere/").string());
    ASSERT_TRUE(startScan(scan, &missing, "", nullptr));
    joinScan(scan);
    EXPECT_EQ(scan.count.load(), 0);
    EXPECT_TRUE(missing.files.empty() && missing.folders.empty());
}

TEST_F(FileScanThreadTest, StopsSoonAfterCancelKeepingWhatItReadFiltered) {
    const char* asked = std::getenv("VISTARIG_SCAN_FILES");
    const int files = asked ? std::atoi(asked) : 5000;
    const auto madeFrom = std::chrono::steady_clock::now();
    makeWideTree(files);
    const double madeSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - madeFrom).count();

    // The whole tree first: its time and memory.
    FileNode whole = makeFolderNode(normaliseRootPath(folder.c_str()));
    FileScan scan;
    const auto from = std::chrono::steady_clock::now();
    ASSERT_TRUE(startScan(scan, &whole, "Vistarig_", nullptr));
    joinScan(scan);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - from).count();
    ASSERT_EQ(scan.count.load(), files);
    EXPECT_EQ(treeFileCount(whole), static_cast<size_t>(files));
    std::printf("scan of %s files in %zu folders: %.3f s (tree made in %.1f s); tree memory %.1f MB\n",
                countWithSeparators(files).c_str(), treeFolderCount(whole), seconds, madeSeconds,
                static_cast<double>(treeBytes(whole)) / 1e6);

    // Cancelled part way: the worker reads at most the entry it is on after the flag
    // falls (counted in files, so that a loaded machine doesn't decide the result).
    FileNode part = makeFolderNode(normaliseRootPath(folder.c_str()));
    ASSERT_TRUE(startScan(scan, &part, "file1", nullptr));
    while (scan.count.load() < files / 10 && scan.running.load()) std::this_thread::yield();
    ASSERT_TRUE(scan.running.load()) << "the scan ended before it could be cancelled";
    const auto cancelledAt = std::chrono::steady_clock::now();
    scan.cancel.store(true);
    const int countAtCancel = scan.count.load();
    while (scan.running.load() && std::chrono::steady_clock::now() - cancelledAt < std::chrono::seconds(10))
        std::this_thread::yield();
    const double stopMs =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - cancelledAt).count();
    std::printf("cancel stopped the worker in %.2f ms after %d files\n", stopMs, scan.count.load());
    joinScan(scan);
    EXPECT_LE(scan.count.load(), countAtCancel + 1) << "files read after the cancel";
    const size_t kept = treeFileCount(part);
    EXPECT_EQ(kept, static_cast<size_t>(scan.count.load()));
    EXPECT_LT(kept, static_cast<size_t>(files));
    // The filter ran over what was read: only "Vistarig_file1.csv" of each folder shows.
    size_t shown = 0;
    std::function<void(const FileNode&)> countShown = [&](const FileNode& node) {
        for (const FileEntry& file : node.files) shown += file.visible;
        for (const FileNode& child : node.folders) countShown(child);
    };
    countShown(part);
    EXPECT_GT(shown, 0u);
    EXPECT_LE(shown, kept / 10 + 1);
}

}  // namespace
