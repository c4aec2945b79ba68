// The Windows code paths, run under Wine: the path helpers with native paths, the
// file writer and folder listing on Windows' file system, and one smoke test for each
// Windows facility of platform/ (registry, library loading, key state, clipboard,
// window enumeration and the top-most flag, sockets).
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <string>

#include "data/aircraft_files.h"
#include "data/file_tree.h"
#include "data/kept_copies.h"
#include "data/text_io.h"
#include "platform/clipboard.h"
#include "platform/file_system.h"
#include "platform/library_loader.h"
#include "platform/middle_button.h"
#include "platform/network.h"
#include "platform/registry.h"
#include "platform/window_handles.h"

namespace {

std::string freshFolder(const char* name) {
    char temp[MAX_PATH];
    GetTempPathA(sizeof temp, temp);
    std::string folder = std::string(temp) + "vistarig-" + name + "-" + std::to_string(GetCurrentProcessId()) + "\\";
    CreateDirectoryA(folder.c_str(), nullptr);
    return folder;
}

std::string runnerFolder() {
    char path[MAX_PATH] = {};
    std::string text(path, GetModuleFileNameA(nullptr, path, sizeof path));
    return text.substr(0, text.find_last_of('\\') + 1);
}

}  // namespace

// ---------------------------------------------------------------- native paths

TEST(NativePathsTest, PluginFolderFromWhatXPlaneReportsOnWindows) {
    std::string folder;
    ASSERT_TRUE(pluginDirectoryFromPath("C:\\X-Plane 12\\Resources\\plugins\\Vistarig\\win_x64\\Vistarig.xpl", folder));
    EXPECT_EQ(folder, "C:\\X-Plane 12\\Resources\\plugins\\Vistarig\\");
    // Mixed separators, as a plug-in's own additions make them.
    ASSERT_TRUE(pluginDirectoryFromPath("D:/Sims/X-Plane 12/Resources\\plugins\\Vistarig/win_x64/Vistarig.xpl", folder));
    EXPECT_EQ(folder, "D:/Sims/X-Plane 12/Resources\\plugins\\Vistarig/");
    // A folder merely ending in "plugins", or no folder after it, is no plug-in folder.
    EXPECT_FALSE(pluginDirectoryFromPath("C:\\myplugins\\Vistarig\\win_x64\\Vistarig.xpl", folder));
    EXPECT_FALSE(pluginDirectoryFromPath("C:\\X-Plane 12\\Resources\\plugins\\\\Vistarig.xpl", folder));
    EXPECT_FALSE(pluginDirectoryFromPath("C:\\X-Plane 12\\Resources\\plugins\\Vistarig.xpl", folder));
}

TEST(NativePathsTest, BackupAndKeptCopyNamesFromBackslashedPaths) {
    EXPECT_EQ(backupNameFor("C:\\X-Plane 12\\Aircraft\\Laminar Research\\Cessna 172 SP\\Vistarig_Cessna_172SP.csv"),
              "Laminar Research_Cessna 172 SP_Vistarig_Cessna_172SP.csv");
    EXPECT_EQ(backupNameFor("C:\\X-Plane 12\\Aircraft/Extra\\Vistarig_Kite.csv"), "Extra_Vistarig_Kite.csv");
    EXPECT_EQ(backupNameFor("C:\\X-Plane 12\\MyAircraft\\Vistarig_Kite.csv"), "");
    EXPECT_EQ(keptCopyBaseName("C:\\X-Plane 12\\Resources\\plugins\\Vistarig\\Vistarig.ini"), "Vistarig.ini");
}

