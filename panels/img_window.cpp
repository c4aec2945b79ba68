#include "panels/img_window.h"

#ifdef _WIN32
#include <windows.h>  // before GL/gl.h, which needs its calling conventions
#endif
#include <GL/gl.h>
#include <imgui.h>
#include <imgui_freetype.h>

#include <cstdint>
#include <cstring>

#include "XPLMDataAccess.h"
#include "XPLMGraphics.h"
#include "XPLMPlugin.h"
#include "data/aircraft_files.h"
#include "data/text_io.h"
#include "panels/ui_hooks.h"

namespace {

XPLMDataRef vrEnabledRef = nullptr;
XPLMDataRef modelViewRef = nullptr;
XPLMDataRef viewportRef = nullptr;
XPLMDataRef projectionRef = nullptr;
XPLMDataRef frameRatePeriodRef = nullptr;
bool datarefsFound = false;
std::string iniPath;

void findDatarefs() {
    if (datarefsFound) return;
    vrEnabledRef = XPLMFindDataRef("sim/graphics/VR/enabled");
    modelViewRef = XPLMFindDataRef("sim/graphics/view/modelview_matrix");
    viewportRef = XPLMFindDataRef("sim/graphics/view/viewport");
    projectionRef = XPLMFindDataRef("sim/graphics/view/projection_matrix");
    frameRatePeriodRef = XPLMFindDataRef("sim/operation/misc/frame_rate_period");

    // "Imgui.ini" lives in the plug-in's own folder.
    char path[2048] = {};
    XPLMGetPluginInfo(XPLMGetMyID(), nullptr, path, nullptr, nullptr);
    std::string folder;
    pluginDirectoryFromPath(path, folder);
    iniPath = folder + "Imgui.ini";
    datarefsFound = true;
}

ImgWindow* self(void* refcon) { return static_cast<ImgWindow*>(refcon); }

// ImGui would write "Imgui.ini" in place, over a read-only file and not atomically:
// the plug-in hands it the text and writes the file itself.
void saveIniIfWanted() {
    ImGuiIO& io = ImGui::GetIO();
    if (!io.WantSaveIniSettings) return;
    io.WantSaveIniSettings = false;
    if (iniPath.empty()) return;
    size_t size = 0;
    const char* text = ImGui::SaveIniSettingsToMemory(&size);
    if (text) replaceFileAtomically(iniPath.c_str(), std::string(text, size));
}

}  // namespace

const std::string& ImgWindow::IniPath() { return iniPath; }

ImgWindow::ImgWindow(int left_, int top_, int right_, int bottom_, int decoration_, int layer_)
    : top(top_), bottom(bottom_), left(left_), right(right_), layer(layer_), decoration(decoration_) {
    XPLMCreateWindow_t params;
    std::memset(&params, 0, sizeof params);
    params.structSize = sizeof params;
    params.left = left;
    params.top = top;
    params.right = right;
    params.bottom = bottom;
    params.visible = 0;
    params.drawWindowFunc = DrawCallback;
    params.handleMouseClickFunc = LeftClickCallback;
    params.handleKeyFunc = KeyCallback;
    params.handleCursorFunc = CursorCallback;
    params.handleMouseWheelFunc = WheelCallback;
    params.refcon = this;
    params.decorateAsFloatingWindow = decoration;
    params.layer = layer;
    params.handleRightClickFunc = RightClickCallback;
    windowId = XPLMCreateWindowEx(&params);
}

