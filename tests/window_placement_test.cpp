#include <sys/stat.h>
#include <utime.h>

#include <cstdio>
#include <fstream>

#include "panel_host_fixture.h"
#include "panels/kvt_im_window.h"
#include "panels/window_placement.h"

namespace {

PrfChoice parseText(const std::string& text) {
    std::FILE* file = fmemopen(const_cast<char*>(text.data()), text.size(), "r");
    PrfChoice choice = parseWindowPositions(file);
    std::fclose(file);
    return choice;
}

std::string twoMonitors(const char* firstOffset, const char* secondOffset) {
    return std::string("num_monitors 2\r\n") +
           "monitor/0/m_monitor 0\r\nmonitor/0/m_usage wmgr_usage_normal_visuals\r\n"
           "monitor/0/proj/off_lat_deg " + firstOffset + "\r\n" +
           "monitor/1/m_monitor 1\r\nmonitor/1/m_usage wmgr_usage_normal_visuals\r\n"
           "monitor/1/proj/off_lat_deg " + secondOffset + "\r\n";
}

TEST(WindowPositionsFile, RealFileChoosesTheViewStraightAhead) {
    std::FILE* file = std::fopen(VISTARIG_TEST_DATA "/window_positions/X-Plane Window Positions.prf", "rb");
    ASSERT_NE(file, nullptr);
    const PrfChoice choice = parseWindowPositions(file);
    std::fclose(file);
    ASSERT_TRUE(choice.found);
    EXPECT_EQ(choice.monitorIndex, 1) << "m_monitor of the view at 0 degrees; avionics screens don't count";
    EXPECT_FLOAT_EQ(choice.offset, 0.0f);
}

TEST(WindowPositionsFile, SmallestAbsoluteOffsetWinsAndStrayLinesAreIgnored) {
    PrfChoice choice = parseText(twoMonitors("-30.000000", "10.000000"));
    ASSERT_TRUE(choice.found);
    EXPECT_EQ(choice.monitorIndex, 1);
    EXPECT_FLOAT_EQ(choice.offset, 10.0f);

    // A tie goes to the first key; 180 degrees or more never counts.
    EXPECT_EQ(parseText(twoMonitors("-20", "20")).monitorIndex, 0);
    EXPECT_FALSE(parseText(twoMonitors("180", "-200")).found);
    // Numbers that are no angle (a fuzzer found "nan" picked with a NaN offset).
    EXPECT_FALSE(parseText(twoMonitors("nan", "inf")).found);
    EXPECT_EQ(parseText(twoMonitors("-nan", "12")).monitorIndex, 1);

    // Usage with no monitor line before it, and an offset for a key nobody declared.
    const std::string stray =
        "monitor/0/m_usage wmgr_usage_normal_visuals\n"
        "monitor/5/proj/off_lat_deg 1.0\n"
        "monitor/1/m_monitor 3\nmonitor/1/m_usage wmgr_usage_normal_visuals\nmonitor/1/proj/off_lat_deg 45\n";
    choice = parseText(stray);
    ASSERT_TRUE(choice.found);
    EXPECT_EQ(choice.monitorIndex, 3);
    EXPECT_FLOAT_EQ(choice.offset, 45.0f);
    EXPECT_FALSE(parseText("").found);
}

TEST(MonitorTables, KeepFifteenAndWantTheStartOfTheTitleBarOnOneMonitor) {
    MonitorTable dense;
    dense.dense = true;
    for (int i = 0; i < 20; ++i) addMonitor(dense, 100 + i, i * 100, 1000, i * 100 + 100, 0);
    EXPECT_EQ(dense.count, maxMonitors);
    EXPECT_EQ(dense.left[14], 1400);

    MonitorTable sparse;
    addMonitor(sparse, 3, -1920, 1080, 0, 0);
    EXPECT_EQ(sparse.count, 1);
    EXPECT_EQ(sparse.left[3], -1920);
    EXPECT_FALSE(titleBarOnMonitor(sparse, -100, 500)) << "the entry stands at index 3, beyond count";

    MonitorTable one;
    addMonitor(one, 0, 0, 1080, 1920, 0);
    EXPECT_TRUE(titleBarOnMonitor(one, 1890, 1080)) << "the rest may overhang";
    EXPECT_TRUE(titleBarOnMonitor(one, 0, 30));
    EXPECT_FALSE(titleBarOnMonitor(one, -1, 500));
    EXPECT_FALSE(titleBarOnMonitor(one, 10, 1081));
    // Right of and below the monitor: the old corner test took these.
    EXPECT_FALSE(titleBarOnMonitor(one, 1891, 1080));
    EXPECT_FALSE(titleBarOnMonitor(one, 2500, 900));
    EXPECT_FALSE(titleBarOnMonitor(one, 100, 29));
    EXPECT_FALSE(titleBarOnMonitor(one, 100, -400));
}

TEST(TitleBarDrag, MovesThatLeaveTheScreenAreRefused) {
    const WindowBox screen{0, 1080, 1920, 0};
    const WindowBox window{100, 900, 400, 700};
    EXPECT_TRUE(dragMoveAllowed(screen, window, 10, 10));
    EXPECT_FALSE(dragMoveAllowed(screen, window, -101, 0));
    EXPECT_FALSE(dragMoveAllowed(screen, window, 1521, 0));
    EXPECT_TRUE(dragMoveAllowed(screen, window, 0, 155));   // top at screen top - 25
    EXPECT_FALSE(dragMoveAllowed(screen, window, 0, 156));
    EXPECT_FALSE(dragMoveAllowed(screen, window, 0, -876));  // top below screen bottom + 25
}

class PlacedPanel : public KvtImWindow {
public:
    PlacedPanel(int left, int top, int right, int bottom, int decoration)
        : KvtImWindow(left, top, right, bottom, decoration) {}
    void ConfigureContext() override {}
    void BuildContents() override {}
};

class PlacementTest : public PanelHostTest {
protected:
    std::string prf;
    void SetUp() override {
        PanelHostTest::SetUp();
        resetPrimaryMonitor();
        setWindowPositionsPathForTesting(nullptr);
        prf = (root / "Output/preferences/X-Plane Window Positions.prf").string();
        xphost::setMonitors({{0, 1080, 1920, 0}, {1920, 1200, 3840, 0}});
    }
    void TearDown() override {
        resetPrimaryMonitor();
        PanelHostTest::TearDown();
    }
    void writePrf(const std::string& text, time_t mtime) {
        std::ofstream(prf, std::ios::binary) << text;
        utimbuf times{mtime, mtime};
        ASSERT_EQ(utime(prf.c_str(), &times), 0);
    }
};

TEST_F(PlacementTest, PrimaryMonitorIsReadAgainOnlyWhenTheFileTimeChanges) {
    writePrf(twoMonitors("-30", "10"), 1000000);
    const PrimaryMonitor& first = refreshPrimaryMonitor();
    ASSERT_TRUE(first.valid);
    EXPECT_EQ(first.left, 1920);
    EXPECT_EQ(first.top, 1200);
    EXPECT_FLOAT_EQ(first.offset, 10.0f);

    // New content, same time: the last result stands.
    writePrf(twoMonitors("5", "10"), 1000000);
    EXPECT_EQ(refreshPrimaryMonitor().left, 1920);
    writePrf(twoMonitors("5", "10"), 1000100);
    EXPECT_EQ(refreshPrimaryMonitor().left, 0);

    // A monitor the simulator doesn't have leaves the record invalid.
    writePrf("monitor/0/m_monitor 7\nmonitor/0/m_usage wmgr_usage_normal_visuals\n", 1000200);
    EXPECT_FALSE(refreshPrimaryMonitor().valid);
    std::remove(prf.c_str());
    EXPECT_FALSE(refreshPrimaryMonitor().valid);
}

TEST_F(PlacementTest, NewPanelsOpenOnThePrimaryMonitorOrBelowTheDesktopTop) {
    writePrf(twoMonitors("-30", "10"), 2000000);
    PlacedPanel panel(0, 300, 400, 0, 1);
    panel.PlaceOnPrimaryMonitor();
    int l = 0, t = 0, r = 0, b = 0;
    XPLMGetWindowGeometry(panel.GetWindowId(), &l, &t, &r, &b);
    EXPECT_EQ(t, 1100);
    EXPECT_EQ(l, 1920 + 960 - 200);
    EXPECT_EQ(r - l, 400);
    EXPECT_EQ(t - b, 300);

    // No preference file: the desktop's centre, but a tall window is pushed down
    // below the simulator's title bar and keeps its height.
    std::remove(prf.c_str());
    PlacedPanel tall(0, 1180, 300, 0, 1);
    tall.PlaceOnPrimaryMonitor();
    XPLMGetWindowGeometry(tall.GetWindowId(), &l, &t, &r, &b);
    EXPECT_EQ(t, 1200 - 30 - 35);
    EXPECT_EQ(t - b, 1180);
    EXPECT_EQ(l, 1920 - 150);
}

TEST_F(PlacementTest, SavedPositionsAreTestedAgainstTodaysMonitors) {
    EXPECT_TRUE(IsPositionOnMonitor(WindowPosition{1, 2000, 1100, 2400, 900}));
    EXPECT_TRUE(IsPositionOnMonitor(WindowPosition{2, 2000, 1100, 2400, 900}));
    EXPECT_FALSE(IsPositionOnMonitor(WindowPosition{0, 10, 100, 50, 50}));
    EXPECT_FALSE(IsPositionOnMonitor(WindowPosition{4, 10, 100, 50, 50}));

    // The second monitor goes: popped-out places on it are gone too.
    xphost::setMonitors({{0, 1080, 1920, 0}});
    EXPECT_FALSE(IsPositionOnMonitor(WindowPosition{2, 2000, 1100, 2400, 900}));
    EXPECT_FALSE(IsPositionOnMonitor(WindowPosition{2, 100, 1100, 400, 900})) << "above the top";

    // A windowed simulator reports no monitors: the screen stands in for them.
    xphost::setMonitorsFullScreen(false);
    MonitorTable table;
    FillGlobalMonitors(table);
    EXPECT_EQ(table.count, 1);
    EXPECT_EQ(table.right[0], 1920);
    FillOsMonitors(table);
    EXPECT_EQ(table.count, 1);
}

TEST_F(PlacementTest, SavedPlaceOnAGoneMonitorComesBackOntoThePrimaryMonitor) {
    writePrf(twoMonitors("-30", "10"), 3000000);
    PlacedPanel panel(0, 300, 400, 0, 1);
    int l = 0, t = 0, r = 0, b = 0;
    // Still there: the saved place is taken as it is.
    EXPECT_TRUE(panel.RestorePosition(WindowPosition{1, 2200, 1000, 2600, 700}));
    XPLMGetWindowGeometry(panel.GetWindowId(), &l, &t, &r, &b);
    EXPECT_EQ(l, 2200);
    EXPECT_EQ(t, 1000);

    // The second monitor is unplugged: the same place would be right of every monitor.
    xphost::setMonitors({{0, 1080, 1920, 0}});
    writePrf(twoMonitors("10", "-30"), 3000100);
    EXPECT_FALSE(panel.RestorePosition(WindowPosition{1, 2200, 1000, 2600, 700}));
    XPLMGetWindowGeometry(panel.GetWindowId(), &l, &t, &r, &b);
    EXPECT_EQ(t, 1080 - 100) << "100 below the primary monitor's top";
    EXPECT_EQ(l, 960 - 200) << "centred on it";
    EXPECT_EQ(r - l, 400) << "its own size, not the saved one";
    EXPECT_EQ(t - b, 300);

    // A popped-out place below every monitor neither pops the window out.
    EXPECT_FALSE(panel.RestorePosition(WindowPosition{2, 100, -50, 500, -350}));
    EXPECT_FALSE(XPLMWindowIsPoppedOut(panel.GetWindowId()));
    EXPECT_TRUE(panel.RestorePosition(WindowPosition{2, 100, 900, 500, 600}));
    EXPECT_TRUE(XPLMWindowIsPoppedOut(panel.GetWindowId()));
    XPLMGetWindowGeometryOS(panel.GetWindowId(), &l, &t, &r, &b);
    EXPECT_EQ(l, 100);
    EXPECT_EQ(b, 600);
}

TEST_F(PlacementTest, PopedOutWindowSizeIsInOsPixelsAndKeepsItsCorner) {
    xphost::setDrawScale(2.0f);
    PlacedPanel panel(100, 500, 300, 400, 1);
    XPLMSetWindowPositioningMode(panel.GetWindowId(), xplm_WindowPopOut, -1);
    int width = 0, height = 0;
    panel.GetWindowSize(width, height);
    EXPECT_EQ(width, 400);
    EXPECT_EQ(height, 200);
    panel.SetWindowSize(600, 300);
    int l = 0, t = 0, r = 0, b = 0;
    XPLMGetWindowGeometryOS(panel.GetWindowId(), &l, &t, &r, &b);
    EXPECT_EQ(l, 200);
    EXPECT_EQ(t, 1000);
    EXPECT_EQ(r, 800);
    EXPECT_EQ(b, 700);
}

}  // namespace