TEST(NativePathsTest, AbsolutePathsAndSeparators) {
    EXPECT_TRUE(isAbsolutePath("C:\\X-Plane 12"));
    EXPECT_TRUE(isAbsolutePath("c:/X-Plane 12"));
    EXPECT_TRUE(isAbsolutePath("\\\\server\\share"));
    EXPECT_FALSE(isAbsolutePath("Aircraft\\Cessna"));
    EXPECT_FALSE(isAbsolutePath("C:relative"));
    EXPECT_EQ(lastPathSeparator("C:\\a/b\\c.csv"), 6u);
    EXPECT_EQ(normaliseRootPath(" C:\\X-Plane 12\\Aircraft "), "C:/X-Plane 12/Aircraft/");
}

// ---------------------------------------------------------------- files on Windows

TEST(WindowsFilesTest, WriterReplacesAnExistingFileWithTheExactBytes) {
    const std::string folder = freshFolder("writer");
    const std::string path = folder + "Vistarig_Kite.csv";
    ASSERT_TRUE(replaceFileAtomically(path.c_str(), "old\n"));
    // Windows' rename refuses an existing target: the second write must still replace it,
    // byte for byte (no carriage returns added).
    std::string why;
    ASSERT_TRUE(replaceFileAtomically(path.c_str(), "a,b\nc,d\n", &why)) << why;
    std::string read;
    ASSERT_TRUE(readWholeFile(path.c_str(), read, 1000));
    EXPECT_EQ(read, "a,b\nc,d\n");
    uint64_t size = 0;
    ASSERT_TRUE(fileSize(path.c_str(), size));
    EXPECT_EQ(size, 8u);

    // A file the user made read-only stays as it was.
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_FALSE(replaceFileAtomically(path.c_str(), "new\n", &why));
    EXPECT_EQ(why, "it is read-only");
    ASSERT_TRUE(readWholeFile(path.c_str(), read, 1000));
    EXPECT_EQ(read, "a,b\nc,d\n");
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);

    // No temporary file is left beside it.
    int entries = 0;
    listFolder(folder.c_str(), [&](const char*, EntryKind) { return ++entries, true; });
    EXPECT_EQ(entries, 1);
}

TEST(WindowsFilesTest, FoldersListAndScanWithKindsAndTimes) {
    const std::string folder = freshFolder("tree");
    ASSERT_TRUE(makeFolder((folder + "Sub").c_str()));
    EXPECT_TRUE(makeFolder((folder + "Sub").c_str()));  // already there counts as made
    ASSERT_TRUE(replaceFileAtomically((folder + "Sub\\one.csv").c_str(), "1"));
    ASSERT_TRUE(replaceFileAtomically((folder + "two.csv").c_str(), "2"));
    EXPECT_EQ(entryKind((folder + "Sub").c_str()), EntryKind::folder);
    EXPECT_EQ(entryKind((folder + "two.csv").c_str()), EntryKind::file);
    EXPECT_EQ(entryKind((folder + "none").c_str()), EntryKind::missing);
    EXPECT_FALSE(listFolder((folder + "none").c_str(), [](const char*, EntryKind) { return true; }));

    FileNode root = makeFolderNode(normaliseRootPath(folder.c_str()));
    std::atomic<bool> cancel{false};
    std::atomic<int> count{0};
    scanFolder(root, cancel, count);
    EXPECT_EQ(count.load(), 2);
    ASSERT_EQ(root.folders.size(), 1u);
    EXPECT_EQ(root.folders[0].name, "Sub");
    ASSERT_EQ(root.files.size(), 1u);
    EXPECT_EQ(root.files[0].name, "two.csv");

    int64_t first = 0, second = 0;
    ASSERT_TRUE(modificationTime((folder + "two.csv").c_str(), first));
    EXPECT_GT(first, int64_t(1600000000) * 1000000000);  // after 2020, in nanoseconds since 1970
    Sleep(20);
    ASSERT_TRUE(replaceFileAtomically((folder + "two.csv").c_str(), "22"));
    ASSERT_TRUE(modificationTime((folder + "two.csv").c_str(), second));
    EXPECT_NE(first, second);
}

// ---------------------------------------------------------------- platform facilities