void ImgWindow::Init() {
    context = ImGui::CreateContext(nullptr);
    ImGui::SetCurrentContext(context);
    findDatarefs();
    ImGuiIO& io = ImGui::GetIO();
    io.IniFilename = nullptr;
    std::string iniText;
    if (!iniPath.empty() && readWholeFile(iniPath.c_str(), iniText, size_t(1) << 20))
        ImGui::LoadIniSettingsFromMemory(iniText.data(), iniText.size());

    // ImGui's keys by the simulator's virtual key codes, in ImGui's key order.
    static const int keys[][2] = {
        {ImGuiKey_Tab, 9},       {ImGuiKey_LeftArrow, 37}, {ImGuiKey_RightArrow, 39}, {ImGuiKey_UpArrow, 38},
        {ImGuiKey_DownArrow, 40}, {ImGuiKey_PageUp, 33},   {ImGuiKey_PageDown, 34},   {ImGuiKey_Home, 36},
        {ImGuiKey_End, 35},      {ImGuiKey_Insert, 45},    {ImGuiKey_Delete, 46},     {ImGuiKey_Backspace, 8},
        {ImGuiKey_Space, 32},    {ImGuiKey_Enter, 13},     {ImGuiKey_Escape, 27},     {ImGuiKey_KeyPadEnter, 187},
        {ImGuiKey_A, 65},        {ImGuiKey_C, 67},         {ImGuiKey_V, 86},          {ImGuiKey_X, 88},
        {ImGuiKey_Y, 89},        {ImGuiKey_Z, 90}};
    for (const auto& key : keys) io.KeyMap[key[0]] = key[1];

    ImGui::GetStyle().WindowRounding = 0;
    // Smooth lines from geometry, not from the atlas, so that sampling the atlas
    // without filtering (see RenderFrame) leaves their edges as they were.
    ImGui::GetStyle().AntiAliasedLinesUseTex = false;
    ConfigureContext();
}

ImgWindow::~ImgWindow() {
    if (context) {
        ImGui::SetCurrentContext(context);
        if (fontTexture) {
            const GLuint texture = static_cast<GLuint>(fontTexture);
            glDeleteTextures(1, &texture);
        }
        saveIniIfWanted();
        ImGui::DestroyContext(context);
    }
    if (windowId) XPLMDestroyWindow(windowId);
}

bool ImgWindow::IsVisible() const { return XPLMGetWindowIsVisible(windowId) != 0; }

void ImgWindow::SetTitle(const std::string& newTitle) {
    title = newTitle;
    XPLMSetWindowTitle(windowId, title.c_str());
}

void ImgWindow::SetVisible(bool visible) {
    if (visible) CheckVr();
    if (IsVisible() == visible) return;
    if (visible && !CanShow()) return;
    XPLMSetWindowIsVisible(windowId, visible ? 1 : 0);
}

void ImgWindow::CheckVr() {
    if (!vrEnabledRef) vrEnabledRef = XPLMFindDataRef("sim/graphics/VR/enabled");
    const bool vr = vrEnabledRef && XPLMGetDatai(vrEnabledRef) != 0;
    switch (vrChange(vr, inVr)) {
        case VrChange::enter:
            XPLMGetWindowGeometry(windowId, &savedLeft, &savedTop, &savedRight, &savedBottom);
            XPLMSetWindowPositioningMode(windowId, xplm_WindowVR, 0);
            inVr = true;
            break;
        case VrChange::leave:
            XPLMSetWindowPositioningMode(windowId, xplm_WindowPositionFree, -1);
            XPLMSetWindowGeometry(windowId, savedLeft, savedTop, savedRight, savedBottom);
            inVr = false;
            break;
        case VrChange::none: break;
    }
}

void ImgWindow::BuildFontTexture() {
    ImGuiIO& io = ImGui::GetIO();
    ImGuiFreeType::BuildFontAtlas(io.Fonts, ImGuiFreeTypeBuilderFlags_ForceAutoHint);
    unsigned char* pixels = nullptr;
    int width = 0, height = 0;
    io.Fonts->GetTexDataAsRGBA32(&pixels, &width, &height);

    int texture = 0;
    XPLMGenerateTextureNumbers(&texture, 1);
    XPLMBindTexture2d(texture, 0);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
    fontTexture = texture;
    fontFilter = GL_LINEAR;
    io.Fonts->TexID = reinterpret_cast<ImTextureID>(static_cast<intptr_t>(texture));
}

