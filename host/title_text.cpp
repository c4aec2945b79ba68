// The title text over a decorated window, as X-Plane shows it: the window's title in
// the simulator's user interface font, rasterised with FreeType at the screen's scale
// and cut off where the title bar's buttons begin.
#include <GL/gl.h>
#include <dlfcn.h>
#include <ft2build.h>
#include FT_FREETYPE_H

#include <string>
#include <vector>

#include "host/host.h"
#include "host/title_text.h"

namespace xphost {

namespace {

struct Font {
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    std::string loadedFrom;
};

Font& font() {
    static Font f;
    return f;
}

// Mesa's own entry points: these two are not among the ones the host defines for
// plug-ins, and the system's libGL has no context in a headless run.
template <typename F>
F mesaFunction(const char* name) {
    static void* mesa = [] {
        void* h = dlopen("libOSMesa.so.8", RTLD_NOW | RTLD_NOLOAD);
        return h ? h : dlopen("libOSMesa.so", RTLD_NOW);
    }();
    return mesa ? reinterpret_cast<F>(dlsym(mesa, name)) : nullptr;
}

bool loadFace() {
    Font& f = font();
    const std::string path = root() + "Resources/fonts/Roboto-Regular.ttf";
    if (f.face && f.loadedFrom == path) return true;
    if (!f.library && FT_Init_FreeType(&f.library) != 0) return false;
    if (f.face) FT_Done_Face(f.face), f.face = nullptr;
    if (FT_New_Face(f.library, path.c_str(), 0, &f.face) != 0) {
        f.face = nullptr;
        return false;
    }
    f.loadedFrom = path;
    return true;
}

}  // namespace

std::string drawTitleText(const std::string& text, float x, float baseline, float maxWidth, float scale) {
    if (text.empty() || !loadFace()) return std::string();
    FT_Face face = font().face;
    const int pixelSize = static_cast<int>(14.0f * scale + 0.5f);
    FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(pixelSize));
    const int limit = static_cast<int>(maxWidth * scale);
    const int ascent = static_cast<int>(face->size->metrics.ascender >> 6);
    const int descent = static_cast<int>(-(face->size->metrics.descender >> 6));
    const int height = ascent + descent;
    if (limit <= 0 || height <= 0) return std::string();

    // White glyphs whose coverage is their alpha, rows from the bottom for glDrawPixels.
    std::vector<uint8_t> image(static_cast<size_t>(limit) * static_cast<size_t>(height) * 4, 0);
    int pen = 0;
    size_t shown = 0;
    for (; shown < text.size(); ++shown) {
        if (FT_Load_Char(face, static_cast<unsigned char>(text[shown]), FT_LOAD_RENDER) != 0) continue;
        const FT_GlyphSlot glyph = face->glyph;
        const int advance = static_cast<int>(glyph->advance.x >> 6);
        if (pen + advance > limit) break;
        const FT_Bitmap& bitmap = glyph->bitmap;
        for (unsigned row = 0; row < bitmap.rows; ++row)
            for (unsigned column = 0; column < bitmap.width; ++column) {
                const int px = pen + glyph->bitmap_left + static_cast<int>(column);
                const int fromTop = ascent - glyph->bitmap_top + static_cast<int>(row);
                if (px < 0 || px >= limit || fromTop < 0 || fromTop >= height) continue;
                uint8_t* p = &image[(static_cast<size_t>(height - 1 - fromTop) * static_cast<size_t>(limit) +
                                     static_cast<size_t>(px)) * 4];
                p[0] = p[1] = p[2] = 255;
                p[3] = bitmap.buffer[row * static_cast<unsigned>(bitmap.pitch) + column];
            }
        pen += advance;
    }
    if (pen == 0) return std::string();

    // The raster position goes through the pass's matrices, so it is given in boxels.
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, limit);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    static const auto rasterPos = mesaFunction<void (*)(GLfloat, GLfloat)>("glRasterPos2f");
    static const auto drawPixels =
        mesaFunction<void (*)(GLsizei, GLsizei, GLenum, GLenum, const void*)>("glDrawPixels");
    if (!rasterPos || !drawPixels) return std::string();
    rasterPos(x, baseline - static_cast<float>(descent) / scale);
    drawPixels(pen, height, GL_RGBA, GL_UNSIGNED_BYTE, image.data());
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    return text.substr(0, shown);
}

}  // namespace xphost
