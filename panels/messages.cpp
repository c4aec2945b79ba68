#include "panels/messages.h"

#include <imgui.h>

#include "XPLMProcessing.h"
#include "XPLMUtilities.h"
#include "panels/msg_box_widget.h"

namespace {

XPLMFlightLoopID flightLoopId = nullptr;

// Opens every waiting box; they all open in the same frame, oldest first.
float openQueuedBoxes(float, float, int, void*) {
    MessageBoxRequest request;
    while (takeMessageBox(request)) MsgBoxWidget::Open(request);
    return -1.0f;
}

// The flight loop that delivers the boxes exists from the first request to host disable.
void scheduleDelivery() {
    if (flightLoopId) return;
    XPLMCreateFlightLoop_t params{};
    params.structSize = sizeof params;
    params.phase = xplm_FlightLoop_Phase_AfterFlightModel;
    params.callbackFunc = openQueuedBoxes;
    params.refcon = nullptr;
    flightLoopId = XPLMCreateFlightLoop(&params);
    XPLMScheduleFlightLoop(flightLoopId, -1.0f, 1);
}

// The panels deliver every box any layer asks for. Installed when the library loads,
// so that a box asked for before the plug-in is enabled (or by code run without the
// plug-in's start) opens as it always did.
[[maybe_unused]] const bool deliveryInstalled = (setMessageBoxListener(scheduleDelivery), true);

}  // namespace

void destroyMessageBoxQueue() {
    // Open boxes go too: nothing of the plug-in may stay registered once it stops.
    ImGuiContext* current = ImGui::GetCurrentContext();
    for (int i = 0; i < openMessageBoxCount(); ++i)
        if (openMessageBox(i)->GetContext() == current) current = nullptr;
    while (openMessageBoxCount() > 0) delete openMessageBox(0);
    ImGui::SetCurrentContext(current);
    dropQueuedMessageBoxes();
    if (!flightLoopId) return;
    XPLMDestroyFlightLoop(flightLoopId);
    flightLoopId = nullptr;
}

void forgetMessageBoxQueue() {
    dropQueuedMessageBoxes();
    flightLoopId = nullptr;
}

void speakQueuedAnnouncements() {
    std::string text;
    while (takeAnnouncement(text)) XPLMSpeakString(text.c_str());
}
