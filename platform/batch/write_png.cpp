// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures as PNG files, through libpng's simplified interface (it needs no error jumps).
#include "platform/batch/write_png.h"

#include <png.h>

namespace polyfab {
namespace {

/// Three bytes a pixel: the top byte of a pixel is no transparency to be kept.
std::vector<png_byte> rgbBytes(const Bitmap& picture) {
    std::vector<png_byte> bytes;
    bytes.reserve(picture.pixels.size() * 3);
    for (const std::uint32_t pixel : picture.pixels) {
        for (const int shift : {16, 8, 0}) bytes.push_back(png_byte((pixel >> shift) & 0xFF));
    }
    return bytes;
}

} // namespace

std::string writePng(const Bitmap& picture, const std::string& path) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = png_uint_32(picture.width);
    image.height = png_uint_32(picture.height);
    image.format = PNG_FORMAT_RGB;
    const std::vector<png_byte> bytes = rgbBytes(picture);
    if (png_image_write_to_file(&image, path.c_str(), 0, bytes.data(), 0, nullptr)) return "";
    return image.message;
}

} // namespace polyfab
