// The plug-in's half of the panel test driver. Dear ImGui is built with its item
// hooks; while the simulator stand-in offers a receiver (the C function
// vistarig_ui_frame, looked up at run time and absent in X-Plane), every item a
// panel submits is recorded with its rectangle, label and state, the text the frame
// draws is captured, and at the end of the frame all of it goes to the receiver in
// global coordinates. Without a receiver the hooks cost one flag test per item.
#pragma once

struct ImGuiContext;

extern "C" {
// One item or window of a frame, as the receiver gets it. The host keeps its own copy
// of this layout.
struct VistarigUiItem {
    unsigned int id;
    const char* label;   // as submitted ("Save All Cameras##SaveAllCamerasButton"); "" when none
    const char* window;  // the ImGui window it belongs to; for a window: its short name
    int flags;           // ImGui's item status flags (checkable, checked, openable, opened...)
    float left, top, right, bottom;  // global boxels, y up
    int visible;         // not clipped away by its window
    int disabled;        // drawn disabled: clicks do nothing
    int isWindow;        // 1 for a window or child window
};
struct VistarigUiFrame {
    void* windowId;  // the simulator window the frame was drawn in
    const VistarigUiItem* items;
    int count;
    const char* text;  // the text the frame drew, one line per row of items
    int wantTextInput;  // a text field has the keyboard
    unsigned int activeId;
};
typedef void (*VistarigUiReceiver)(const VistarigUiFrame* frame);
}

// Around one panel frame: begin before NewFrame, windowBegun right after the panel's
// own Begin, end after its End. `left` and `top` place ImGui's origin in global boxels.
void uiHooksFrameBegin(ImGuiContext* context, void* windowId, int left, int top);
void uiHooksWindowBegun();
void uiHooksFrameEnd();

// Names an item that ImGui adds without a label of its own (combos, arrow buttons), so
// that the driver finds it as it finds any other control. Costs one test without a receiver.
void uiHooksLabelItem(unsigned int id, const char* label);
