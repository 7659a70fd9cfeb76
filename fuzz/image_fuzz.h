// SPDX-License-Identifier: GPL-3.0-or-later
// What the targets of the picture readers share.
#pragma once

#include "fuzz/fuzz_support.h"
#include "picture/image_formats.h"
#include "picture/read_image.h"

#include <algorithm>
#include <memory>

namespace polyfab::fuzz {

/// Reads the bytes, which stand in memory of just their size. What is read must have its pixels,
/// and no more than is allowed.
inline int readPicture(std::string (*decode)(std::string_view, Image&), std::string_view bytes) {
    const std::unique_ptr<char[]> copy(new char[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), copy.get());
    Image image;
    if (!decode({copy.get(), bytes.size()}, image).empty()) return 0;
    demand(image.width > 0 && image.width <= maxImageSide, "odd width");
    demand(image.height > 0 && image.height <= maxImageSide, "odd height");
    const auto count = static_cast<std::int64_t>(image.pixels.size());
    demand(count == std::int64_t{image.width} * image.height, "other pixels than the size tells");
    demand(count <= maxImagePixels, "too many pixels");
    return 0;
}

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

} // namespace polyfab::fuzz
