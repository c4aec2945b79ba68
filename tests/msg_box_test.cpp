#include <imgui.h>

#include <cstdlib>

#include "XPLMUtilities.h"
#include "data/settings.h"
#include "panel_host_fixture.h"
#include "panels/messages.h"
#include "panels/msg_box_widget.h"

namespace {

int callbackRuns = 0;
void countCallback() { ++callbackRuns; }

int handlerShowsBox(XPLMCommandRef, XPLMCommandPhase phase, void*) {
    if (phase == xplm_CommandBegin) showMessageBoxWithCallback("Delete", "Delete the camera?", countCallback);
    return 1;
}

class MessageBoxTest : public PanelHostTest {
protected:
    void SetUp() override {
        PanelHostTest::SetUp();
        callbackRuns = 0;
        settings().DISABLE_VOICE_PROMPTS = false;
    }
    void TearDown() override {
        while (openMessageBoxCount() > 0) delete openMessageBox(0);
        destroyMessageBoxQueue();
        speakQueuedAnnouncements();
        PanelHostTest::TearDown();
    }

    xphost::WindowInfo boxWindow(const std::string& title) {
        xphost::WindowInfo info;
        EXPECT_TRUE(xphost::findWindow(title, info)) << title;
        return info;
    }

    void clickAt(const Box& button) {
        xphost::click(button.centreX(), button.centreY());
        xphost::runFrames(3);  // pressed, released (the button fires), then the flight loop destroys
    }
};

TEST_F(MessageBoxTest, BoxFromCommandHandlerOpensNextFrameAndOkRunsCallbackOnce) {
    XPLMCommandRef command = XPLMCreateCommand("test/show_box", "Shows a box");
    XPLMRegisterCommandHandler(command, handlerShowsBox, 1, nullptr);
    XPLMCommandOnce(command);
    EXPECT_EQ(queuedMessageBoxes().size(), 1u);
    EXPECT_EQ(openMessageBoxCount(), 0) << "a request only queues";

    xphost::runFrames(1);
    ASSERT_EQ(openMessageBoxCount(), 1);
    EXPECT_TRUE(queuedMessageBoxes().empty());
    xphost::runFrames(2);  // fitted to its text, then drawn at its final size
    const xphost::WindowInfo box = boxWindow("Delete");
    EXPECT_TRUE(box.visible);
    EXPECT_GE(box.drawCount, 2);

    const std::vector<Box> buttons = findButtons(box);
    ASSERT_EQ(buttons.size(), 2u) << "Cancel and Ok";
    clickAt(buttons[1]);
    EXPECT_EQ(callbackRuns, 1);
    EXPECT_EQ(openMessageBoxCount(), 0);
    EXPECT_FALSE(xphost::findWindow("Delete", const_cast<xphost::WindowInfo&>(box)));
    XPLMUnregisterCommandHandler(command, handlerShowsBox, 1, nullptr);
}

TEST_F(MessageBoxTest, CancelAndCloseBoxDestroyWithoutCallback) {
    showMessageBoxWithCallback("First", "Do you really want to delete this camera?", countCallback);
    showMessageBoxWithCallback("Second", "Do you really want to delete this camera?", countCallback);
    xphost::runFrames(3);
    ASSERT_EQ(openMessageBoxCount(), 2);

    const std::vector<Box> buttons = findButtons(boxWindow("Second"));
    ASSERT_EQ(buttons.size(), 2u);
    clickAt(buttons[0]);
    EXPECT_EQ(callbackRuns, 0);
    ASSERT_EQ(openMessageBoxCount(), 1);

    // The simulator's close box hides the window; the box then goes away by itself.
    xphost::closeWindow(boxWindow("First").id);
    xphost::runFrames(1);
    EXPECT_EQ(openMessageBoxCount(), 0);
    EXPECT_EQ(callbackRuns, 0);
}

TEST_F(MessageBoxTest, ThreeRequestsOpenThreeBoxesOldestFirstInOneFrame) {
    showMessageBox("A", "The first of three messages");
    showMessageBox("B", "The second of three messages");
    showMessageBox("C", "The third of three messages");
    xphost::runFrames(1);
    ASSERT_EQ(openMessageBoxCount(), 3);
    EXPECT_EQ(openMessageBox(0)->GetTitle(), "A");
    EXPECT_EQ(openMessageBox(1)->GetTitle(), "B");
    EXPECT_EQ(openMessageBox(2)->GetTitle(), "C");
    xphost::runFrames(2);

    // A single-button box: "Ok" alone, and it just closes.
    const std::vector<Box> buttons = findButtons(boxWindow("C"));
    ASSERT_EQ(buttons.size(), 1u);
    clickAt(buttons[0]);
    EXPECT_EQ(openMessageBoxCount(), 2);
}

TEST_F(MessageBoxTest, ScreenshotShowsTextAndButtonsAndBoxFitsItsLines) {
    showMessageBoxWithCallback("Camera file", "The camera file was saved.\n100% of the cameras are kept.",
                               countCallback);
    xphost::runFrames(3);
    const xphost::WindowInfo box = boxWindow("Camera file");

    // Two lines of Roboto 18, three empty lines, the buttons, the spacing between
    // the five rows and the padding round them.
    ImGui::SetCurrentContext(openMessageBox(0)->GetContext());
    const float lineHeight = ImGui::GetFontSize();
    const ImGuiStyle& style = ImGui::GetStyle();
    EXPECT_NEAR(box.top - box.bottom,
                5 * lineHeight + (lineHeight + 2 * style.FramePadding.y) + 4 * style.ItemSpacing.y +
                    2 * style.WindowPadding.y,
                4);
    EXPECT_GT(box.right - box.left, 200);

    // VISTARIG_SCREENSHOT_DIR keeps the picture for a look by eye.
    const char* keep = std::getenv("VISTARIG_SCREENSHOT_DIR");
    const std::string png = keep ? std::string(keep) + "/message_box.png" : (root / "box.png").string();
    std::string error;
    ASSERT_TRUE(xphost::screenshot(png, &error)) << error;
    EXPECT_GT(std::filesystem::file_size(png), 1000u);

    const std::vector<Box> buttons = findButtons(box);
    ASSERT_EQ(buttons.size(), 2u);
    EXPECT_LT(buttons[0].right, buttons[1].left);
    for (const Box& b : buttons) {
        EXPECT_GT(b.top - b.bottom, 15) << "a button is a bar, not a line";
        EXPECT_GT(countPixels(b, isText), 5) << "its label is drawn";
    }
    // The text lies above the buttons, inside the window, and the scissor keeps it there.
    const Box textArea{box.left, buttons[0].top + 1, box.right, box.top};
    EXPECT_GT(countPixels(textArea, isText), 300);
    const Box outside{box.right + 5, box.bottom, box.right + 60, box.top};
    EXPECT_EQ(countPixels(outside, isText), 0);
}

TEST_F(MessageBoxTest, ATallTextKeepsTheBoxAndItsTitleBarOnTheScreen) {
    std::string text;
    for (int i = 0; i < 45; ++i) text += "Camera " + std::to_string(i + 1) + " has a duplicate View ID\n";
    showMessageBox("Tall", text);
    xphost::runFrames(3);
    const xphost::WindowInfo box = boxWindow("Tall");
    EXPECT_LE(box.top + xphost::titleBarHeight, 1080) << "the title bar stays reachable";
    EXPECT_GE(box.bottom, 0);
    EXPECT_GT(box.top - box.bottom, 900) << "as tall as the screen allows";
}

TEST_F(MessageBoxTest, DestroyingTheQueueAtDisableLeavesNothingBehind) {
    showMessageBox("Open", "This box is already open");
    xphost::runFrames(1);
    showMessageBox("Waiting", "This one never opens");
    destroyMessageBoxQueue();
    EXPECT_EQ(openMessageBoxCount(), 0);
    EXPECT_TRUE(queuedMessageBoxes().empty());
    xphost::runFrames(2);
    EXPECT_TRUE(xphost::windows().empty());
}

TEST_F(MessageBoxTest, AnnouncementsAreSpokenTogetherAndVoiceSettingSilencesThem) {
    announce("Camera %d of %s", 3, "Cockpit");
    announce("100%% zoom");
    ASSERT_EQ(queuedAnnouncements().size(), 2u);
    EXPECT_TRUE(xphost::spoken().empty());
    speakQueuedAnnouncements();
    ASSERT_EQ(xphost::spoken().size(), 2u);
    EXPECT_EQ(xphost::spoken()[0], "Camera 3 of Cockpit");
    EXPECT_EQ(xphost::spoken()[1], "100% zoom");

    settings().DISABLE_VOICE_PROMPTS = true;
    announce("Silent");
    settings().DISABLE_VOICE_PROMPTS = false;
    speakQueuedAnnouncements();
    EXPECT_EQ(xphost::spoken().size(), 2u) << "an announcement made while silenced never comes back";
}

TEST_F(MessageBoxTest, BoxAskedForInsideAPanelFrameLeavesItsContextAlone) {
    class AskingPanel : public KvtImWindow {
    public:
        AskingPanel() : KvtImWindow(600, 900, 900, 700, 1) {}
        void ConfigureContext() override {}
        void BuildContents() override {
            if (!asked) showMessageBox("From panel", "Asked in a frame");
            asked = true;
            contextDuringFrame = ImGui::GetCurrentContext();
        }
        bool asked = false;
        ImGuiContext* contextDuringFrame = nullptr;
    };
    auto* panel = new AskingPanel;
    panel->SetTitle("Asking");
    panel->Init();
    panel->SetVisible(true);
    xphost::runFrames(1);
    EXPECT_EQ(panel->contextDuringFrame, panel->GetContext());
    xphost::runFrames(1);
    EXPECT_EQ(openMessageBoxCount(), 1);
    delete panel;
}

}  // namespace
