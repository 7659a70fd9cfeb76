// SPDX-License-Identifier: GPL-3.0-or-later
// The readers behind readImage, a file each. They return "" or why the bytes can't be read, and may
// throw std::bad_alloc; what `image` holds after a failure does not matter.
#pragma once

#include "picture/image.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace polyfab {

/// Makes room for the pixels, all 0, unless the size is refused.
[[nodiscard]] std::string makeRoom(Image& image, std::int64_t width, std::int64_t height);

[[nodiscard]] std::string decodePng(std::string_view bytes, Image& image);
[[nodiscard]] std::string decodeJpeg(std::string_view bytes, Image& image);
[[nodiscard]] std::string decodeBmp(std::string_view bytes, Image& image);
[[nodiscard]] std::string decodePpm(std::string_view bytes, Image& image);
/// Nothing tells such a file from any other: all that make no sense as one are of an unknown kind.
[[nodiscard]] std::string decodeTga(std::string_view bytes, Image& image);

inline constexpr const char* unknownImage = "I don't know this kind of file";

/// What readers say of a file that ends before its pixels do.
inline constexpr const char* imageEndsEarly = "the file ends too early";

/// A sample of so many bits, 1 to 16, as one of 8.
[[nodiscard]] constexpr std::uint32_t toByte(std::uint32_t sample, unsigned bits) {
    const std::uint32_t highest = (1U << bits) - 1;
    return (sample * 255 + highest / 2) / highest;
}

[[nodiscard]] constexpr std::uint32_t opaque(std::uint32_t red, std::uint32_t green,
                                             std::uint32_t blue) {
    return 0xFF000000 | red << 16 | green << 8 | blue;
}

} // namespace polyfab
