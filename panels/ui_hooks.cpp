#include "panels/ui_hooks.h"

#include "platform/process_hooks.h"

#include <imgui.h>
#include <imgui_internal.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

struct RecordedItem {
    ImGuiID id = 0;
    std::string label;
    std::string window;
    int flags = 0;
    ImRect rect;
    bool visible = true;
    bool disabled = false;
    bool isWindow = false;
};

// ImGui ends its text log at the End of every window that isn't a child (menus,
// popups, tooltips); each run of the log goes to a memory stream of its own.
struct TextStream {
    char* data = nullptr;
    size_t size = 0;
    std::FILE* file = nullptr;
};

struct Capture {
    VistarigUiReceiver receiver = nullptr;
    ImGuiContext* context = nullptr;
    void* windowId = nullptr;
    int left = 0, top = 0;
    std::vector<RecordedItem> items;
    std::unordered_map<ImGuiID, size_t> lastById;
    std::deque<TextStream> streams;
};

Capture capture;

bool capturing(ImGuiContext* ctx) { return capture.receiver && ctx == capture.context; }

void startTextLog() {
    ImGuiContext& g = *capture.context;
    if (g.LogEnabled || !g.CurrentWindow) return;
    // The stream writes its buffer's place into the record: it must not move.
    TextStream& stream = capture.streams.emplace_back();
#ifdef _WIN32
    // No memory streams there; the Windows stand-in drives no panels, so only the
    // items are recorded.
    stream.file = nullptr;
#else
    stream.file = open_memstream(&stream.data, &stream.size);
#endif
    if (!stream.file) {
        capture.streams.pop_back();
        return;
    }
    ImGui::LogBegin(ImGuiLogType_File, 0);
    g.LogFile = stream.file;
    // Logging normally opens tree nodes so that their contents reach the log; the
    // driver must see the panel exactly as the user does.
    g.LogDepthToExpand = INT_MIN / 2;
}

// Global boxels from ImGui's window coordinates (y down from the top left corner);
// the inverse of ImgWindow's mouse mapping.
void toGlobal(const ImRect& r, VistarigUiItem& out) {
    out.left = static_cast<float>(capture.left) + r.Min.x;
    out.right = static_cast<float>(capture.left) + r.Max.x;
    out.top = static_cast<float>(capture.top) - r.Min.y;
    out.bottom = static_cast<float>(capture.top) - r.Max.y;
}

// "Vistarig Control Panel/ChildCameraLists_1A2B3C4D" -> "ChildCameraLists".
std::string shortWindowName(const ImGuiWindow* window) {
    std::string name = window->Name;
    if (!(window->Flags & ImGuiWindowFlags_ChildWindow)) return name;
    const size_t slash = name.rfind('/');
    if (slash != std::string::npos) name = name.substr(slash + 1);
    if (name.size() > 9 && name[name.size() - 9] == '_') name.resize(name.size() - 9);
    return name;
}

}  // namespace

void uiHooksFrameBegin(ImGuiContext* context, void* windowId, int left, int top) {
    capture.receiver = reinterpret_cast<VistarigUiReceiver>(findProcessFunction("vistarig_ui_frame"));
    capture.context = context;
    capture.windowId = windowId;
    capture.left = left;
    capture.top = top;
    capture.items.clear();
    capture.lastById.clear();
    capture.streams.clear();
    if (context) context->TestEngineHookItems = capture.receiver != nullptr;
}

void uiHooksWindowBegun() {
    if (capturing(ImGui::GetCurrentContext())) startTextLog();
}

void uiHooksFrameEnd() {
    if (!capturing(ImGui::GetCurrentContext())) return;
    ImGuiContext& g = *capture.context;
    if (g.LogEnabled) ImGui::LogFinish();
    std::string text;
    for (TextStream& stream : capture.streams) {
        if (stream.data) text.append(stream.data, stream.size);
        std::free(stream.data);
    }
    capture.streams.clear();

    for (ImGuiWindow* window : g.Windows) {
        if (!window->Active || window->Hidden || window->IsFallbackWindow) continue;
        RecordedItem item;
        item.id = window->ID;
        item.label = shortWindowName(window);
        item.window = window->ParentWindow ? window->ParentWindow->Name : window->Name;
        item.rect = window->Rect();
        item.isWindow = true;
        capture.items.push_back(item);
    }

    std::vector<VistarigUiItem> out(capture.items.size());
    for (size_t i = 0; i < capture.items.size(); ++i) {
        const RecordedItem& r = capture.items[i];
        VistarigUiItem& o = out[i];
        o.id = r.id;
        o.label = r.label.c_str();
        o.window = r.window.c_str();
        o.flags = r.flags;
        toGlobal(r.rect, o);
        o.visible = r.visible ? 1 : 0;
        o.disabled = r.disabled ? 1 : 0;
        o.isWindow = r.isWindow ? 1 : 0;
    }
    VistarigUiFrame frame;
    frame.windowId = capture.windowId;
    frame.items = out.data();
    frame.count = static_cast<int>(out.size());
    frame.text = text.c_str();
    frame.wantTextInput = g.IO.WantTextInput ? 1 : 0;
    frame.activeId = g.ActiveId;
    capture.receiver(&frame);
    capture.context->TestEngineHookItems = false;
    capture.receiver = nullptr;
}

void uiHooksLabelItem(unsigned int id, const char* label) {
    if (!capturing(ImGui::GetCurrentContext())) return;
    auto found = capture.lastById.find(id);
    if (found != capture.lastById.end() && capture.items[found->second].label.empty())
        capture.items[found->second].label = label;
}

// ---- ImGui's hooks (the library is built with IMGUI_ENABLE_TEST_ENGINE)

void ImGuiTestEngineHook_ItemAdd(ImGuiContext* ctx, const ImRect& bb, ImGuiID id) {
    if (!capturing(ctx)) return;
    ImGuiWindow* window = ctx->CurrentWindow;
    if (window && window->IsFallbackWindow) return;  // ImGui's implicit "Debug" window
    startTextLog();
    RecordedItem item;
    item.id = id;
    item.rect = bb;
    item.window = window ? window->Name : "";
    item.visible = window ? bb.Overlaps(window->ClipRect) : true;
    item.disabled = (ctx->CurrentItemFlags & ImGuiItemFlags_Disabled) != 0;
    // A window's own controls carry no label of their own.
    if (window && !(window->Flags & ImGuiWindowFlags_ChildWindow)) {
        if (id == window->MoveId)
            item.label = "#title";
        else if (id == window->GetIDNoKeepAlive("#COLLAPSE"))
            item.label = "#collapse";
        else if (id == window->GetIDNoKeepAlive("#CLOSE"))
            item.label = "#close";
    }
    capture.lastById[id] = capture.items.size();
    capture.items.push_back(std::move(item));
}

void ImGuiTestEngineHook_ItemInfo(ImGuiContext* ctx, ImGuiID id, const char* label, ImGuiItemStatusFlags flags) {
    if (!capturing(ctx)) return;
    auto found = capture.lastById.find(id);
    if (found == capture.lastById.end()) return;
    RecordedItem& item = capture.items[found->second];
    item.label = label ? label : "";
    item.flags = flags;
}

void ImGuiTestEngineHook_Log(ImGuiContext*, const char*, ...) {}

const char* ImGuiTestEngine_FindItemDebugLabel(ImGuiContext* ctx, ImGuiID id) {
    if (!capturing(ctx)) return nullptr;
    auto found = capture.lastById.find(id);
    return found == capture.lastById.end() ? nullptr : capture.items[found->second].label.c_str();
}
