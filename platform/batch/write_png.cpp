// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures as PNG files, through libpng's simplified interface (it needs no error jumps).
#include "platform/batch/write_png.h"

#include "io/save_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
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

/// A stream whose bytes go into the file.
std::FILE* streamInto(SaveFile& file) {
    const cookie_io_functions_t operations = {
        nullptr,
        [](void* cookie, const char* bytes, std::size_t size) {
            static_cast<SaveFile*>(cookie)->append({bytes, size});
            return static_cast<ssize_t>(size);
        },
        nullptr, nullptr};
    return ::fopencookie(&file, "w", operations);
}

} // namespace

std::string writePng(const Bitmap& picture, const std::string& path) {
    SaveFile file;
    if (!file.open(path)) return std::strerror(errno);
    std::FILE* const stream = streamInto(file);
    if (stream == nullptr) return std::strerror(errno);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = png_uint_32(picture.width);
    image.height = png_uint_32(picture.height);
    image.format = PNG_FORMAT_RGB;
    const std::vector<png_byte> bytes = rgbBytes(picture);
    const bool made = png_image_write_to_stdio(&image, stream, 0, bytes.data(), 0, nullptr) != 0;
    const bool closed = std::fclose(stream) == 0;
    if (!made) return image.message;
    errno = 0;
    if (closed && file.commit()) return "";
    return errno != 0 ? std::strerror(errno) : "it can't be written to its end";
}

} // namespace polyfab