void ImgWindow::BuildFrame() {
    ImGui::SetCurrentContext(context);
    ImGuiIO& io = ImGui::GetIO();
    if (firstFrame) BuildFontTexture();
    deliverOneKey(keyQueue, io);
    // The cursor callback comes only while the pointer is over the window: its
    // absence is how the window learns that the pointer has gone.
    forgetAbsentPointer(io, pointerSeen);

    XPLMGetWindowGeometry(windowId, &left, &top, &right, &bottom);
    const float width = static_cast<float>(right - left), height = static_cast<float>(top - bottom);
    if (frameRatePeriodRef) {
        const float period = XPLMGetDataf(frameRatePeriodRef);
        if (period > 0) io.DeltaTime = period;
    }
    io.DisplaySize = ImVec2(width, height);
    io.DisplayFramebufferScale = ImVec2(1, 1);

    uiHooksFrameBegin(context, windowId, left, top);
    ImGui::NewFrame();
    ImGui::SetNextWindowPos(ImVec2(0, 0), ImGuiCond_Always);
    ImGui::SetNextWindowSize(ImVec2(width, height), ImGuiCond_Always);
    ImGui::Begin(title.c_str(), &isOpen, windowFlags);
    uiHooksWindowBegun();
    BuildContents();
    ImGui::End();
    uiHooksFrameEnd();

    // Hold the keyboard only while an ImGui item wants it, and leave no key stuck
    // down when giving it back.
    const bool hasFocus = XPLMHasKeyboardFocus(windowId) != 0;
    if (io.WantCaptureKeyboard && !hasFocus) {
        XPLMTakeKeyboardFocus(windowId);
    } else if (!io.WantCaptureKeyboard && hasFocus) {
        XPLMTakeKeyboardFocus(nullptr);
        clearAllKeys(io);
    }
    firstFrame = false;
}

void ImgWindow::RenderFrame() {
    ImDrawData* data = ImGui::GetDrawData();
    ImGuiIO& io = ImGui::GetIO();
    if (data) data->ScaleClipRects(io.DisplayFramebufferScale);

    if (modelViewRef) XPLMGetDatavf(modelViewRef, modelView, 0, 16);
    if (projectionRef) XPLMGetDatavf(projectionRef, projection, 0, 16);
    if (viewportRef) XPLMGetDatavi(viewportRef, viewport, 0, 4);

    XPLMSetGraphicsState(0, 1, 0, 1, 1, 0, 0);
    glPushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
    glPushAttrib(GL_COLOR_BUFFER_BIT | GL_ENABLE_BIT | GL_TRANSFORM_BIT);
    glDisable(GL_CULL_FACE);
    glEnable(GL_SCISSOR_TEST);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glEnable(GL_TEXTURE_2D);
    // Nearest sampling is a quarter cheaper on a software renderer and gives the same
    // pixels while texels and pixels line up; a scaled window needs the filtering.
    const GLint filter = unitIsOnePixel(left, top, modelView, projection, viewport) ? GL_NEAREST : GL_LINEAR;
    if (fontTexture && filter != fontFilter) {
        XPLMBindTexture2d(fontTexture, 0);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
        fontFilter = filter;
    }

    // ImGui's y runs down from the window's top left corner; the simulator's runs up.
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glScalef(1.0f, -1.0f, 1.0f);
    glTranslatef(static_cast<float>(left), static_cast<float>(-top), 0.0f);

    for (int n = 0; data && n < data->CmdListsCount; ++n) {
        const ImDrawList* list = data->CmdLists[n];
        const auto* vertices = reinterpret_cast<const unsigned char*>(list->VtxBuffer.Data);
        const ImDrawIdx* cursor = list->IdxBuffer.Data;
        glVertexPointer(2, GL_FLOAT, sizeof(ImDrawVert), vertices + IM_OFFSETOF(ImDrawVert, pos));
        glTexCoordPointer(2, GL_FLOAT, sizeof(ImDrawVert), vertices + IM_OFFSETOF(ImDrawVert, uv));
        glColorPointer(4, GL_UNSIGNED_BYTE, sizeof(ImDrawVert), vertices + IM_OFFSETOF(ImDrawVert, col));
        for (const ImDrawCmd& command : list->CmdBuffer) {
            if (command.UserCallback) {
                command.UserCallback(list, &command);
            } else {
                XPLMBindTexture2d(static_cast<int>(reinterpret_cast<intptr_t>(command.GetTexID())), 0);
                const NativeRect clip =
                    clipRectToNative(command.ClipRect.x, command.ClipRect.y, command.ClipRect.z, command.ClipRect.w,
                                     left, top, modelView, projection, viewport);
                glScissor(clip.left, clip.bottom, clip.right - clip.left, clip.top - clip.bottom);
                glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(command.ElemCount),
                               sizeof(ImDrawIdx) == 2 ? GL_UNSIGNED_SHORT : GL_UNSIGNED_INT, cursor);
            }
            cursor += command.ElemCount;
        }
    }

    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glDisableClientState(GL_COLOR_ARRAY);
    XPLMBindTexture2d(0, 0);
    glPopAttrib();
    glPopClientAttrib();

    finishPendingRelease(io, pendingRelease);
}

