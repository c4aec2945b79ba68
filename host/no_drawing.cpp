// The Windows stand-in draws nothing (there is no OSMesa there): the XPLM graphics
// calls keep their bookkeeping, the draw pass runs its callbacks with no context, and
// pictures fail with a message. Replaces graphics.cpp, scene.cpp, screenshot.cpp and
// title_text.cpp in the Windows build.
#include <cstdio>
#include <string>
#include <vector>

#include "XPLMGraphics.h"
#include "host/host_internal.h"
#include "host/scene.h"
#include "host/title_text.h"
#include "host/windows.h"

namespace xphost {

bool makeScreenCurrent() { return false; }
bool makeBufferCurrent(std::vector<uint8_t>&, int, int) { return false; }

const uint8_t* screenBuffer(int& width, int& height) {
    width = height = 0;
    return nullptr;
}

bool writePng(const std::string&, const uint8_t*, int, int, std::string* error) {
    if (error) *error = "this host draws no pictures";
    return false;
}

std::string drawTitleText(const std::string& text, float, float, float, float) { return text; }
void drawScene(int, int) {}
// Markers only show in pictures, which this host doesn't draw.
void addMarker(double, double, double) {}
void clearMarkers() {}

}  // namespace xphost

using namespace xphost;

namespace {
int nextTexture = 1;
constexpr int charWidth = 7, charHeight = 10;
}  // namespace

void XPLMSetGraphicsState(int, int, int, int, int, int, int) { checkThread("XPLMSetGraphicsState"); }
void XPLMBindTexture2d(int, int) { checkThread("XPLMBindTexture2d"); }

void XPLMGenerateTextureNumbers(int* textures, int count) {
    if (!checkThread("XPLMGenerateTextureNumbers") || !textures || count <= 0) return;
    for (int i = 0; i < count; ++i) textures[i] = nextTexture++;
}

int XPLMGetTexture(XPLMTextureID) {
    checkThread("XPLMGetTexture");
    return 0;
}

void XPLMDrawTranslucentDarkBox(int, int, int, int) { checkThread("XPLMDrawTranslucentDarkBox"); }
void XPLMDrawString(float*, int, int, const char*, int*, XPLMFontID) { checkThread("XPLMDrawString"); }
void XPLMDrawNumber(float*, int, int, double, int, int, int, XPLMFontID) { checkThread("XPLMDrawNumber"); }

void XPLMGetFontDimensions(XPLMFontID, int* width, int* height, int* digitsOnly) {
    if (width) *width = charWidth;
    if (height) *height = charHeight;
    if (digitsOnly) *digitsOnly = 0;
}

float XPLMMeasureString(XPLMFontID, const char* text, int count) {
    return text ? static_cast<float>(count * charWidth) : 0.0f;
}
