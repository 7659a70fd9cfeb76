// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/pane_images.h"

#include <algorithm>
#include <cstddef>

namespace polyfab {
namespace {

/// The pixel at (x, y), or the one that would stand there: just an offset from the first.
template <typename Picture>
auto pixelAt(Picture& picture, int x, int y) {
    return picture.pixels.data() + static_cast<std::ptrdiff_t>(y) * picture.width + x;
}

/// The part of the rectangle that lies on the picture.
struct Area {
    Area(const Bitmap& picture, int x, int y, Size size)
        : left(std::clamp(x, 0, picture.width)), top(std::clamp(y, 0, picture.height)),
          right(std::clamp(x + size.width, left, picture.width)),
          bottom(left < right ? std::clamp(y + size.height, top, picture.height) : top) {}
    int left, top, right, bottom;
};

} // namespace

Bitmap plainPicture(int width, int height, std::uint32_t color) {
    return {width, height,
            std::vector<std::uint32_t>(
                static_cast<std::size_t>(width) * static_cast<std::size_t>(height), color)};
}

void drawImage(Bitmap& picture, int x, int y, const Bitmap& image) {
    const Area area(picture, x, y, {image.width, image.height});
    for (int row = area.top; row < area.bottom; ++row) {
        std::copy_n(pixelAt(image, area.left - x, row - y), area.right - area.left,
                    pixelAt(picture, area.left, row));
    }
}

void fillRectangle(Bitmap& picture, int x, int y, Size size, std::uint32_t color) {
    const Area area(picture, x, y, size);
    for (int row = area.top; row < area.bottom; ++row) {
        std::fill_n(pixelAt(picture, area.left, row), area.right - area.left, color);
    }
}

} // namespace polyfab
