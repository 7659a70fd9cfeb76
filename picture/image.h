// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

namespace polyfab {

/// A picture: rows from the top, 0xAARRGGBB each, alpha not premultiplied.
struct Image {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;
};

} // namespace polyfab
