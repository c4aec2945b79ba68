// Scenario verbs for the plug-in's files: save and reload the camera set through the
// plug-in's own commands, and look into what landed on disk.
//   save_cameras                       KVT/Vistarig/Save_All_Cameras
//   reload_cameras                     KVT/Vistarig/Restore_All_Cameras
//   expect_file_contains <path> <text> the file (relative to the X-Plane folder) holds text
//   expect_file_missing <path>         no such file
//   copy_file <from> <to>              copies a file, making the folders of <to>
//   remove_file <path>                 removes a file (a before_load section: a tree without it)
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "host/host.h"

namespace {

std::string runPluginCommand(const char* command) {
    if (!xphost::commandExists(command)) return std::string("the plug-in has no command ") + command;
    xphost::runCommand(command, xphost::Phase::Begin);
    xphost::runCommand(command, xphost::Phase::End);
    return std::string();
}

std::string fullPath(const std::string& path) {
    return !path.empty() && path[0] == '/' ? path : xphost::root() + path;
}

xphost::ScenarioVerbRegistration saveVerb("save_cameras", "save_cameras", [](xphost::ScenarioLine&) {
    return runPluginCommand("KVT/Vistarig/Save_All_Cameras");
});

xphost::ScenarioVerbRegistration reloadVerb("reload_cameras", "reload_cameras", [](xphost::ScenarioLine&) {
    return runPluginCommand("KVT/Vistarig/Restore_All_Cameras");
});

xphost::ScenarioVerbRegistration containsVerb(
    "expect_file_contains", "expect_file_contains <path> <text...>", [](xphost::ScenarioLine& line) -> std::string {
        if (line.args.size() < 3) return "usage: expect_file_contains <path> <text...>";
        std::string text = line.args[2];
        for (size_t i = 3; i < line.args.size(); ++i) text += " " + line.args[i];
        std::ifstream file(fullPath(line.args[1]), std::ios::binary);
        if (!file) return "cannot read " + line.args[1];
        std::stringstream content;
        content << file.rdbuf();
        if (content.str().find(text) == std::string::npos) return line.args[1] + " does not hold \"" + text + "\"";
        if (line.out) *line.out << "ok " << line.args[1] << " holds \"" << text << "\"\n";
        return std::string();
    });

xphost::ScenarioVerbRegistration missingVerb(
    "expect_file_missing", "expect_file_missing <path>", [](xphost::ScenarioLine& line) -> std::string {
        if (line.args.size() != 2) return "usage: expect_file_missing <path>";
        std::ifstream file(fullPath(line.args[1]));
        if (file) return line.args[1] + " exists";
        if (line.out) *line.out << "ok " << line.args[1] << " is missing\n";
        return std::string();
    });

xphost::ScenarioVerbRegistration copyVerb(
    "copy_file", "copy_file <from> <to>", [](xphost::ScenarioLine& line) -> std::string {
        if (line.args.size() != 3) return "usage: copy_file <from> <to>";
        const std::filesystem::path to = fullPath(line.args[2]);
        std::error_code error;
        std::filesystem::create_directories(to.parent_path(), error);
        std::filesystem::copy_file(fullPath(line.args[1]), to, std::filesystem::copy_options::overwrite_existing,
                                   error);
        if (error) return "cannot copy " + line.args[1] + " to " + line.args[2] + ": " + error.message();
        return std::string();
    });

xphost::ScenarioVerbRegistration removeVerb(
    "remove_file", "remove_file <path>", [](xphost::ScenarioLine& line) -> std::string {
        if (line.args.size() != 2) return "usage: remove_file <path>";
        std::error_code error;
        if (!std::filesystem::remove(fullPath(line.args[1]), error) || error)
            return "cannot remove " + line.args[1] + (error ? ": " + error.message() : std::string());
        return std::string();
    });

}  // namespace
