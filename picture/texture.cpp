// SPDX-License-Identifier: GPL-3.0-or-later
#include "picture/texture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace polyfab {
namespace {

const std::uint32_t* rowOf(const Image& image, int row) {
    return image.pixels.data()
           + static_cast<std::ptrdiff_t>(row) * static_cast<std::ptrdiff_t>(image.width);
}

/// Colours by how much of them there is: what is see-through has none that could shine through.
class Mixture {
  public:
    void add(std::uint32_t pixel, std::uint32_t share) {
        const std::uint32_t much = share * (pixel >> 24);
        shares += share;
        alpha += much;
        for (int i = 0; i < 3; ++i) channel[i] += much * (pixel >> 8 * i & 255);
    }
    std::uint32_t pixel() const {
        if (alpha == 0) return 0;
        std::uint32_t mixed = (alpha + shares / 2) / shares << 24;
        for (int i = 0; i < 3; ++i) mixed |= (channel[i] + alpha / 2) / alpha << 8 * i;
        return mixed;
    }

  private:
    std::uint32_t shares = 0, alpha = 0, channel[3] = {};
};

/// Half as wide and high. Of an odd number the pixels in the middle go into two.
Image halved(const Image& image) {
    Image half{std::max(image.width / 2, 1), std::max(image.height / 2, 1), {}};
    half.pixels.reserve(static_cast<std::size_t>(half.width)
                        * static_cast<std::size_t>(half.height));
    const auto first = [](int i, int size, int all) {
        return static_cast<int>(std::int64_t{i} * all / size);
    };
    const auto end = [](int i, int size, int all) {
        return static_cast<int>((std::int64_t{i + 1} * all + size - 1) / size);
    };
    for (int y = 0; y < half.height; ++y) {
        for (int x = 0; x < half.width; ++x) {
            Mixture mixture;
            for (int v = first(y, half.height, image.height); v < end(y, half.height, image.height);
                 ++v) {
                const std::uint32_t* const row = rowOf(image, v);
                for (int u = first(x, half.width, image.width); u < end(x, half.width, image.width);
                     ++u) {
                    mixture.add(row[u], 1);
                }
            }
            half.pixels.push_back(mixture.pixel());
        }
    }
    return half;
}

/// The whole number below, of a value that fits.
int floorOf(double value) {
    const int cut = static_cast<int>(value);
    return cut - (value < cut ? 1 : 0);
}

int repeated(int place, int size) {
    if (static_cast<unsigned>(place) < static_cast<unsigned>(size)) return place;
    const int rest = place % size;
    return rest < 0 ? rest + size : rest;
}

/// Brings three values near 0 by whole numbers and makes texels of them.
bool toTexels(const double (&value)[3], int size, Slope& texels) {
    constexpr double mostTimes = 1LL << 52, most = 1 << 30; // fit into whole numbers
    const double low = std::min({value[0], value[1], value[2]});
    if (!(std::abs(low) < mostTimes)) return false;
    const auto cut = static_cast<std::int64_t>(low);
    const auto base = static_cast<double>(cut - (low < static_cast<double>(cut) ? 1 : 0));
    const auto texel = [&](int k) { return (value[k] - base) * size; };
    texels = Slope(texel(0), texel(1), texel(2));
    return texel(0) < most && texel(1) < most && texel(2) < most; // none of them below 0
}

} // namespace

Texture::Texture(const Image& image)
    : whole(&image), holes(std::any_of(image.pixels.begin(), image.pixels.end(), isHole)) {
    for (const Image* last = whole; last->width > 1 || last->height > 1; last = &smaller.back()) {
        smaller.push_back(halved(*last));
    }
}

const Image& Texture::levelFor(double texels) const {
    const Image* level = whole;
    for (std::size_t i = 0; texels > 2 && i < smaller.size(); ++i) {
        level = &smaller[i];
        texels /= 4;
    }
    return *level;
}

bool LaidTexture::lay(const TexturePlace (&place)[3], const Image& level) {
    image = &level;
    const double across[3] = {place[0].u, place[1].u, place[2].u};
    const double down[3] = {1 - place[0].v, 1 - place[1].v, 1 - place[2].v};
    return toTexels(across, level.width, column) && toTexels(down, level.height, row);
}

std::uint32_t LaidTexture::texel(int across, int down) const {
    return rowOf(*image, repeated(down, image->height))[repeated(across, image->width)];
}

std::uint32_t LaidTexture::nearest(const Shares& pixel) const {
    return texel(floorOf(column.at(pixel)), floorOf(row.at(pixel)));
}

std::uint32_t LaidTexture::mixed(const Shares& pixel) const {
    const double across = column.at(pixel) - 0.5, down = row.at(pixel) - 0.5;
    const int first = floorOf(across), top = floorOf(down);
    const auto right = static_cast<std::uint32_t>((across - first) * 256),
               below = static_cast<std::uint32_t>((down - top) * 256);
    Mixture mixture;
    for (const int i : {0, 1}) {
        for (const int j : {0, 1}) {
            const std::uint32_t share =
                (j == 0 ? 256 - right : right) * (i == 0 ? 256 - below : below) / 256;
            mixture.add(texel(first + j, top + i), share);
        }
    }
    return mixture.pixel();
}

} // namespace polyfab
