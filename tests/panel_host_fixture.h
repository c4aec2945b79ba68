// A fresh simulator host rooted in a temporary tree (with the panels' font) in which
// test code itself creates panels; XPLM calls made by the test count as the
// simulator's own. Also finds message box buttons on the drawn screen by their colour.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "host/host.h"
#include "host/windows.h"

class PanelHostTest : public ::testing::Test {
protected:
    std::filesystem::path root;

    void SetUp() override {
        xphost::reset();
        root = std::filesystem::temp_directory_path() /
               ("vistarig-panels-" + std::to_string(::getpid()) + "-" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::remove_all(root);
        std::filesystem::create_directories(root / "Output/preferences");
        xphost::setRoot(root.string());
    }

    void TearDown() override {
        EXPECT_EQ(xphost::threadViolationCount(), 0);
        std::filesystem::remove_all(root);
    }

    // Framebuffer pixel rows of one window's area (scale 1, main monitor at the origin).
    struct Box {
        int left = 0, bottom = 0, right = 0, top = 0;
        int centreX() const { return (left + right) / 2; }
        int centreY() const { return (bottom + top) / 2; }
    };

    static bool isButtonBlue(uint32_t rgba) {
        const int r = static_cast<int>(rgba >> 24), g = static_cast<int>((rgba >> 16) & 0xFF),
                  b = static_cast<int>((rgba >> 8) & 0xFF);
        return b > 90 && b > r + 40 && b > g + 15;
    }
    static bool isText(uint32_t rgba) {
        return (rgba >> 24) > 200 && ((rgba >> 16) & 0xFF) > 200 && ((rgba >> 8) & 0xFF) > 200;
    }

    // The buttons inside a window: runs of columns that hold button-coloured pixels,
    // left to right, each with the rows it covers.
    static std::vector<Box> findButtons(const xphost::WindowInfo& w) {
        std::vector<Box> found;
        Box current;
        bool open = false;
        for (int x = w.left; x < w.right; ++x) {
            int low = -1, high = -1;
            for (int y = w.bottom; y < w.top; ++y)
                if (isButtonBlue(xphost::screenPixel(x, y))) {
                    if (low < 0) low = y;
                    high = y;
                }
            if (low >= 0) {
                if (!open) current = Box{x, low, x, high}, open = true;
                current.right = x;
                current.bottom = std::min(current.bottom, low);
                current.top = std::max(current.top, high);
            } else if (open) {
                if (current.right - current.left > 10) found.push_back(current);
                open = false;
            }
        }
        if (open && current.right - current.left > 10) found.push_back(current);
        return found;
    }

    static int countPixels(const Box& area, bool (*test)(uint32_t)) {
        int n = 0;
        for (int x = area.left; x < area.right; ++x)
            for (int y = area.bottom; y < area.top; ++y)
                if (test(xphost::screenPixel(x, y))) ++n;
        return n;
    }
};