void ImgWindow::MouseEvent(int x, int y, XPLMMouseStatus status, int button) {
    ImGui::SetCurrentContext(context);
    ImGuiIO& io = ImGui::GetIO();
    pointerSeen = true;
    globalToImGui(WindowBox{left, top, right, bottom}, x, y, io.MousePos.x, io.MousePos.y);
    applyMouseStatus(io, status, button, pendingRelease);
}

void ImgWindow::DrawCallback(XPLMWindowID, void* refcon) {
    ImgWindow* window = self(refcon);
    if (!window->context) return;  // not yet through Init
    window->BuildFrame();
    ImGui::Render();
    window->RenderFrame();
    saveIniIfWanted();
    if (window->destroyRequested) delete window;
}

int ImgWindow::LeftClickCallback(XPLMWindowID, int x, int y, XPLMMouseStatus status, void* refcon) {
    if (self(refcon)->context) self(refcon)->MouseEvent(x, y, status, 0);
    return 1;
}

int ImgWindow::RightClickCallback(XPLMWindowID, int x, int y, XPLMMouseStatus status, void* refcon) {
    if (self(refcon)->context) self(refcon)->MouseEvent(x, y, status, 1);
    return 1;
}

XPLMCursorStatus ImgWindow::CursorCallback(XPLMWindowID, int x, int y, void* refcon) {
    ImgWindow* window = self(refcon);
    if (window->context) {
        ImGui::SetCurrentContext(window->context);
        ImGuiIO& io = ImGui::GetIO();
        window->pointerSeen = true;
        globalToImGui(WindowBox{window->left, window->top, window->right, window->bottom}, x, y, io.MousePos.x,
                      io.MousePos.y);
    }
    return xplm_CursorDefault;
}

int ImgWindow::WheelCallback(XPLMWindowID, int x, int y, int wheel, int clicks, void* refcon) {
    ImgWindow* window = self(refcon);
    if (!window->context) return 1;
    ImGui::SetCurrentContext(window->context);
    ImGuiIO& io = ImGui::GetIO();
    window->pointerSeen = true;
    globalToImGui(WindowBox{window->left, window->top, window->right, window->bottom}, x, y, io.MousePos.x,
                  io.MousePos.y);
    if (wheel == 0)
        io.MouseWheel = static_cast<float>(clicks);
    else
        io.MouseWheelH = static_cast<float>(clicks);
    return 1;
}

void ImgWindow::KeyCallback(XPLMWindowID, char key, XPLMKeyFlags flags, char virtualKey, void* refcon, int) {
    KeyEvent event;
    event.key = key;
    event.flags = static_cast<uint32_t>(flags);
    event.virtualKey = static_cast<uint8_t>(virtualKey);
    self(refcon)->keyQueue.push_back(event);
}
