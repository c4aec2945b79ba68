// Writing the screen to a PNG file (libpng), for the runner's screenshot step and
// for looking at what the plug-in drew.
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "host/windows.h"

#ifdef HOST_HAVE_PNG
#include <png.h>
#endif

namespace xphost {

bool writePng(const std::string& path, const uint8_t* rgba, int width, int height, std::string* error) {
#ifdef HOST_HAVE_PNG
    // Written beside the target and renamed, so a reader never sees half a picture.
    const std::string temporary = path + ".tmp";
    std::FILE* file = std::fopen(temporary.c_str(), "wb");
    if (!file) {
        if (error) *error = "cannot write " + path;
        return false;
    }
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (!png || !info || setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        std::fclose(file);
        std::remove(temporary.c_str());
        if (error) *error = "PNG encoding failed";
        return false;
    }
    png_init_io(png, file);
    png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), 8,
                 PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_compression_level(png, 3);
    png_write_info(png, info);
    for (int y = 0; y < height; ++y)
        png_write_row(png, const_cast<png_bytep>(rgba + static_cast<size_t>(y) * static_cast<size_t>(width) * 4));
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    const bool closed = std::fclose(file) == 0;
    if (!closed || std::rename(temporary.c_str(), path.c_str()) != 0) {
        std::remove(temporary.c_str());
        if (error) *error = "cannot write " + path;
        return false;
    }
    return true;
#else
    if (error) *error = "built without libpng";
    return false;
#endif
}

bool readPng(const std::string& path, std::vector<uint8_t>& rgbaTopDown, int& width, int& height,
             std::string* error) {
#ifdef HOST_HAVE_PNG
    png_image image;
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str())) {
        if (error) *error = "cannot read " + path + ": " + image.message;
        return false;
    }
    image.format = PNG_FORMAT_RGBA;
    rgbaTopDown.assign(PNG_IMAGE_SIZE(image), 0);
    if (!png_image_finish_read(&image, nullptr, rgbaTopDown.data(), 0, nullptr)) {
        if (error) *error = "cannot decode " + path + ": " + image.message;
        png_image_free(&image);
        return false;
    }
    width = static_cast<int>(image.width);
    height = static_cast<int>(image.height);
    return true;
#else
    if (error) *error = "built without libpng";
    return false;
#endif
}

}  // namespace xphost