TEST(PlatformSmokeTest, RegistryNamesTheTrackIrFolder) {
    const char* key = "Software\\NaturalPoint\\NATURALPOINT\\NPClient Location";
    RegDeleteKeyA(HKEY_CURRENT_USER, key);
    char path[64];
    EXPECT_FALSE(readTrackIrLocation(nullptr, path, sizeof path));
    EXPECT_STREQ(path, kUnknownLocation);

    HKEY handle = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, key, 0, nullptr, 0, KEY_WRITE, nullptr, &handle, nullptr),
              ERROR_SUCCESS);
    const std::string folder = "C:\\Program Files (x86)\\NaturalPoint\\TrackIR5\\";
    // Stored without its terminator, as some installers do.
    ASSERT_EQ(RegSetValueExA(handle, "Path", 0, REG_SZ, reinterpret_cast<const BYTE*>(folder.data()),
                             static_cast<DWORD>(folder.size())),
              ERROR_SUCCESS);
    RegCloseKey(handle);
    ASSERT_TRUE(readTrackIrLocation(nullptr, path, sizeof path));
    EXPECT_EQ(std::string(path), folder);
    // A folder longer than the buffer counts as unknown.
    char small[16];
    EXPECT_FALSE(readTrackIrLocation(nullptr, small, sizeof small));
    EXPECT_STREQ(small, kUnknownLocation);
    RegDeleteKeyA(HKEY_CURRENT_USER, key);
}

TEST(PlatformSmokeTest, LibraryLoadingFindsTheTrackIrDouble) {
    EXPECT_STREQ(trackIrLibraryName(), "NPClient64.dll");
    EXPECT_EQ(librarySeparator(), '\\');
    void* library = loadLibrary((runnerFolder() + trackIrLibraryName()).c_str());
    ASSERT_NE(library, nullptr);
    EXPECT_NE(findLibrarySymbol(library, "NP_GetSignature"), nullptr);
    EXPECT_EQ(findLibrarySymbol(library, "NP_NoSuchEntry"), nullptr);
    EXPECT_EQ(loadLibrary((runnerFolder() + "NoSuchClient64.dll").c_str()), nullptr);
    EXPECT_EQ(loadLibrary(nullptr), nullptr);
}

TEST(PlatformSmokeTest, KeyStateClipboardAndSockets) {
    EXPECT_FALSE(physicalMiddleButtonDown());
    ASSERT_TRUE(copyTextToClipboard("https://vistarig.invalid/news"));
    ASSERT_TRUE(OpenClipboard(nullptr));
    HANDLE data = GetClipboardData(CF_TEXT);
    ASSERT_NE(data, nullptr);
    EXPECT_STREQ(static_cast<const char*>(GlobalLock(data)), "https://vistarig.invalid/news");
    GlobalUnlock(data);
    CloseClipboard();
    EXPECT_EQ(startNetwork(), 0);
    stopNetwork();
}

TEST(PlatformSmokeTest, WindowFoundByTitleAndMadeTopmost) {
    HWND window = CreateWindowExA(0, "STATIC", "Vistarig Control Panel", WS_OVERLAPPEDWINDOW, 10, 10, 300, 200, nullptr,
                                  nullptr, GetModuleHandleA(nullptr), nullptr);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(findOsWindowByTitle("Vistarig Control Panel"), static_cast<void*>(window));
    EXPECT_EQ(findOsWindowByTitle("Vistarig Control"), nullptr);  // the whole title only
    EXPECT_EQ(findOsWindowByTitle(nullptr), nullptr);
    setOsWindowTopmost(window, true);
    EXPECT_TRUE(GetWindowLongA(window, GWL_EXSTYLE) & WS_EX_TOPMOST);
    setOsWindowTopmost(window, false);
    EXPECT_FALSE(GetWindowLongA(window, GWL_EXSTYLE) & WS_EX_TOPMOST);
    setOsWindowTopmost(nullptr, true);  // nothing happens
    DestroyWindow(window);
}
