// Panels at the simulator's user interface scales 1, 1.5 and 2, on the drawn screen:
// the largest panel there is (the box a new camera file brings) and a box of three
// lines must show all of their content inside their window, with no scroll bar and
// the button in view. VISTARIG_SCREENSHOT_DIR keeps the pictures for a look by eye.
#include <imgui.h>
#include <imgui_internal.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "data/camera_file.h"
#include "host/windows.h"
#include "panels/messages.h"
#include "panels/msg_box_widget.h"
#include "user_files_fixture.h"

namespace {

struct PixelBox {
    int left = 0, bottom = 0, right = 0, top = 0;  // framebuffer pixels, y up, right and top outside
};

int red(uint32_t p) { return static_cast<int>(p >> 24); }
int green(uint32_t p) { return static_cast<int>((p >> 16) & 0xFF); }
int blue(uint32_t p) { return static_cast<int>((p >> 8) & 0xFF); }
bool isText(uint32_t p) { return red(p) > 200 && green(p) > 200 && blue(p) > 200; }
bool isButton(uint32_t p) { return blue(p) > 90 && blue(p) > red(p) + 40 && blue(p) > green(p) + 15; }
bool isPanelBackground(uint32_t p) { return red(p) < 40 && green(p) < 40 && blue(p) < 40; }
// ImGui's scroll bar grab: an even mid grey.
bool isScrollGrey(uint32_t p) {
    return red(p) > 60 && red(p) < 140 && std::abs(red(p) - green(p)) < 8 && std::abs(red(p) - blue(p)) < 8;
}

int count(const PixelBox& area, bool (*test)(uint32_t)) {
    int n = 0;
    for (int x = area.left; x < area.right; ++x)
        for (int y = area.bottom; y < area.top; ++y)
            if (test(xphost::screenPixel(x, y))) ++n;
    return n;
}

// The smallest box round every pixel that passes `test`.
PixelBox bounds(const PixelBox& area, bool (*test)(uint32_t)) {
    PixelBox b{area.right, area.top, area.left, area.bottom};
    for (int x = area.left; x < area.right; ++x)
        for (int y = area.bottom; y < area.top; ++y)
            if (test(xphost::screenPixel(x, y))) {
                b.left = std::min(b.left, x);
                b.right = std::max(b.right, x + 1);
                b.bottom = std::min(b.bottom, y);
                b.top = std::max(b.top, y + 1);
            }
    return b;
}

class PanelScaleTest : public UserFilesTest {
protected:
    std::vector<uint32_t> reference;  // the screen without the box, rows from the bottom
    int width = 0, height = 0;

    // The screen as it stands with nothing of the plug-in's on it; the aircraft is
    // held still, so the world behind the box stays the same.
    void takeReference() {
        xphost::freezeAircraft(true);
        xphost::drawScreen();
        xphost::screenBuffer(width, height);
        reference.resize(static_cast<size_t>(width) * static_cast<size_t>(height));
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                reference[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)] =
                    xphost::screenPixel(x, y);
    }

    void TearDown() override {
        while (openMessageBoxCount() > 0) delete openMessageBox(0);
        destroyMessageBoxQueue();
        UserFilesTest::TearDown();
    }

    // The one box open now, drawn, checked, and kept as a picture; then closed.
    void checkBox(const std::string& name, float scale) {
        SCOPED_TRACE(name + " at scale " + std::to_string(scale));
        takeReference();  // the box is only queued yet
        xphost::runFrames(3);  // opened, fitted, drawn at its size
        ASSERT_EQ(openMessageBoxCount(), 1);
        MsgBoxWidget* box = openMessageBox(0);
        xphost::WindowInfo w;
        ASSERT_TRUE(xphost::findWindow(box->GetTitle(), w));

        const char* keep = std::getenv("VISTARIG_SCREENSHOT_DIR");
        if (keep) {
            char suffix[16];
            std::snprintf(suffix, sizeof suffix, "%.1f", static_cast<double>(scale));
            std::string error;
            EXPECT_TRUE(xphost::screenshot(std::string(keep) + "/" + name + "-scale-" + suffix + ".png", &error))
                << error;
        }

        auto px = [scale](int boxels) { return static_cast<int>(static_cast<float>(boxels) * scale + 0.5f); };
        const PixelBox window{px(w.left), px(w.bottom), px(w.right), px(w.top)};
        const int inset = px(3);
        // The panel's background reaches all four corners of its window...
        // (The simulator's resize grip covers the bottom right corner: sampled above it.)
        const int gripClear = px(16);
        for (int x : {window.left + inset, window.right - 1 - inset})
            for (int y : {window.bottom + inset, window.top - 1 - inset}) {
                const int sampleY = x > window.left + inset && y < window.top - 1 - inset ? y + gripClear : y;
                EXPECT_TRUE(isPanelBackground(xphost::screenPixel(x, sampleY))) << "corner " << x << "," << sampleY;
            }
        // ...and nothing it drew lies outside it: every pixel that differs from the
        // screen without the box is in the window or the simulator's title bar above.
        // (The simulator's border is 2 boxels; a third allows for rounding.)
        const PixelBox frame{window.left - px(3), window.bottom - px(3), window.right + px(3),
                             window.top + px(xphost::titleBarHeight + 1)};
        int changedOutside = 0;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const bool inFrame = x >= frame.left && x < frame.right && y >= frame.bottom && y < frame.top;
                if (!inFrame && xphost::screenPixel(x, y) != reference[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)]) {
                    ++changedOutside;
                }
            }
        EXPECT_EQ(changedOutside, 0) << "pixels drawn outside the window";

        // The "Ok" button: whole, below the text, clear of the window's bottom edge.
        const PixelBox button = bounds(window, isButton);
        ASSERT_LT(button.left, button.right) << "no button drawn";
        EXPECT_GT(button.top - button.bottom, px(18));
        EXPECT_GT(button.right - button.left, px(20));
        EXPECT_GE(button.bottom, window.bottom + px(4));
        EXPECT_GT(count(button, isText), 5) << "its label is drawn";
        const PixelBox above{window.left, button.top, window.right, window.top};
        EXPECT_GT(count(above, isText), 200) << "the message above the button";

        // No scroll bar: no row along the right edge holds a run of its grey, and
        // ImGui agrees.
        int greyRows = 0;
        for (int y = window.bottom; y < window.top; ++y) {
            int run = 0;
            for (int x = window.right - px(16); x < window.right; ++x)
                if (isScrollGrey(xphost::screenPixel(x, y))) ++run;
            if (run >= px(6)) ++greyRows;
        }
        EXPECT_LT(greyRows, 3);
        ImGui::SetCurrentContext(box->GetContext());
        ImGuiWindow* imguiWindow = ImGui::FindWindowByName(box->GetTitle().c_str());
        ASSERT_NE(imguiWindow, nullptr);
        EXPECT_FALSE(imguiWindow->ScrollbarY);
        EXPECT_FALSE(imguiWindow->ScrollbarX);

        // Keep on screen: the simulator's title bar fits above it.
        EXPECT_LE(w.top + xphost::titleBarHeight, 1080);
        delete box;
    }
};

