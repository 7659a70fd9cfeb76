// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/backgrounds.h"

#include "display/options.h"
#include "mesh/stale.h"
#include "picture/smooth.h"
#include "picture/texture.h"
#include "picture/workers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <utility>

namespace polyfab {
namespace {

struct Background {
    explicit Background(Image&& picture) : image(std::move(picture)), texture(image) {}
    Image image;
    Texture texture;
    Place from;       ///< its upper left corner on the sheet
    double texel = 0; ///< side of its pixels there
};

std::array<std::unique_ptr<Background>, 2> backgrounds; ///< the left one first

std::unique_ptr<Background>& behind(bool leftPane) { return backgrounds[leftPane ? 0 : 1]; }

/// Where the sheet begins that pictures lie on, in a pane.
Place sheetIn(bool leftPane) { return {leftPane ? view.sheet.x : view.sheet.z, view.sheet.y}; }

/// Of the picture's sides, pixel middles being whole numbers.
struct Sides {
    double left, top, right, bottom;
};

Sides sidesOf(const Background& background, bool leftPane) {
    const Place sheet = sheetIn(leftPane);
    const double left = sheet.x + background.from.x * view.scale;
    const double top = sheet.y + background.from.y * view.scale;
    const double size = background.texel * view.scale;
    return {left, top, left + size * background.image.width, top + size * background.image.height};
}

/// The whole numbers from `low` up to `high`, within a pane of this size. What lies between two of
/// them is drawn, too: on the one nearest to its middle.
std::pair<int, int> pixelsBetween(double low, double high, int size) {
    const auto bounded = [=](double place) {
        return static_cast<int>(std::ceil(std::clamp(place, 0.0, double(size))));
    };
    const int first = bounded(low), end = bounded(high);
    const double middle = std::floor((low + high) / 2 + 0.5);
    if (first < end || !(middle >= 0 && middle < size)) return {first, end};
    return {static_cast<int>(middle), static_cast<int>(middle) + 1};
}

/// A picture that is laid between its sides, and pixels of the pane that show it.
struct Sheet {
    const Image& level;
    Sides at;
    std::pair<int, int> columns;
    bool smaller;

    void draw(const Canvas& canvas, int from, int to) const {
        constexpr TexturePlace corner[3] = {{0, 1}, {1, 1}, {0, 0}};
        LaidTexture picture;
        if (!picture.lay(corner, level)) return;
        for (int y = from; y < to; ++y) {
            std::uint32_t* const pixels = canvas.pixels + y * canvas.stride;
            const double down = share(y, at.top, at.bottom, level.height);
            for (int x = columns.first; x < columns.second; ++x) {
                const Shares place{share(x, at.left, at.right, level.width), down};
                const std::uint32_t texel = smaller ? picture.mixed(place) : picture.nearest(place);
                const unsigned alpha = texel >> 24;
                pixels[x] = blended(pixels[x], texel | 0xFF000000, alpha + (alpha >> 7));
            }
        }
    }

  private:
    /// Along a side the picture shows what it does half a texel from there: it does not repeat.
    static double share(int pixel, double from, double to, int texels) {
        const double half = 0.5 / texels;
        return std::clamp((pixel - from) / (to - from), half, 1 - half);
    }
};

void fit(Background& background, bool leftPane) {
    const Image& image = background.image;
    const Panes panes = panesOf(view.client);
    const double width = leftPane ? panes.leftWidth : panes.rightWidth, height = panes.height;
    const double size = std::max(1e-3, std::min(width / image.width, height / image.height));
    const Place sheet = sheetIn(leftPane);
    const auto start = [&](double room, int texels, double begin) {
        return ((room - size * texels - 1) / 2 - begin) / view.scale;
    };
    background.from = {start(width, image.width, sheet.x), start(height, image.height, sheet.y)};
    background.texel = size / view.scale;
    stale.picture = true;
}

} // namespace

void setBackground(bool leftPane, Image image) {
    behind(leftPane) = std::make_unique<Background>(std::move(image));
    fit(*behind(leftPane), leftPane);
}

void refitBackgrounds() {
    for (const bool left : {true, false}) {
        if (behind(left) != nullptr) fit(*behind(left), left);
    }
}

const Image* backgroundOf(bool leftPane) {
    const Background* const background = behind(leftPane).get();
    return background == nullptr ? nullptr : &background->image;
}

void drawBackground(const Pane& pane) {
    const Background* const background = behind(pane.left).get();
    if (background == nullptr || !displayOptions.backgrounds) return;
    const Sides at = sidesOf(*background, pane.left);
    for (const double side : {at.left, at.top, at.right, at.bottom}) {
        if (!(std::abs(side) < 1e9)) return; // far out, or a pixel of it covers the pane
    }
    const double size = background->texel * view.scale; // pixels
    const Sheet sheet{background->texture.levelFor(1 / (size * size)), at,
                      pixelsBetween(at.left, at.right, pane.canvas.width), size < 1};
    const auto [first, end] = pixelsBetween(at.top, at.bottom, pane.canvas.height);
    const auto count = static_cast<std::size_t>(std::max(0, end - first));
    inPieces(count, 32, [&, top = first](std::size_t from, std::size_t to) {
        sheet.draw(pane.canvas, top + static_cast<int>(from), top + static_cast<int>(to));
    });
}

void resetBackgrounds() { backgrounds = {}; }

} // namespace polyfab
