// Panels inside the host: keys through focus and the key queue, the scissor on a real
// Mesa framebuffer at a user interface scale, mouse routing, draw callbacks, leaks
// and the GL thread check.
#include <GL/gl.h>
#include <imgui.h>

#include <cfloat>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "XPLMDataAccess.h"

#include "XPLMProcessing.h"
#include "panel_host_fixture.h"
#include "panels/kvt_im_window.h"

namespace {

class TextPanel : public KvtImWindow {
public:
    TextPanel(int left, int top, int right, int bottom, bool withField)
        : KvtImWindow(left, top, right, bottom, 0), withField(withField) {
        SetTitle(withField ? "Text panel" : "Plain panel");
    }
    void ConfigureContext() override {}
    void BuildContents() override {
        if (withField) {
            if (!focused) ImGui::SetKeyboardFocusHere();
            focused = true;
            ImGui::InputText("##name", text, sizeof text);
        }
        wantedKeyboard = ImGui::GetIO().WantCaptureKeyboard;
        anyKeyDown = false;
        for (bool down : ImGui::GetIO().KeysDown) anyKeyDown = anyKeyDown || down;
    }
    bool withField;
    bool focused = false;
    bool wantedKeyboard = false;
    bool anyKeyDown = false;
    char text[64] = {};
};

using HostWindowsTest = PanelHostTest;

TEST_F(HostWindowsTest, TwoKeysInOneFrameReachTheTextFieldOnTwoFrames) {
    TextPanel panel(100, 600, 400, 400, true);
    panel.Init();
    panel.SetVisible(true);
    xphost::runFrames(3);
    ASSERT_TRUE(XPLMHasKeyboardFocus(panel.GetWindowId())) << "the active text field takes the keyboard";

    xphost::key('a', xplm_DownFlag, 65);
    xphost::key('b', xplm_DownFlag, 66);
    EXPECT_EQ(panel.PendingKeyCount(), 2u);
    xphost::runFrames(1);
    EXPECT_STREQ(panel.text, "a");
    xphost::runFrames(1);
    EXPECT_STREQ(panel.text, "ab");

    // Escape ends the edit: the window hands the keyboard back with no key left down.
    xphost::key(27, xplm_DownFlag, 27);
    xphost::runFrames(3);
    EXPECT_FALSE(XPLMHasKeyboardFocus(panel.GetWindowId()));
    EXPECT_TRUE(XPLMHasKeyboardFocus(nullptr));
    xphost::runFrames(1);
    EXPECT_FALSE(panel.anyKeyDown);
}

TEST_F(HostWindowsTest, KeyWhileNothingWantsTheKeyboardIsDropped) {
    TextPanel panel(100, 600, 400, 400, false);
    panel.Init();
    panel.SetVisible(true);
    xphost::runFrames(1);
    XPLMTakeKeyboardFocus(panel.GetWindowId());
    xphost::key('x', xplm_DownFlag, 88);
    EXPECT_EQ(panel.PendingKeyCount(), 1u);
    xphost::runFrames(1);
    EXPECT_FALSE(panel.anyKeyDown) << "taken from the queue and dropped";
    EXPECT_FALSE(panel.wantedKeyboard);
    EXPECT_FALSE(XPLMHasKeyboardFocus(panel.GetWindowId())) << "an unwanted focus is given back";
    // Losing the focus arrives as one more key event, which the next frame takes.
    EXPECT_EQ(panel.PendingKeyCount(), 1u);
    xphost::runFrames(1);
    EXPECT_EQ(panel.PendingKeyCount(), 0u);
    EXPECT_FALSE(panel.anyKeyDown);
}

// Paints red everywhere, but inside a 50 x 50 child window whose clip rectangle is
// the only thing that keeps the paint in place.
class ClipPanel : public KvtImWindow {
public:
    ClipPanel() : KvtImWindow(100, 600, 400, 300, 0) { SetTitle("Clip"); }
    void ConfigureContext() override {}
    void BuildContents() override {
        ImGui::SetCursorPos(ImVec2(20, 20));
        ImGui::BeginChild("clip", ImVec2(50, 50), false, ImGuiWindowFlags_NoScrollbar);
        ImGui::GetWindowDrawList()->AddRectFilled(ImVec2(-1000, -1000), ImVec2(3000, 3000), IM_COL32(255, 0, 0, 255));
        ImGui::EndChild();
    }
};

bool isText(uint32_t rgba) {
    return (rgba >> 24) > 200 && ((rgba >> 16) & 0xFF) > 200 && ((rgba >> 8) & 0xFF) > 200;
}
bool isRed(uint32_t rgba) { return (rgba >> 24) > 240 && ((rgba >> 16) & 0xFF) < 20 && ((rgba >> 8) & 0xFF) < 20; }

TEST_F(HostWindowsTest, ScissorIsRightAtDrawScaleOneAndAHalf) {
    xphost::setDrawScale(1.5f);
    ClipPanel panel;
    panel.Init();
    panel.SetVisible(true);
    xphost::runFrames(2);
    // The child covers boxels x 120..170, y 530..580: pixels 180..255 and 795..870.
    EXPECT_TRUE(isRed(xphost::screenPixel(182, 797)));
    EXPECT_TRUE(isRed(xphost::screenPixel(217, 832)));
    EXPECT_TRUE(isRed(xphost::screenPixel(252, 867)));
    EXPECT_FALSE(isRed(xphost::screenPixel(262, 832))) << "right of the child";
    EXPECT_FALSE(isRed(xphost::screenPixel(172, 832))) << "left of the child";
    EXPECT_FALSE(isRed(xphost::screenPixel(217, 877))) << "above the child";
    EXPECT_FALSE(isRed(xphost::screenPixel(217, 788))) << "below the child";
    EXPECT_FALSE(isRed(xphost::screenPixel(140, 832))) << "where a scale of 1 would have put it";

    int vp[4] = {};
    XPLMGetDatavi(XPLMFindDataRef("sim/graphics/view/viewport"), vp, 0, 4);
    EXPECT_EQ(vp[2], 2880);
    EXPECT_EQ(vp[3], 1620);
}

class HoverPanel : public KvtImWindow {
public:
    HoverPanel(int left, int top, int right, int bottom) : KvtImWindow(left, top, right, bottom, 0) {
        SetTitle("Hover");
    }
    void ConfigureContext() override {}
    void BuildContents() override {
        ImGui::Button("Hovered?", ImVec2(200, 60));
        hovered = ImGui::IsItemHovered();
        mouse = ImGui::GetIO().MousePos;
    }
    bool hovered = false;
    ImVec2 mouse;
};

TEST_F(HostWindowsTest, PointerLeavingAPanelTakesItsHoverAway) {
    HoverPanel panel(100, 600, 400, 400);
    panel.Init();
    panel.SetVisible(true);
    xphost::mouseMove(150, 570);  // over the button
    xphost::runFrames(2);
    ASSERT_TRUE(panel.hovered);

    // Out onto the bare screen: no window says a word to the panel any more.
    xphost::mouseMove(800, 800);
    xphost::runFrames(1);
    EXPECT_FALSE(panel.hovered);
    EXPECT_EQ(panel.mouse.x, -FLT_MAX);
    EXPECT_EQ(panel.mouse.y, -FLT_MAX);

    // Back, then a window in front of the button takes the pointer.
    xphost::mouseMove(150, 570);
    xphost::runFrames(1);
    ASSERT_TRUE(panel.hovered);
    // A window in front that decides the cursor itself keeps it from the panel.
    XPLMCreateWindow_t params{};
    params.structSize = sizeof params;
    params.left = 120, params.top = 590, params.right = 300, params.bottom = 500;
    params.visible = 1;
    params.drawWindowFunc = [](XPLMWindowID, void*) {};
    params.handleCursorFunc = [](XPLMWindowID, int, int, void*) -> XPLMCursorStatus { return xplm_CursorArrow; };
    params.handleMouseClickFunc = [](XPLMWindowID, int, int, XPLMMouseStatus, void*) { return 1; };
    params.layer = xplm_WindowLayerFloatingWindows;
    XPLMWindowID front = XPLMCreateWindowEx(&params);
    xphost::runFrames(2);
    EXPECT_FALSE(panel.hovered) << "the pointer is over the window in front";

    // With a button held the drag events keep coming to the panel, and it follows them.
    XPLMDestroyWindow(front);
    xphost::runFrames(1);
    ASSERT_TRUE(panel.hovered);
    xphost::mouseButton(0, xplm_MouseDown, 150, 570);
    xphost::runFrames(1);
    EXPECT_TRUE(ImGui::IsMouseDown(0));
    xphost::mouseMove(160, 575);
    xphost::runFrames(1);
    EXPECT_EQ(panel.mouse.x, 60.0f) << "the drag event's place, not the absence";
    xphost::mouseButton(0, xplm_MouseUp, 800, 800);
    xphost::runFrames(2);
    EXPECT_FALSE(panel.hovered);
}

int fullScreenWheel = 0, fullScreenRight = 0, fullScreenLeft = 0;
int takeWheel(XPLMWindowID, int, int, int, int, void*) { return ++fullScreenWheel, 1; }
int takeRight(XPLMWindowID, int, int, XPLMMouseStatus, void*) { return ++fullScreenRight, 1; }
int passLeft(XPLMWindowID, int, int, XPLMMouseStatus, void*) { return ++fullScreenLeft, 0; }
void drawNothing(XPLMWindowID, void*) {}

TEST_F(HostWindowsTest, FullScreenWindowEatsWheelAndRightButtonUnderThePanels) {
    fullScreenWheel = fullScreenRight = fullScreenLeft = 0;
    XPLMCreateWindow_t params{};
    params.structSize = sizeof params;
    params.right = 10;
    params.top = 10;
    params.visible = 1;
    params.drawWindowFunc = drawNothing;
    params.handleMouseClickFunc = passLeft;
    params.handleMouseWheelFunc = takeWheel;
    params.handleRightClickFunc = takeRight;
    params.layer = xplm_WindowLayerFlightOverlay;
    XPLMWindowID input = XPLMCreateWindowEx(&params);
    XPLMSetWindowPositioningMode(input, xplm_WindowFullScreenOnAllMonitors, -1);

    TextPanel panel(100, 600, 400, 400, false);
    panel.Init();
    panel.SetVisible(true);
    xphost::runFrames(1);

    xphost::wheel(1000, 800, 2);
    xphost::click(1000, 800, 1);
    xphost::click(1000, 800, 0);
    EXPECT_EQ(fullScreenWheel, 1);
    EXPECT_EQ(fullScreenRight, 2) << "down and up";
    EXPECT_EQ(fullScreenLeft, 1) << "a refused press gets no release";

    xphost::wheel(200, 500, 3);  // over the panel: the panel, in front, takes it
    xphost::click(200, 500, 1);
    EXPECT_EQ(fullScreenWheel, 1);
    EXPECT_EQ(fullScreenRight, 2);
    XPLMDestroyWindow(input);
}

XPLMWindowID plainWindow(int decoration, const char* title) {
    XPLMCreateWindow_t params{};
    params.structSize = sizeof params;
    params.left = 100, params.top = 500, params.right = 400, params.bottom = 400;
    params.visible = 1;
    params.drawWindowFunc = drawNothing;
    params.decorateAsFloatingWindow = decoration;
    params.layer = xplm_WindowLayerFloatingWindows;
    XPLMWindowID id = XPLMCreateWindowEx(&params);
    XPLMSetWindowTitle(id, title);
    return id;
}

TEST_F(HostWindowsTest, DecoratedWindowsShowTheirTitleAndAreMovedResizedPoppedOutAndClosedByTheUser) {
    XPLMWindowID id = plainWindow(xplm_WindowDecorationRoundRectangle, "Camera Options");
    xphost::setDrawScale(1.5f);
    xphost::drawScreen();
    xphost::WindowInfo info;
    ASSERT_TRUE(xphost::findWindow("Camera Options", info));
    EXPECT_EQ(info.titleShown, "Camera Options");
    int white = 0;  // the title's glyphs, in the title bar at the screen's scale
    for (int x = 150; x < 450; ++x)
        for (int y = 755; y < 790; ++y) white += isText(xphost::screenPixel(x, y)) ? 1 : 0;
    EXPECT_GT(white, 100);
    if (const char* keep = std::getenv("VISTARIG_SCREENSHOT_DIR")) xphost::screenshot(std::string(keep) + "/title-bar.png");

    // Moved by its title bar.
    xphost::drag(150, 510, 250, 460, 4);
    int l = 0, t = 0, r = 0, b = 0;
    XPLMGetWindowGeometry(id, &l, &t, &r, &b);
    EXPECT_EQ(l, 200);
    EXPECT_EQ(t, 450);

    // Resized by its corner: the top left stays, the limits hold.
    XPLMSetWindowResizingLimits(id, 100, 80, 500, 300);
    int x = 0, y = 0;
    ASSERT_TRUE(xphost::windowControl(info.id, xphost::WindowControl::resizeCorner, x, y));
    xphost::drag(x, y, x + 50, y - 20, 3);
    XPLMGetWindowGeometry(id, &l, &t, &r, &b);
    EXPECT_EQ(l, 200);
    EXPECT_EQ(t, 450);
    EXPECT_EQ(r - l, 350);
    EXPECT_EQ(t - b, 120);
    xphost::drag(r - 4, b + 4, r - 600, b + 400, 3);
    XPLMGetWindowGeometry(id, &l, &t, &r, &b);
    EXPECT_EQ(r - l, 100) << "no narrower than its limit";
    EXPECT_EQ(t - b, 80);

    // A long title is cut before the buttons.
    XPLMSetWindowTitle(id, "A title far too long for a window only a hundred boxels wide");
    xphost::drawScreen();
    ASSERT_TRUE(xphost::findWindow("A title far too long for a window only a hundred boxels wide", info));
    EXPECT_LT(info.titleShown.size(), 12u);

    // Popped out by its title bar's box; a popped-out window has none.
    ASSERT_TRUE(info.canPopOut);
    ASSERT_TRUE(xphost::windowControl(info.id, xphost::WindowControl::popOutBox, x, y));
    xphost::click(x, y);
    EXPECT_TRUE(XPLMWindowIsPoppedOut(id));
    EXPECT_FALSE(xphost::windowControl(info.id, xphost::WindowControl::popOutBox, x, y));
    XPLMSetWindowPositioningMode(id, xplm_WindowPositionFree, -1);

    // Closed by its close box: hidden, not destroyed.
    ASSERT_TRUE(xphost::windowControl(info.id, xphost::WindowControl::closeBox, x, y));
    xphost::click(x, y);
    EXPECT_FALSE(XPLMGetWindowIsVisible(id));
    XPLMDestroyWindow(id);

    // Held to a monitor: no pop-out; undecorated: no title bar, no grip; resizable
    // self-decorated: only the grip.
    id = plainWindow(xplm_WindowDecorationRoundRectangle, "Centred");
    XPLMSetWindowPositioningMode(id, xplm_WindowCenterOnMonitor, 0);
    EXPECT_FALSE(xphost::windowControl(id, xphost::WindowControl::popOutBox, x, y));
    EXPECT_TRUE(xphost::windowControl(id, xphost::WindowControl::closeBox, x, y));
    XPLMDestroyWindow(id);
    id = plainWindow(xplm_WindowDecorationNone, "Bare");
    EXPECT_FALSE(xphost::windowControl(id, xphost::WindowControl::titleBar, x, y));
    EXPECT_FALSE(xphost::windowControl(id, xphost::WindowControl::resizeCorner, x, y));
    XPLMDestroyWindow(id);
    id = plainWindow(xplm_WindowDecorationSelfDecoratedResizable, "Own frame");
    EXPECT_FALSE(xphost::windowControl(id, xphost::WindowControl::closeBox, x, y));
    ASSERT_TRUE(xphost::windowControl(id, xphost::WindowControl::resizeCorner, x, y));
    xphost::drag(x, y, x + 30, y, 2);
    XPLMGetWindowGeometry(id, &l, &t, &r, &b);
    EXPECT_EQ(r - l, 330);
    XPLMDestroyWindow(id);
}

int windowPhaseCalls = 0;
int countPhase(XPLMDrawingPhase phase, int, void*) {
    if (phase == xplm_Phase_Window) ++windowPhaseCalls;
    return 1;
}

int leakyStart(char* name, char* signature, char* description) {
    std::strcpy(name, "Leaky");
    std::strcpy(signature, "test.leaky");
    std::strcpy(description, "Keeps a window");
    return 1;
}
int leakyEnable() {
    XPLMCreateWindow_t params{};
    params.structSize = sizeof params;
    params.right = 10, params.top = 10;
    params.drawWindowFunc = drawNothing;
    XPLMSetWindowTitle(XPLMCreateWindowEx(&params), "Forgotten");
    XPLMRegisterDrawCallback(countPhase, xplm_Phase_Window, 0, nullptr);
    return 1;
}

TEST_F(HostWindowsTest, DrawCallbacksRunEachFrameAndWhatOutlivesStopIsReported) {
    windowPhaseCalls = 0;
    xphost::EntryPoints entry;
    entry.start = leakyStart;
    entry.enable = leakyEnable;
    const int plugin = xphost::loadPlugin(entry, (root / "leaky.xpl").string());
    ASSERT_TRUE(xphost::enablePlugin(plugin));
    xphost::runFrames(3);
    EXPECT_EQ(windowPhaseCalls, 3);
    xphost::stopPlugin(plugin);
    xphost::runFrames(1);
    EXPECT_EQ(windowPhaseCalls, 3) << "a stopped plug-in is never called";
    std::string all;
    for (const std::string& line : xphost::leaks()) all += line + "\n";
    EXPECT_NE(all.find("Forgotten"), std::string::npos) << all;
    EXPECT_NE(all.find("draw callback"), std::string::npos) << all;
}

TEST_F(HostWindowsTest, PoppedOutWindowsAreDrawnOffTheMainScreen) {
    ClipPanel panel;
    panel.Init();
    panel.SetVisible(true);
    XPLMSetWindowPositioningMode(panel.GetWindowId(), xplm_WindowPopOut, -1);
    xphost::runFrames(2);
    xphost::WindowInfo info;
    ASSERT_TRUE(xphost::findWindow("Clip", info));
    EXPECT_TRUE(info.poppedOut);
    EXPECT_EQ(info.drawCount, 2);
    EXPECT_FALSE(isRed(xphost::screenPixel(145, 555)));
}

TEST(HostGlThreads, GlCallFromAWorkerIsAViolation) {
    xphost::reset();
    std::thread worker([] { glEnable(GL_BLEND); });
    worker.join();
    EXPECT_EQ(xphost::threadViolationCount(), 1);
    EXPECT_NE(xphost::threadViolations().front().find("glEnable"), std::string::npos);
    xphost::reset();
}

}  // namespace