#include "host/mouse.h"

namespace {

TEST_F(PlacementTest, TitleBarDragStopsAtTheEdgeAndFollowsAgainAfter) {
    xphost::setMonitors({{0, 1080, 1920, 0}});
    PlacedPanel panel(100, 900, 400, 700, 2);
    const XPLMWindowID id = panel.GetWindowId();
    TitleBarDrag drag;
    int l = 0, t = 0, r = 0, b = 0;

    xphost::setMousePosition(150, 890);
    dragByTitleBar(drag, id, true, true, DragMode::wholeWindow);
    xphost::setMousePosition(170, 870);
    dragByTitleBar(drag, id, false, true, DragMode::wholeWindow);
    XPLMGetWindowGeometry(id, &l, &t, &r, &b);
    EXPECT_EQ(l, 120);
    EXPECT_EQ(t, 880);

    xphost::setMousePosition(0, 870);  // would put the left edge at -50
    dragByTitleBar(drag, id, false, true, DragMode::wholeWindow);
    XPLMGetWindowGeometry(id, &l, &t, &r, &b);
    EXPECT_EQ(l, 120);
    xphost::setMousePosition(10, 870);  // back: moves by the pointer's last step only
    dragByTitleBar(drag, id, false, true, DragMode::wholeWindow);
    XPLMGetWindowGeometry(id, &l, &t, &r, &b);
    EXPECT_EQ(l, 130);

    dragByTitleBar(drag, id, false, false, DragMode::wholeWindow);
    EXPECT_FALSE(drag.dragging);

    // A docked panel only changes its top, and stays at least 50 high.
    PlacedPanel docked(0, 300, 1920, 0, 2);
    TitleBarDrag dockDrag;
    xphost::setMousePosition(500, 290);
    dragByTitleBar(dockDrag, docked.GetWindowId(), true, true, DragMode::topOnly);
    xphost::setMousePosition(500, 100);
    dragByTitleBar(dockDrag, docked.GetWindowId(), false, true, DragMode::topOnly);
    XPLMGetWindowGeometry(docked.GetWindowId(), &l, &t, &r, &b);
    EXPECT_EQ(t, 100);
    xphost::setMousePosition(500, 30);
    dragByTitleBar(dockDrag, docked.GetWindowId(), false, true, DragMode::topOnly);
    XPLMGetWindowGeometry(docked.GetWindowId(), &l, &t, &r, &b);
    EXPECT_EQ(t, 50);
    EXPECT_EQ(b, 0);
    EXPECT_EQ(r, 1920);
}

}  // namespace