TEST_F(PanelScaleTest, LargestPanelAndAThreeLineBoxShowAllTheirContentAtEveryScale) {
    for (float scale : {1.0f, 1.5f, 2.0f}) {
        xphost::setDrawScale(scale);
        // The largest panel: the box of a new camera file, as a new user first sees it.
        clearWorkingSet();
        setActiveFile(nullptr);
        std::filesystem::remove(aircraftDir + "Vistarig_Cub.csv");
        ASSERT_TRUE(loadCameraFile(nullptr));
        ASSERT_EQ(queuedMessageBoxes().size(), 1u);
        EXPECT_EQ(queuedMessageBoxes().front().title, "INFO");
        checkBox("new-camera-file", scale);

        showMessageBox("Three lines", "The camera file was saved.\nThe backup is in AircraftCameraBackups.\n"
                                      "100% of the cameras were kept.");
        checkBox("three-lines", scale);
    }
}

TEST(MessageBoxFit, SizeComesFromTheFontAndStyleAndTheBoxStaysOnTheScreen) {
    MessageBoxMeasures m;
    m.text = ImVec2(300, 54);  // three lines of an 18 font
    m.fontSize = 18;
    m.windowPadding = ImVec2(8, 8);
    m.itemSpacing = ImVec2(8, 4);
    m.framePadding = ImVec2(4, 3);
    m.okLabel = 20;
    m.cancelLabel = 50;
    BoxSize size = messageBoxSize(m, false);
    EXPECT_EQ(size.width, 300 + 16 + 2);
    EXPECT_EQ(size.height, 16 + 3 * 18 + 54 + 24 + 16 + 2);
    // A short text: "Cancel" starts 75 left of the middle, inside the padding...
    m.text = ImVec2(40, 18);
    size = messageBoxSize(m, true);
    EXPECT_EQ(size.width, 2 * (75 + 8) + 2);
    // ...and long labels set the width so that "Ok" ends inside it.
    m.cancelLabel = 150;
    size = messageBoxSize(m, true);
    EXPECT_EQ(size.width, 2 * (-75 + 158 + 8 + 28 + 8) + 2);

    const WindowBox screen{0, 1080, 1920, 0};
    // The centre stays where there is room.
    WindowBox box = fitAround(WindowBox{900, 600, 1000, 500}, BoxSize{400, 200}, screen, 35);
    EXPECT_EQ(box.left, 750);
    EXPECT_EQ(box.top, 650);
    EXPECT_EQ(box.right - box.left, 400);
    EXPECT_EQ(box.top - box.bottom, 200);
    // A tall box near the top comes down below the title bar's room; a wide one at
    // the right edge comes in.
    box = fitAround(WindowBox{1800, 1000, 1900, 900}, BoxSize{600, 700}, screen, 35);
    EXPECT_EQ(box.top, 1045);
    EXPECT_EQ(box.right, 1920);
    EXPECT_EQ(box.top - box.bottom, 700);
    // Taller than the screen: as tall as fits.
    box = fitAround(WindowBox{900, 600, 1000, 500}, BoxSize{400, 5000}, screen, 35);
    EXPECT_EQ(box.top, 1045);
    EXPECT_EQ(box.bottom, 0);
}

}  // namespace