namespace {

class CountingPanel : public KvtImWindow {
public:
    CountingPanel() : KvtImWindow(100, 600, 400, 400, 1) { SetTitle("Counting"); }
    ~CountingPanel() override { ++destroyed; }
    void ConfigureContext() override {}
    void BuildContents() override {}
    void OnFlightLoop() override { ++loops; }
    void OnHidden() override { ++hidden; }
    int loops = 0;
    int hidden = 0;
    static int destroyed;
};
int CountingPanel::destroyed = 0;

TEST_F(HostWindowsTest, FlightLoopRunsHiddenOrNotAndDestroysAtItsSafeMoment) {
    CountingPanel::destroyed = 0;
    auto* panel = new CountingPanel;
    panel->Init();
    xphost::runFrames(2);
    EXPECT_EQ(panel->loops, 2) << "hidden windows still get their flight loop";
    panel->SetVisible(true);
    xphost::runFrames(1);
    xphost::closeWindow(panel->GetWindowId());
    xphost::runFrames(2);
    EXPECT_EQ(panel->hidden, 1) << "once, on the change to hidden";
    EXPECT_EQ(panel->loops, 5);

    panel->RequestDestroy();
    EXPECT_EQ(CountingPanel::destroyed, 0);
    xphost::runFrames(1);
    EXPECT_EQ(CountingPanel::destroyed, 1);
    EXPECT_TRUE(xphost::windows().empty());
}

TEST_F(HostWindowsTest, VrMovesTheWindowInAndRestoresItsPlaceOnLeaving) {
    CountingPanel::destroyed = 0;
    CountingPanel panel;
    panel.Init();
    xphost::forceValue("sim/graphics/VR/enabled", 1);
    panel.SetVisible(true);  // VR came on while hidden: taken up on showing
    EXPECT_TRUE(XPLMWindowIsInVR(panel.GetWindowId()));
    XPLMSetWindowGeometry(panel.GetWindowId(), 0, 50, 50, 0);  // wherever VR puts it

    xphost::forceValue("sim/graphics/VR/enabled", 0);
    xphost::runFrames(1);  // the flight loop's check
    EXPECT_FALSE(XPLMWindowIsInVR(panel.GetWindowId()));
    int l = 0, t = 0, r = 0, b = 0;
    XPLMGetWindowGeometry(panel.GetWindowId(), &l, &t, &r, &b);
    EXPECT_EQ(l, 100);
    EXPECT_EQ(t, 600);
    EXPECT_EQ(r, 400);
    EXPECT_EQ(b, 400);
}

}  // namespace

// Mesa's software renderer keeps a few global allocations for the life of the
// process; they are not ours to free.
extern "C" const char* __lsan_default_suppressions() { return "leak:libOSMesa.so\n"; }
