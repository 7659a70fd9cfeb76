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
bool toTexels(double (&value)[3], int size) {
    constexpr double most = 1 << 30; // fits into an int
    const double base = std::floor(std::min({value[0], value[1], value[2]}));
    for (double& each : value) {
        each = (each - base) * size;
        if (!(std::abs(each) < most)) return false;
    }
    return true;
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

bool LaidTexture::lay(const GradientFrame& triangle, const TexturePlace (&place)[3],
                      const Image& level) {
    double across[3], down[3];
    for (int k = 0; k < 3; ++k) {
        across[k] = place[k].u;
        down[k] = 1 - place[k].v;
    }
    if (!toTexels(across, level.width) || !toTexels(down, level.height)) return false;
    image = &level;
    column = triangle.of(across[0], across[1], across[2]);
    row = triangle.of(down[0], down[1], down[2]);
    return true;
}

void LaidTexture::dontRepeat() {
    for (Gradient* const texels : {&column, &row}) {
        texels->low += 0.5;
        texels->high -= 0.5;
    }
}

std::uint32_t LaidTexture::texel(int across, int down) const {
    return rowOf(*image, repeated(down, image->height))[repeated(across, image->width)];
}

std::uint32_t LaidTexture::nearest(int x, int y) const {
    return texel(floorOf(column.at(x, column.inRow(y))), floorOf(row.at(x, row.inRow(y))));
}

std::uint32_t LaidTexture::mixed(int x, int y) const {
    const double across = column.at(x, column.inRow(y)) - 0.5, down = row.at(x, row.inRow(y)) - 0.5;
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
