// The simulator-free logic of ImgWindow, against a real ImGui io record.
#include <gtest/gtest.h>
#include <imgui.h>

#include "panels/img_window_logic.h"

namespace {

class ImGuiIoTest : public ::testing::Test {
protected:
    ImGuiContext* context = nullptr;
    void SetUp() override {
        context = ImGui::CreateContext();
        ImGui::GetIO().IniFilename = nullptr;
    }
    void TearDown() override { ImGui::DestroyContext(context); }
    ImGuiIO& io() { return ImGui::GetIO(); }
    int queuedCharacters() { return io().InputQueueCharacters.Size; }
};

TEST_F(ImGuiIoTest, KeyQueueGivesOneEventPerFrameAndDropsUnwantedKeys) {
    std::deque<KeyEvent> queue{{'a', keyFlagDown, 65}, {'b', keyFlagDown, 66}};
    io().WantCaptureKeyboard = true;
    EXPECT_TRUE(deliverOneKey(queue, io()));
    EXPECT_EQ(queue.size(), 1u) << "the second key waits for the next frame";
    EXPECT_TRUE(io().KeysDown[65]);
    EXPECT_FALSE(io().KeysDown[66]);
    EXPECT_EQ(queuedCharacters(), 1);
    EXPECT_TRUE(deliverOneKey(queue, io()));
    EXPECT_TRUE(io().KeysDown[66]);
    EXPECT_EQ(queuedCharacters(), 2);
    EXPECT_FALSE(deliverOneKey(queue, io()));

    // Nothing wants the keyboard: the key is consumed from the queue, not kept for later.
    io().WantCaptureKeyboard = false;
    queue.push_back({'c', keyFlagDown, 67});
    EXPECT_FALSE(deliverOneKey(queue, io()));
    EXPECT_TRUE(queue.empty());
    EXPECT_FALSE(io().KeysDown[67]);
    io().WantCaptureKeyboard = true;
    EXPECT_FALSE(deliverOneKey(queue, io()));
    EXPECT_EQ(queuedCharacters(), 2);
}

TEST_F(ImGuiIoTest, ModifiersAndReleasesChangeKeyStateButAddNoText) {
    io().WantCaptureKeyboard = true;
    std::deque<KeyEvent> queue{{'c', keyFlagDown | keyFlagControl, 67},
                               {'x', keyFlagDown | keyFlagOption, 88},
                               {'A', keyFlagDown | keyFlagShift, 65},
                               {'A', keyFlagUp | keyFlagShift, 65},
                               {'\r', keyFlagDown, 13}};
    deliverOneKey(queue, io());
    EXPECT_TRUE(io().KeyCtrl);
    EXPECT_TRUE(io().KeysDown[67]);
    deliverOneKey(queue, io());
    EXPECT_TRUE(io().KeyAlt);
    EXPECT_FALSE(io().KeyCtrl);
    EXPECT_EQ(queuedCharacters(), 0);
    deliverOneKey(queue, io());
    EXPECT_TRUE(io().KeyShift);
    EXPECT_EQ(queuedCharacters(), 1) << "shift still types";
    io().KeysDown[65] = false;
    deliverOneKey(queue, io());
    EXPECT_FALSE(io().KeysDown[65]) << "a release doesn't press";
    EXPECT_EQ(queuedCharacters(), 1);
    deliverOneKey(queue, io());
    EXPECT_TRUE(io().KeysDown[13]);
    EXPECT_EQ(queuedCharacters(), 1) << "control characters are keys, not text";

    io().KeysDown[300] = true;
    clearAllKeys(io());
    for (bool down : io().KeysDown) EXPECT_FALSE(down);
}

TEST_F(ImGuiIoTest, ReleaseWaitsForTheEndOfTheFrame) {
    int pending = -1;
    applyMouseStatus(io(), 1, 0, pending);
    applyMouseStatus(io(), 3, 0, pending);  // down and up before any frame
    EXPECT_TRUE(io().MouseDown[0]);
    EXPECT_EQ(pending, 0);
    finishPendingRelease(io(), pending);
    EXPECT_FALSE(io().MouseDown[0]);
    EXPECT_EQ(pending, -1);

    applyMouseStatus(io(), 2, 1, pending);  // a drag alone holds the right button
    EXPECT_TRUE(io().MouseDown[1]);
    finishPendingRelease(io(), pending);
    EXPECT_TRUE(io().MouseDown[1]);
}

TEST_F(ImGuiIoTest, PointerNotHeardOfSinceTheLastFrameIsGoneUnlessAButtonIsHeld) {
    bool seen = true;
    io().MousePos = ImVec2(40, 30);
    forgetAbsentPointer(io(), seen);  // a callback came: the place stands
    EXPECT_EQ(io().MousePos.x, 40);
    EXPECT_FALSE(seen) << "cleared for the next frame";
    forgetAbsentPointer(io(), seen);  // nothing came
    EXPECT_EQ(io().MousePos.x, noMousePosition);
    EXPECT_EQ(io().MousePos.y, noMousePosition);

    io().MousePos = ImVec2(40, 30);
    io().MouseDown[1] = true;  // a held button keeps its drag's place
    forgetAbsentPointer(io(), seen);
    EXPECT_EQ(io().MousePos.x, 40);
}

TEST(ImgWindowCoordinates, GlobalToWindowAndOutsideIsNoMouse) {
    const WindowBox box{100, 500, 400, 300};
    float x = 0, y = 0;
    globalToImGui(box, 150, 450, x, y);
    EXPECT_FLOAT_EQ(x, 50);
    EXPECT_FLOAT_EQ(y, 50);
    globalToImGui(box, 400, 300, x, y);  // the far corner is still inside
    EXPECT_FLOAT_EQ(x, 300);
    EXPECT_FLOAT_EQ(y, 200);
    globalToImGui(box, 150, 501, x, y);  // only y is outside
    EXPECT_EQ(x, noMousePosition);
    EXPECT_EQ(y, noMousePosition);
    globalToImGui(box, 99, 400, x, y);
    EXPECT_EQ(x, noMousePosition);
    EXPECT_EQ(y, noMousePosition);
}

// The simulator's 2D matrices at a user interface scale: a plain modelview and a
// projection from global boxels onto the viewport's pixels.
void scaledMatrices(float scale, int width, int height, float mv[16], float proj[16], int vp[4]) {
    for (int i = 0; i < 16; ++i) mv[i] = proj[i] = 0;
    mv[0] = mv[5] = mv[10] = mv[15] = 1;
    proj[0] = 2.0f * scale / static_cast<float>(width);
    proj[5] = 2.0f * scale / static_cast<float>(height);
    proj[10] = -1;
    proj[12] = proj[13] = -1;
    proj[15] = 1;
    vp[0] = vp[1] = 0;
    vp[2] = width;
    vp[3] = height;
}

TEST(ImgWindowClip, ScissorFollowsTheDrawScaleAndViewportOrigin) {
    // Float arithmetic may land a hair below a whole pixel, which truncation then
    // takes down by one: a pixel either way is the simulator's own behaviour.
    float mv[16], proj[16];
    int vp[4];
    scaledMatrices(1.5f, 2880, 1620, mv, proj, vp);
    // Window at left 100, top 500; clip 10..110 across, 20..60 down.
    NativeRect r = clipRectToNative(10, 20, 110, 60, 100, 500, mv, proj, vp);
    EXPECT_NEAR(r.left, 165, 1);    // (100 + 10) * 1.5
    EXPECT_NEAR(r.right, 315, 1);   // (100 + 110) * 1.5
    EXPECT_NEAR(r.top, 720, 1);     // (500 - 20) * 1.5
    EXPECT_NEAR(r.bottom, 660, 1);  // (500 - 60) * 1.5

    // Fractional clip corners truncate to whole boxels before scaling.
    r = clipRectToNative(10.7f, 20.4f, 110.9f, 60.2f, 100, 500, mv, proj, vp);
    EXPECT_NEAR(r.left, 165, 1);
    EXPECT_NEAR(r.top, 718, 1);  // 500 - 20.4 = 479.6 -> 479 boxels

    // A viewport that starts inside the framebuffer (a second monitor's view).
    scaledMatrices(1.0f, 1000, 800, mv, proj, vp);
    vp[0] = 1920;
    vp[1] = 40;
    r = clipRectToNative(0, 0, 100, 100, 200, 700, mv, proj, vp);
    EXPECT_NEAR(r.left, 2120, 1);
    EXPECT_NEAR(r.top, 740, 1);
    EXPECT_NEAR(r.bottom, 640, 1);
}

TEST(ImgWindowClip, UnfilteredAtlasOnlyWhereTexelsMeetPixelsOneToOne) {
    float mv[16], proj[16];
    int vp[4];
    scaledMatrices(1.0f, 1920, 1080, mv, proj, vp);
    EXPECT_TRUE(unitIsOnePixel(175, 1005, mv, proj, vp));
    vp[0] = 1920;  // a second monitor's viewport keeps whole pixels
    EXPECT_TRUE(unitIsOnePixel(2100, 1005, mv, proj, vp));
    scaledMatrices(1.5f, 2880, 1620, mv, proj, vp);
    EXPECT_FALSE(unitIsOnePixel(175, 1005, mv, proj, vp));
    scaledMatrices(1.0f, 1920, 1080, mv, proj, vp);
    mv[12] = 0.5f;  // a window moved by half a pixel would sample between texels
    EXPECT_FALSE(unitIsOnePixel(175, 1005, mv, proj, vp));
}

TEST(ImgWindowVr, ChangesOnlyOnTransitions) {
    EXPECT_EQ(vrChange(true, false), VrChange::enter);
    EXPECT_EQ(vrChange(true, true), VrChange::none);
    EXPECT_EQ(vrChange(false, true), VrChange::leave);
    EXPECT_EQ(vrChange(false, false), VrChange::none);
}

}  // namespace
