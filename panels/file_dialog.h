// FileDialog: the plug-in's own file chooser, since the simulator offers none. It shows
// the folder tree under a root path with the files that match a filter, reads the tree
// on a worker thread while a modal count with "Cancel" stands in front, and lets the
// user pick at most one file. Its owner polls `IsVisible`, `cancelled` and `opened`,
// then takes `GetSelectedPath` and destroys it.
#pragma once

#include <memory>
#include <string>

#include "data/file_tree.h"
#include "panels/kvt_im_window.h"

class FileDialog : public KvtImWindow {
public:
    FileDialog(int left, int top, int right, int bottom, int decoration);
    ~FileDialog() override;

    void ConfigureContext() override;
    void BuildContents() override;
    // Closed by the simulator's close box: the owner stops waiting.
    void OnHidden() override { cancelled = true; }

    // A new tree at `path` (the scan starts in the next frame) and the filter box.
    void Open(const char* path, const char* filter);
    std::string GetSelectedPath() const { return selectedPath.substr(0, 2000); }

    bool cancelled = false;  // "Cancel", or the window hidden
    bool opened = false;     // "Open"
    // scanCount, cancelScan, scanRunning and the worker.
    FileScan scan;
    std::unique_ptr<FileNode> root;  // null before the first Open
    std::string selectedPath;        // the worker's while the scan runs
    int frameCount = 0;              // frames since Open
    char filter[200] = {};
    char rootPath[2000] = {};

private:
    void StartScan();
    void DrawNode(FileNode& node, bool isRoot);
};

// Hidden, 600 by 500, placed on the primary monitor; the caller's ImGui context stays
// current, as both may run inside another panel's frame.
FileDialog* createFileDialog();
void destroyFileDialog(FileDialog* dialog);
