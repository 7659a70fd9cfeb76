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

[[nodiscard]] std::string decodePpm(std::string_view bytes, Image& image);

/// What readers say of a file that ends before its pixels do.
inline constexpr const char* imageEndsEarly = "the file ends too early";

[[nodiscard]] constexpr std::uint32_t opaque(std::uint32_t red, std::uint32_t green,
                                             std::uint32_t blue) {
    return 0xFF000000 | red << 16 | green << 8 | blue;
}

} // namespace polyfab
