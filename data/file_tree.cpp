#include "data/file_tree.h"

#include <cstdio>
#include <cstring>
#include <system_error>

#include "platform/file_system.h"

namespace {

constexpr size_t kRootPathLimit = 2000;
constexpr size_t kFirstLineLimit = 2000;

std::string lowerCase(const std::string& text) {
    std::string lower = text;
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v'; }

// A string's heap block, if it has outgrown its own small buffer.
size_t heapBytes(const std::string& text) {
    return text.capacity() > std::string().capacity() ? text.capacity() + 1 : 0;
}

bool filterNode(FileNode& node, const std::string& filter) {
    node.hasMatch = false;
    for (FileEntry& file : node.files) {
        file.selected = false;
        file.visible = filter.empty() || file.lowerName.find(filter) != std::string::npos;
        node.hasMatch |= file.visible;
    }
    for (FileNode& folder : node.folders) node.hasMatch |= filterNode(folder, filter);
    return node.hasMatch;
}

}  // namespace

std::string normaliseRootPath(const char* path) {
    std::string text(path ? path : "");
    if (text.size() > kRootPathLimit) text.resize(kRootPathLimit);
    for (char& c : text)
        if (c == '\\') c = '/';
    size_t first = 0, last = text.size();
    while (first < last && isBlank(text[first])) ++first;
    while (last > first && isBlank(text[last - 1])) --last;
    text = text.substr(first, last - first);
    if (text.empty() || text.back() != '/') text += '/';
    return text;
}

FileNode makeFolderNode(const std::string& path) {
    FileNode node;
    node.path = path;
    size_t end = path.size();
    if (end > 0 && path[end - 1] == '/') --end;
    const size_t slash = path.rfind('/', end == 0 ? 0 : end - 1);
    const size_t start = slash == std::string::npos ? 0 : slash + 1;
    node.name = start < end ? path.substr(start, end - start) : path;
    return node;
}

void scanFolder(FileNode& node, const std::atomic<bool>& cancel, std::atomic<int>& count) {
    listFolder(node.path.c_str(), [&](const char* name, EntryKind kind) {
        if (cancel.load(std::memory_order_relaxed)) return false;
        switch (kind) {
            case EntryKind::folder:
                node.folders.push_back(makeFolderNode(node.path + name + "/"));
                // A later push may move this child, but only after its scan is done.
                scanFolder(node.folders.back(), cancel, count);
                break;
            case EntryKind::file: {
                FileEntry file;
                file.name = name;
                file.lowerName = lowerCase(file.name);
                node.files.push_back(std::move(file));
                count.fetch_add(1, std::memory_order_relaxed);
                break;
            }
            default: break;
        }
        return true;
    });
    // The tree stays in memory for as long as the selector is open: no growth slack.
    node.files.shrink_to_fit();
    node.folders.shrink_to_fit();
}

void applyFilter(FileNode& root, const std::string& filter, std::string& selectedPath) {
    selectedPath.clear();
    filterNode(root, lowerCase(filter));
}

void clearSelection(FileNode& node) {
    for (FileEntry& file : node.files) file.selected = false;
    for (FileNode& folder : node.folders) clearSelection(folder);
}

void selectFile(FileNode& root, const FileNode& folder, FileEntry& file, bool select, std::string& selectedPath) {
    if (!select) {
        file.selected = false;
        selectedPath.clear();
        return;
    }
    clearSelection(root);
    file.selected = true;
    selectedPath = folder.path + file.name;
}

std::string countWithSeparators(long long count) {
    const bool negative = count < 0;
    unsigned long long value = negative ? 0ULL - static_cast<unsigned long long>(count) : count;
    std::string digits = std::to_string(value);
    std::string out;
    for (size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0) out += ',';
        out += digits[i];
    }
    return negative ? "-" + out : out;
}

size_t treeBytes(const FileNode& node) {
    size_t bytes = node.files.capacity() * sizeof(FileEntry) + node.folders.capacity() * sizeof(FileNode);
    bytes += heapBytes(node.path) + heapBytes(node.name);
    for (const FileEntry& file : node.files) bytes += heapBytes(file.name) + heapBytes(file.lowerName);
    for (const FileNode& folder : node.folders) bytes += treeBytes(folder);
    return bytes;
}

size_t treeFileCount(const FileNode& node) {
    size_t count = node.files.size();
    for (const FileNode& folder : node.folders) count += treeFileCount(folder);
    return count;
}

size_t treeFolderCount(const FileNode& node) {
    size_t count = node.folders.size();
    for (const FileNode& folder : node.folders) count += treeFolderCount(folder);
    return count;
}

bool startScan(FileScan& scan, FileNode* root, const std::string& filter, std::string* selectedPath) {
    joinScan(scan);
    scan.count.store(0);
    // Cleared here, before the worker runs, so that a Cancel pressed at once isn't lost.
    scan.cancel.store(false);
    scan.running.store(true);
    try {
        scan.worker = std::thread([&scan, root, filter, selectedPath] {
            scanFolder(*root, scan.cancel, scan.count);
            // A cancelled scan keeps what it read, and the filter runs over that.
            std::string unused;
            applyFilter(*root, filter, selectedPath ? *selectedPath : unused);
            scan.running.store(false, std::memory_order_release);
        });
    } catch (const std::system_error&) {
        scan.running.store(false);
        return false;
    }
    return true;
}

void joinScan(FileScan& scan) {
    if (scan.worker.joinable()) scan.worker.join();
}

std::string cameraFileProblem(const char* path) {
    std::FILE* file = std::fopen(path, "rb");
    if (!file) return "File does not exist";
    char line[kFirstLineLimit + 1] = {};
    const bool read = std::fgets(line, sizeof line, file) != nullptr;
    std::fclose(file);
    if (!read || !std::strstr(line, "Category Name")) return "Does not appear to be a valid Vistarig file";
    return std::string();
}
