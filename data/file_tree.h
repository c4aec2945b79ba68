// The file selector's folder tree: reading it from disk on a worker thread that can be
// cancelled, the lower-case filter over what was read, the one selected file, counts
// as the user reads them, and the check of a chosen camera file. No simulator calls
// here: the scan runs off the main thread.
#pragma once

#include <atomic>
#include <cstddef>
#include <string>
#include <thread>
#include <vector>

struct FileEntry {
    std::string name;       // as read
    std::string lowerName;  // for the filter
    bool selected = false;
    bool visible = true;
};

struct FileNode {
    bool hasMatch = true;  // this folder or one below holds a visible file
    std::vector<FileEntry> files;
    std::vector<FileNode> folders;
    std::string path;  // full, ending in "/"
    std::string name;  // the last element of path, as shown
};

// A typed root path as the tree uses it: backslashes become "/", blanks at both ends
// go, one trailing "/"; at most 2000 characters are taken.
std::string normaliseRootPath(const char* path);
// A folder node for a path that ends in "/".
FileNode makeFolderNode(const std::string& path);

// Reads node.path and everything below it, depth first, in the order the system lists
// them: folders (but "." and "..") become nodes, regular files entries; links and
// devices are skipped. Stops where it is once `cancel` is set; `count` goes up by one
// a file. Calls nothing of the simulator.
void scanFolder(FileNode& node, const std::atomic<bool>& cancel, std::atomic<int>& count);

// The filter in lower case over the tree already read: a file shows when its lower-case
// name holds it (every file for an empty filter), a folder when it or one below holds a
// shown file. Clears the selection.
void applyFilter(FileNode& root, const std::string& filter, std::string& selectedPath);
// A click on a file's selectable: selecting makes it the tree's one selected file and
// its full path `selectedPath`; deselecting leaves no path.
void selectFile(FileNode& root, const FileNode& folder, FileEntry& file, bool select, std::string& selectedPath);
void clearSelection(FileNode& node);

// 1234567 as "1,234,567".
std::string countWithSeparators(long long count);
// Bytes the tree holds on the heap, nodes, entries and names included.
size_t treeBytes(const FileNode& node);
// Files and folders below the node (the node itself not counted among the folders).
size_t treeFileCount(const FileNode& node);
size_t treeFolderCount(const FileNode& node);

// One scan of a tree on a worker. The worker writes `count` and `running`, the main
// thread writes `cancel`; the tree is the worker's until `running` is false.
struct FileScan {
    std::thread worker;
    std::atomic<int> count{0};
    std::atomic<bool> cancel{false};
    std::atomic<bool> running{false};
    // A worker still running when its owner goes is stopped and waited for, never left
    // to end the process.
    FileScan() = default;
    FileScan(const FileScan&) = delete;
    FileScan& operator=(const FileScan&) = delete;
    ~FileScan() {
        cancel.store(true);
        if (worker.joinable()) worker.join();
    }
};
// Waits for an earlier worker, then scans `root` and applies `filter` on a new one.
// False, with nothing running, when no thread could be started.
bool startScan(FileScan& scan, FileNode* root, const std::string& filter, std::string* selectedPath);
// Waits for the worker to end, if there is one.
void joinScan(FileScan& scan);

// Why a chosen file can't be imported as a camera file: "File does not exist", "Does not
// appear to be a valid Vistarig file" when its first line lacks the column names; empty
// when it can.
std::string cameraFileProblem(const char* path);
