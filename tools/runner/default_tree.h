// The embedded default X-Plane tree of the runner: every file as {relative path,
// content}. A path ending in "/" is a folder. Add entries to the table in
// default_tree.cpp; the runner writes them all before it loads the plug-in.
#pragma once

#include <string>

struct TreeFile {
    const char* path;
    const char* content;
};

extern const TreeFile defaultTreeFiles[];
extern const int defaultTreeFileCount;

// The user's aircraft of the default tree, relative to the root.
extern const char* const defaultAircraftPath;

// Writes the table under root (which ends with "/"), plus the panels' font when the
// system has it. False with a message on the first file that can't be written.
bool writeDefaultTree(const std::string& root, std::string& error);
