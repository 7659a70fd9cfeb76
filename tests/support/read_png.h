// SPDX-License-Identifier: GPL-3.0-or-later
// PNG files as pictures.
#pragma once

#include "platform/platform.h"

#include <png.h>
#include <string>

namespace polyfab::test {

/// The picture in the file; an empty one when it can't be read.
inline Bitmap readPng(const std::string& path) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str())) return {};
    image.format = PNG_FORMAT_BGRA; // in memory 0xAARRGGBB, the lowest byte first
    Bitmap picture{static_cast<int>(image.width), static_cast<int>(image.height), {}};
    picture.pixels.resize(std::size_t{image.width} * image.height);
    if (!png_image_finish_read(&image, nullptr, picture.pixels.data(), 0, nullptr)) return {};
    return picture;
}

} // namespace polyfab::test
