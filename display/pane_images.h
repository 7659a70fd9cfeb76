// SPDX-License-Identifier: GPL-3.0-or-later
// Plain pictures and rectangles.
#pragma once

#include "platform/platform.h"

namespace polyfab {

/// A picture of one colour, 0xFFRRGGBB.
[[nodiscard]] Bitmap plainPicture(int width, int height, std::uint32_t color);

struct PaneImages {
    Bitmap right = plainPicture(4, 4, 0xFF102A6B); ///< marks what is picked in a name list
};

inline PaneImages paneImages;

/// Copies `image` into `picture`, its upper left pixel to (x, y). What lies outside is left out.
void drawImage(Bitmap& picture, int x, int y, const Bitmap& image);

/// Fills the part of the rectangle that lies on the picture.
void fillRectangle(Bitmap& picture, int x, int y, Size size, std::uint32_t color);

} // namespace polyfab
