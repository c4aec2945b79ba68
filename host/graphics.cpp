// The off-screen OpenGL context and XPLMGraphics: graphics state, texture numbers and
// binding, and the simulator's simple text and box drawing.
#include <GL/gl.h>
#include <GL/osmesa.h>

#include <cstring>
#include <vector>

#include "XPLMGraphics.h"
#include "host/host_internal.h"
#include "host/windows.h"

namespace xphost {

namespace {

struct GraphicsState {
    // The context lives as long as the process (Mesa keeps a little global state of
    // its own beyond it; the sanitizer builds suppress that).
    OSMesaContext context = nullptr;
    std::vector<uint8_t> screen;
    int width = 0, height = 0;
    int boundTexture[8] = {};
};

GraphicsState& gfx() {
    static GraphicsState state;
    return state;
}

bool ensureContext() {
    GraphicsState& g = gfx();
    if (g.context) return true;
    // Compatibility profile: the plug-in draws with fixed-function GL.
    g.context = OSMesaCreateContextExt(OSMESA_RGBA, 24, 8, 0, nullptr);
    if (!g.context) writeLog("xplm_host: no Mesa off-screen context; nothing is drawn\n");
    return g.context != nullptr;
}

}  // namespace

bool makeScreenCurrent() {
    if (!ensureContext()) return false;
    GraphicsState& g = gfx();
    int left = 0, top = 0, right = 0, bottom = 0;
    for (size_t i = 0; i < monitors().size(); ++i) {
        const MonitorBounds& m = monitors()[i];
        if (i == 0 || m.left < left) left = m.left;
        if (i == 0 || m.right > right) right = m.right;
        if (i == 0 || m.top > top) top = m.top;
        if (i == 0 || m.bottom < bottom) bottom = m.bottom;
    }
    const int width = static_cast<int>(static_cast<float>(right - left) * drawScale() + 0.5f);
    const int height = static_cast<int>(static_cast<float>(top - bottom) * drawScale() + 0.5f);
    if (width != g.width || height != g.height || g.screen.empty()) {
        g.width = width > 0 ? width : 1;
        g.height = height > 0 ? height : 1;
        g.screen.assign(static_cast<size_t>(g.width) * static_cast<size_t>(g.height) * 4, 0);
    }
    return OSMesaMakeCurrent(g.context, g.screen.data(), GL_UNSIGNED_BYTE, g.width, g.height) != 0;
}

bool makeBufferCurrent(std::vector<uint8_t>& buffer, int width, int height) {
    if (!ensureContext() || width <= 0 || height <= 0) return false;
    buffer.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
    return OSMesaMakeCurrent(gfx().context, buffer.data(), GL_UNSIGNED_BYTE, width, height) != 0;
}

const uint8_t* screenBuffer(int& width, int& height) {
    width = gfx().width;
    height = gfx().height;
    return gfx().screen.empty() ? nullptr : gfx().screen.data();
}

}  // namespace xphost

using namespace xphost;

void XPLMSetGraphicsState(int fog, int textureUnits, int lighting, int alphaTesting, int alphaBlending,
                          int depthTesting, int depthWriting) {
    if (!checkThread("XPLMSetGraphicsState")) return;
    fog ? glEnable(GL_FOG) : glDisable(GL_FOG);
    for (int unit = 0; unit < 4; ++unit) {
        glActiveTexture(static_cast<GLenum>(GL_TEXTURE0 + unit));
        unit < textureUnits ? glEnable(GL_TEXTURE_2D) : glDisable(GL_TEXTURE_2D);
    }
    glActiveTexture(GL_TEXTURE0);
    lighting ? glEnable(GL_LIGHTING) : glDisable(GL_LIGHTING);
    if (alphaTesting) {
        glEnable(GL_ALPHA_TEST);
        glAlphaFunc(GL_GREATER, 0.0f);
    } else {
        glDisable(GL_ALPHA_TEST);
    }
    if (alphaBlending) {
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    } else {
        glDisable(GL_BLEND);
    }
    depthTesting ? glEnable(GL_DEPTH_TEST) : glDisable(GL_DEPTH_TEST);
    glDepthMask(depthWriting ? GL_TRUE : GL_FALSE);
}

void XPLMBindTexture2d(int texture, int unit) {
    if (!checkThread("XPLMBindTexture2d")) return;
    if (unit < 0 || unit >= 8) return;
    glActiveTexture(static_cast<GLenum>(GL_TEXTURE0 + unit));
    glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(texture));
    glActiveTexture(GL_TEXTURE0);
    gfx().boundTexture[unit] = texture;
}

void XPLMGenerateTextureNumbers(int* textures, int count) {
    if (!checkThread("XPLMGenerateTextureNumbers") || !textures || count <= 0) return;
    std::vector<GLuint> names(static_cast<size_t>(count));
    glGenTextures(count, names.data());
    for (int i = 0; i < count; ++i) textures[i] = static_cast<int>(names[static_cast<size_t>(i)]);
}

int XPLMGetTexture(XPLMTextureID) {
    checkThread("XPLMGetTexture");
    return 0;
}

void XPLMDrawTranslucentDarkBox(int left, int top, int right, int bottom) {
    if (!checkThread("XPLMDrawTranslucentDarkBox")) return;
    XPLMSetGraphicsState(0, 0, 0, 0, 1, 0, 0);
    glColor4f(0.0f, 0.0f, 0.0f, 0.5f);
    glBegin(GL_QUADS);
    glVertex2i(left, bottom);
    glVertex2i(right, bottom);
    glVertex2i(right, top);
    glVertex2i(left, top);
    glEnd();
}

// The host has no bitmap font: text draws as one small bar per character, which is
// enough to see where a plug-in writes.
namespace {
constexpr int charWidth = 7, charHeight = 10;
}

void XPLMDrawString(float* color, int x, int y, const char* text, int*, XPLMFontID) {
    if (!checkThread("XPLMDrawString") || !text) return;
    XPLMSetGraphicsState(0, 0, 0, 0, 1, 0, 0);
    if (color) glColor3f(color[0], color[1], color[2]);
    glBegin(GL_QUADS);
    for (int i = 0; text[i]; ++i) {
        if (text[i] == ' ') continue;
        const int cx = x + i * charWidth;
        glVertex2i(cx + 1, y);
        glVertex2i(cx + charWidth - 1, y);
        glVertex2i(cx + charWidth - 1, y + charHeight - 2);
        glVertex2i(cx + 1, y + charHeight - 2);
    }
    glEnd();
}

void XPLMDrawNumber(float* color, int x, int y, double value, int digits, int decimals, int showSign,
                    XPLMFontID font) {
    char text[64];
    std::snprintf(text, sizeof text, showSign ? "%+*.*f" : "%*.*f", digits, decimals, value);
    XPLMDrawString(color, x, y, text, nullptr, font);
}

void XPLMGetFontDimensions(XPLMFontID, int* width, int* height, int* digitsOnly) {
    if (width) *width = charWidth;
    if (height) *height = charHeight;
    if (digitsOnly) *digitsOnly = 0;
}

float XPLMMeasureString(XPLMFontID, const char* text, int count) {
    return text ? static_cast<float>(count * charWidth) : 0.0f;
}
