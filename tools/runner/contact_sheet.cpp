// The contact sheet of a run: each picture shrunk to a thumbnail with a caption set in
// the simulator's own font through FreeType, four to a row.
#include "contact_sheet.h"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <cstdint>
#include <sstream>
#include <vector>

#include "host/host.h"
#include "host/windows.h"

namespace {

constexpr int kShrink = 6;          // 1920 x 1080 becomes 320 x 180
constexpr int kColumns = 4;
constexpr int kGap = 8;
constexpr int kCaptionHeight = 40;  // two lines
constexpr int kFontPixels = 14;

struct Picture {
    int width = 0, height = 0;
    std::vector<uint8_t> rgba;
    std::string lines[2];
};

struct Sheet {
    std::vector<Picture> pictures;
    std::vector<std::string> names;  // by SelectedCamera
};

Sheet& sheet() {
    static Sheet s;
    return s;
}

// Averages each kShrink x kShrink block.
Picture shrink(const std::vector<uint8_t>& image, int width, int height) {
    Picture p;
    p.width = width / kShrink;
    p.height = height / kShrink;
    p.rgba.assign(static_cast<size_t>(p.width) * static_cast<size_t>(p.height) * 4, 255);
    for (int y = 0; y < p.height; ++y)
        for (int x = 0; x < p.width; ++x)
            for (int c = 0; c < 3; ++c) {
                int sum = 0;
                for (int dy = 0; dy < kShrink; ++dy)
                    for (int dx = 0; dx < kShrink; ++dx)
                        sum += image[(static_cast<size_t>(y * kShrink + dy) * static_cast<size_t>(width) +
                                      static_cast<size_t>(x * kShrink + dx)) * 4 + static_cast<size_t>(c)];
                p.rgba[(static_cast<size_t>(y) * static_cast<size_t>(p.width) + static_cast<size_t>(x)) * 4 +
                       static_cast<size_t>(c)] = static_cast<uint8_t>(sum / (kShrink * kShrink));
            }
    return p;
}

// Dark text onto the sheet at a baseline; characters outside the face are skipped.
void drawText(FT_Face face, const std::string& text, int x, int baseline, std::vector<uint8_t>& canvas, int canvasWidth,
              int canvasHeight) {
    if (!face) return;
    for (unsigned char ch : text) {
        if (FT_Load_Char(face, ch, FT_LOAD_RENDER) != 0) continue;
        const FT_GlyphSlot g = face->glyph;
        for (unsigned row = 0; row < g->bitmap.rows; ++row)
            for (unsigned col = 0; col < g->bitmap.width; ++col) {
                const int px = x + g->bitmap_left + static_cast<int>(col);
                const int py = baseline - g->bitmap_top + static_cast<int>(row);
                if (px < 0 || py < 0 || px >= canvasWidth || py >= canvasHeight) continue;
                const int coverage = g->bitmap.buffer[row * static_cast<unsigned>(g->bitmap.pitch) + col];
                uint8_t* p = &canvas[(static_cast<size_t>(py) * static_cast<size_t>(canvasWidth) +
                                      static_cast<size_t>(px)) * 4];
                for (int c = 0; c < 3; ++c) p[c] = static_cast<uint8_t>(p[c] - (p[c] - 20) * coverage / 255);
            }
        x += static_cast<int>(g->advance.x >> 6);
    }
}

}  // namespace

void learnCameraNames(const std::string& text) {
    auto& names = sheet().names;
    names.clear();
    std::istringstream in(text);
    std::string line, category;
    int categoryIndex = -1, cameraIndex = 0;
    std::getline(in, line);  // the header
    while (std::getline(in, line)) {
        const size_t first = line.find(','), second = line.find(',', first + 1);
        if (first == std::string::npos || second == std::string::npos) continue;
        const std::string cat = line.substr(0, first);
        if (cat != category || categoryIndex < 0) {
            category = cat;
            ++categoryIndex;
            cameraIndex = 0;
        }
        const size_t number = static_cast<size_t>(categoryIndex * 150 + cameraIndex++);
        if (names.size() <= number) names.resize(number + 1);
        names[number] = line.substr(first + 1, second - first - 1);
    }
}

std::string cameraName() {
    bool ok = false;
    const double selected = xphost::getValue("KVT/Vistarig/integration/SelectedCamera", 0, &ok);
    const auto& names = sheet().names;
    if (!ok || selected < 0) return "no camera";
    const size_t index = static_cast<size_t>(selected);
    if (index < names.size() && !names[index].empty()) return names[index];
    return "camera " + xphost::formatNumber(selected);
}

bool addContactPicture(const std::string& doing) {
    if (!xphost::drawing()) return false;
    int width = 0, height = 0;
    const std::vector<uint8_t> image = xphost::screenImage(width, height);
    if (image.empty() || width < kShrink || height < kShrink) return false;
    Picture p = shrink(image, width, height);
    p.lines[0] = "frame " + std::to_string(xphost::frameNumber()) + "   " + cameraName();
    p.lines[1] = doing;
    sheet().pictures.push_back(std::move(p));
    return true;
}

int contactPictureCount() { return static_cast<int>(sheet().pictures.size()); }

bool writeContactSheet(const std::string& path, std::string& error) {
    const auto& pictures = sheet().pictures;
    if (pictures.empty()) {
        error = "no pictures were taken";
        return false;
    }
    int cellWidth = 0, cellHeight = 0;
    for (const Picture& p : pictures) {
        cellWidth = std::max(cellWidth, p.width);
        cellHeight = std::max(cellHeight, p.height);
    }
    cellHeight += kCaptionHeight;
    const int count = static_cast<int>(pictures.size());
    const int columns = std::min(kColumns, count), rows = (count + kColumns - 1) / kColumns;
    const int width = kGap + columns * (cellWidth + kGap), height = kGap + rows * (cellHeight + kGap);
    std::vector<uint8_t> canvas(static_cast<size_t>(width) * static_cast<size_t>(height) * 4, 255);
    for (size_t i = 3; i < canvas.size(); i += 4) canvas[i] = 255;

    // The font the runner puts in the tree; without it the sheet has no captions.
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    if (FT_Init_FreeType(&library) == 0) {
        const std::string font = xphost::root() + "Resources/fonts/Roboto-Regular.ttf";
        if (FT_New_Face(library, font.c_str(), 0, &face) == 0)
            FT_Set_Pixel_Sizes(face, 0, kFontPixels);
        else
            face = nullptr;
    }
    for (int i = 0; i < count; ++i) {
        const Picture& p = pictures[static_cast<size_t>(i)];
        const int left = kGap + (i % kColumns) * (cellWidth + kGap);
        const int top = kGap + (i / kColumns) * (cellHeight + kGap);
        for (int y = 0; y < p.height; ++y)
            std::copy_n(&p.rgba[static_cast<size_t>(y) * static_cast<size_t>(p.width) * 4],
                        static_cast<size_t>(p.width) * 4,
                        &canvas[(static_cast<size_t>(top + y) * static_cast<size_t>(width) + static_cast<size_t>(left)) * 4]);
        drawText(face, p.lines[0], left + 2, top + p.height + 16, canvas, width, height);
        drawText(face, p.lines[1], left + 2, top + p.height + 34, canvas, width, height);
    }
    if (face) FT_Done_Face(face);
    if (library) FT_Done_FreeType(library);
    return xphost::writePng(path, canvas.data(), width, height, &error);
}
