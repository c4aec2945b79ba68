#include "panels/messages.h"

#include <cstdarg>
#include <cstdio>
#include <deque>

#include <imgui.h>

#include "XPLMProcessing.h"
#include "XPLMUtilities.h"
#include "data/settings.h"
#include "panels/msg_box_widget.h"

namespace {

struct MessageBoxQueue {
    std::deque<MessageBoxRequest> requests;
    XPLMFlightLoopID flightLoopId = nullptr;
};

MessageBoxQueue* queue = nullptr;
std::deque<std::string> announcements;

// Opens every waiting box; they all open in the same frame, oldest first.
float openQueuedBoxes(float, float, int, void* refcon) {
    auto* q = static_cast<MessageBoxQueue*>(refcon);
    while (!q->requests.empty()) {
        MessageBoxRequest request = std::move(q->requests.front());
        q->requests.pop_front();
        MsgBoxWidget::Open(request);
    }
    return -1.0f;
}

MessageBoxQueue& messageQueue() {
    if (!queue) {
        queue = new MessageBoxQueue;
        XPLMCreateFlightLoop_t params{};
        params.structSize = sizeof params;
        params.phase = xplm_FlightLoop_Phase_AfterFlightModel;
        params.callbackFunc = openQueuedBoxes;
        params.refcon = queue;
        queue->flightLoopId = XPLMCreateFlightLoop(&params);
        XPLMScheduleFlightLoop(queue->flightLoopId, -1.0f, 1);
    }
    return *queue;
}

bool voicePromptsDisabled() { return settings().DISABLE_VOICE_PROMPTS; }

}  // namespace

void showMessageBox(const std::string& title, const std::string& text) {
    showMessageBoxWithCallback(title, text, nullptr);
}

void showMessageBoxWithCallback(const std::string& title, const std::string& text, MessageBoxCallback callback) {
    messageQueue().requests.push_back(MessageBoxRequest{title, text, callback});
}

void destroyMessageBoxQueue() {
    // Open boxes go too: nothing of the plug-in may stay registered once it stops.
    ImGuiContext* current = ImGui::GetCurrentContext();
    for (int i = 0; i < openMessageBoxCount(); ++i)
        if (openMessageBox(i)->GetContext() == current) current = nullptr;
    while (openMessageBoxCount() > 0) delete openMessageBox(0);
    ImGui::SetCurrentContext(current);
    if (!queue) return;
    if (queue->flightLoopId) XPLMDestroyFlightLoop(queue->flightLoopId);
    delete queue;
    queue = nullptr;
}

void announce(const char* format, ...) {
    if (voicePromptsDisabled()) return;
    char text[1024];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    announcements.emplace_back(text);
}

void speakQueuedAnnouncements() {
    while (!announcements.empty()) {
        const std::string text = std::move(announcements.front());
        announcements.pop_front();
        XPLMSpeakString(text.c_str());
    }
}

std::vector<MessageBoxRequest> queuedMessageBoxes() {
    if (!queue) return {};
    return std::vector<MessageBoxRequest>(queue->requests.begin(), queue->requests.end());
}

std::vector<std::string> queuedAnnouncements() {
    return std::vector<std::string>(announcements.begin(), announcements.end());
}
