// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/tile_shader.h"

#include "display/options.h"
#include "picture/workers.h"

#include <algorithm>
#include <cstddef>

namespace polyfab {
namespace {

std::uint32_t pixelOf(const Color& color, double cosine) {
    const float bright = 0.25F + 0.75F * static_cast<float>(cosine > 0 ? cosine : 0);
    constexpr float half = 0.5F; // to the nearest, as nothing is below 0
    const auto channel = [&](std::size_t i) {
        return static_cast<std::uint32_t>(color[i] * bright + half);
    };
    return 0xFF000000 | channel(0) << 16 | channel(1) << 8 | channel(2);
}

/// Shades what is seen in one tile.
class TileShader {
  public:
    TileShader(const ShadingData& data, const TriangleSet& shaded, const PictureLayer* pictures,
               const Vec3& wayToLight, const Canvas& onto)
        : shading(data), set(shaded), layer(pictures), light(wayToLight), canvas(onto) {}

    void shade(int column, int row) const {
        const Tile& tile = shading.tiles.tile(column, row);
        const int left = column * Tile::width, top = row * Tile::height;
        const int width = std::min(Tile::width, shading.tiles.width() - left);
        const int height = std::min(Tile::height, shading.tiles.height() - top);
        for (int x = 0; x < width; x += stripWidth) {
            shadeStrip(tile.seen + x, {left + x, top, std::min(stripWidth, width - x), height});
        }
    }

  private:
    /// Tiles are shaded in strips so narrow that all that shades one of a fine mesh stays in the
    /// cache that is nearest to the processor.
    static constexpr int stripWidth = 16;

    struct Strip {
        int left, top, width, height;
    };

    void shadeStrip(const std::uint32_t* seen, const Strip& strip) const {
        for (int y = 0; y < strip.height; ++y, seen += Tile::width) {
            if (y + 2 < strip.height) callForTriangles(seen + 2 * Tile::width, strip.width);
            if (y + 1 < strip.height) callForCorners(seen + Tile::width, strip.width);
            for (int x = 0; x < strip.width;) {
                const std::uint32_t code = seen[x];
                const int first = x;
                while (++x < strip.width && seen[x] == code) {
                }
                if (code == Seen::nothing) continue;
                shadeRun(code, {strip.left + first, strip.left + x, strip.top + y});
            }
        }
    }

    /// Pixels of a row of a strip that show the same triangle.
    struct Run {
        int begin, end, y;
    };

    // In a fine mesh each pixel shows another triangle, and what shades it is spread over the
    // lists. It is called for some rows ahead. Compilers leave out calls of functions that do
    // nothing else: these must be inline.

    /// What the lists have of the triangles in a row.
    [[gnu::always_inline]] inline void callForTriangles(const std::uint32_t* seen,
                                                        int width) const {
        for (int x = 0; x < width; ++x) {
            if (!isNew(seen, x)) continue;
            const std::uint32_t t = Seen::triangle(seen[x]);
            __builtin_prefetch(&set.triangles[t]);
            __builtin_prefetch(&shading.normals.flat[t]);
            __builtin_prefetch(shading.looks.record(t));
            __builtin_prefetch(&shading.list.normals[t]);
            if (layer == nullptr) continue;
            __builtin_prefetch(&shading.list.texCoords[t]);
            __builtin_prefetch(&shading.densities[t]);
        }
    }

    /// What that refers to.
    [[gnu::always_inline]] inline void callForCorners(const std::uint32_t* seen, int width) const {
        for (int x = 0; x < width; ++x) {
            if (!isNew(seen, x)) continue;
            const std::uint32_t t = Seen::triangle(seen[x]);
            for (int k = 0; k < 3; ++k) {
                __builtin_prefetch(&set.points[set.triangles[t].corner[k]]);
                if (displayOptions.renderSmooth) {
                    __builtin_prefetch(&shading.cosines[shading.list.normals[t].corner[k]]);
                }
                if (layer != nullptr) layer->callFor(shading.list.texCoords[t].corner[k]);
            }
        }
    }

    static bool isNew(const std::uint32_t* seen, int x) {
        return seen[x] != Seen::nothing && (x == 0 || seen[x] != seen[x - 1]);
    }

    void shadeRun(std::uint32_t code, const Run& run) const {
        const std::uint32_t t = Seen::triangle(code);
        const bool isBehind = (code & Seen::behind) != 0;
        const double side = isBehind ? -1 : 1;
        LaidTexture picture;
        const bool hasPicture = layer != nullptr && layer->lay(t, picture);
        const bool smooth = displayOptions.renderSmooth;
        const double flat = smooth ? 0 : side * cosineOf(shading.normals.flat[t], light);
        const Color& color = shading.looks.color(t, isBehind);
        if (!hasPicture && !smooth) {
            return put(run, [pixel = pixelOf(color, flat)](int) { return pixel; });
        }
        ScreenCorner corner[3];
        set.corners(t, corner);
        const TriangleFrame frame(corner);
        const Slope cosine = smooth ? cosineOver(t, side) : Slope(flat, flat, flat);
        if (!hasPicture) {
            return put(run, [&](int x) { return pixelOf(color, cosine.at(frame.at(x, run.y))); });
        }
        put(run, [&](int x) {
            const Shares shares = frame.at(x, run.y);
            const std::uint32_t texel =
                displayOptions.mixTexels ? picture.mixed(shares) : picture.nearest(shares);
            return pixelOf(tinted(colorOf(texel), shading.looks.isSelected(t), isBehind),
                           cosine.at(shares));
        });
    }

    Slope cosineOver(std::uint32_t triangle, double side) const {
        const auto& normal = shading.list.normals[triangle].corner;
        const auto at = [&](int k) { return side * shading.cosines[normal[k]]; };
        return {at(0), at(1), at(2)};
    }

    /// Sets the run to pixel(x).
    template <typename Pixel>
    void put(const Run& run, Pixel pixel) const {
        std::uint32_t* const row = canvas.pixels + run.y * shading.grain * canvas.stride;
        if (shading.grain == 1) {
            for (int x = run.begin; x < run.end; ++x) row[x] = pixel(x);
            return;
        }
        const int rows = std::min(shading.grain, canvas.height - run.y * shading.grain);
        for (int x = run.begin; x < run.end; ++x) {
            const int first = x * shading.grain,
                      end = std::min(first + shading.grain, canvas.width);
            const std::uint32_t value = pixel(x);
            for (int i = 0; i < rows; ++i) {
                std::fill(row + i * canvas.stride + first, row + i * canvas.stride + end, value);
            }
        }
    }

    const ShadingData& shading;
    const TriangleSet& set;
    const PictureLayer* layer; ///< or null
    Vec3 light;
    Canvas canvas;
};

} // namespace

void shadeTiles(const ShadingData& data, const TriangleSet& set, const PictureLayer* layer,
                const Vec3& wayToLight, const Canvas& canvas) {
    const TileShader shader(data, set, layer, wayToLight, canvas);
    const int columns = data.tiles.columns();
    inParallel(columns * data.tiles.rows(),
               [&](int tile) { shader.shade(tile % columns, tile / columns); });
}

} // namespace polyfab
