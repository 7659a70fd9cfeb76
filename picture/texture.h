// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures on triangles of the screen.
#pragma once

#include "picture/image.h"
#include "picture/slope.h"

#include <cstdint>
#include <vector>

namespace polyfab {

/// Texture coordinates: u to the right, v upwards, the picture is between 0 and 1 and repeats
/// beyond.
struct TexturePlace {
    double u, v;
};

/// A picture and smaller ones made of it, each half as wide and high as the one before.
class Texture {
  public:
    /// Keeps a reference to the image, which must have pixels. May throw std::bad_alloc.
    explicit Texture(const Image& image);

    /// That of which a pixel of the screen, which shows so many texels of the image, shows no more
    /// than two.
    [[nodiscard]] const Image& levelFor(double texels) const;
    [[nodiscard]] const Image& image() const { return *whole; }
    /// Whether some pixels are see-through.
    [[nodiscard]] bool hasHoles() const { return holes; }

    static constexpr std::uint32_t leastAlpha = 128; ///< what has less is see-through
    static bool isHole(std::uint32_t texel) { return texel >> 24 < leastAlpha; }

  private:
    const Image* whole;
    std::vector<Image> smaller;
    bool holes;
};

/// A picture on one triangle.
class LaidTexture {
  public:
    /// Lays it so that the corners show these places. False where these are no numbers, or so far
    /// apart that nothing could be seen: it may not be used then.
    bool lay(const TexturePlace (&place)[3], const Image& level);

    /// What it shows at a pixel: the nearest texel, or a mixture of the four around.
    [[nodiscard]] std::uint32_t nearest(const Shares& pixel) const;
    [[nodiscard]] std::uint32_t mixed(const Shares& pixel) const;

  private:
    [[nodiscard]] std::uint32_t texel(int across, int down) const;

    const Image* image = nullptr;
    Slope column, row; ///< texels
};

} // namespace polyfab
