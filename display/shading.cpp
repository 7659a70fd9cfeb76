// SPDX-License-Identifier: GPL-3.0-or-later
// First the rasteriser finds which triangle is seen at each pixel, then only those are shaded.
#include "display/shading.h"

#include "display/look.h"
#include "display/options.h"
#include "display/shade_normals.h"
#include "display/triangle_list.h"
#include "mesh/face_angle.h"
#include "mesh/faces.h"
#include "picture/triangles.h"
#include "picture/workers.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

namespace polyfab {
namespace {

constexpr std::size_t pieceSize = 1 << 14;

/// Red, green and blue, not rounded.
using Color = std::array<float, 3>;

/// What is kept from picture to picture, and what is made anew for each.
struct Shading {
    TriangleList list;
    ShadeNormals normals;
    /// Per triangle, its place in `colors`, from the front; from behind it is the next one.
    std::vector<std::uint32_t> looks;
    std::optional<std::uint64_t> faces, positions,
        directions; ///< prints of what those were made of
    bool hasFlat = false, hasSmooth = false;
    int grain = 1; ///< pixels to a side of what is shaded as one: 2 in drafts
    std::vector<RasterPoint> points;
    std::vector<float> cosines; ///< per smooth normal, of its angle with the light
    std::vector<Color> colors;
    DepthTiles tiles;
};

Shading shading;

std::uint64_t printOfVector(std::uint64_t place, double x, double y, double z) {
    return printOf(3 * place, std::bit_cast<std::uint64_t>(x))
           + printOf(3 * place + 1, std::bit_cast<std::uint64_t>(y))
           + printOf(3 * place + 2, std::bit_cast<std::uint64_t>(z));
}

/// The sum of print(i, element) over the elements of an array that have these numbers.
template <typename T, typename Print>
std::uint64_t printOfThose(const std::vector<std::uint32_t>& numbers, const T* array, Print print) {
    std::atomic<std::uint64_t> sum = 0;
    inPieces(numbers.size(), pieceSize, [&](std::size_t from, std::size_t to) {
        std::uint64_t part = 0;
        for (std::size_t i = from; i < to; ++i) {
            // In a mesh of no order the next ones are far apart; they are called for in time.
            __builtin_prefetch(&array[numbers[std::min(i + 16, to - 1)]]);
            part += print(i, array[numbers[i]]);
        }
        sum += part;
    });
    return sum;
}

/// Points as the left pane has them, and the print of where they are in the world.
std::uint64_t placePoints(const Mesh& mesh) {
    shading.points.resize(shading.list.pointOf.size());
    return printOfThose(shading.list.pointOf, mesh.points, [](std::size_t i, const Point& p) {
        const ScreenCorner at = placeInShaded(p, true);
        shading.points[i] = rasterPoint(at.x, at.y, at.depth);
        return printOfVector(i, p.x, p.y, p.z);
    });
}

std::uint64_t printOfNormals(const Mesh& mesh) {
    return printOfThose(shading.list.normalOf, mesh.normals, [](std::size_t i, const Normal& n) {
        return printOfVector(i, n.x, n.y, n.z);
    });
}

void updateList(const Mesh& mesh) {
    const std::uint64_t faces = printOfFaces(mesh);
    if (shading.faces == faces) return;
    shading.faces.reset(); // the list may be left half made
    listTriangles(mesh, shading.list);
    shading.faces = faces;
    shading.positions.reset();
    shading.directions.reset();
}

void updateNormals(const Mesh& mesh, std::uint64_t positions) {
    const std::uint64_t directions = printOfNormals(mesh);
    if (shading.positions != positions || shading.directions != directions) {
        shading.hasFlat = shading.hasSmooth = false;
    }
    if (shading.hasSmooth || (shading.hasFlat && !displayOptions.renderSmooth)) return;
    if (shading.directions && shading.directions != directions) {
        listTriangles(mesh, shading.list); // which corners have usable normals
    }
    shading.positions.reset();
    findFlatNormals(mesh, shading.list, shading.normals);
    if (displayOptions.renderSmooth) findSmoothNormals(mesh, shading.list, shading.normals);
    shading.positions = positions;
    shading.directions = directions;
    shading.hasFlat = true;
    shading.hasSmooth = displayOptions.renderSmooth;
}

Color colorOf(std::uint32_t color) {
    return {static_cast<float>(color >> 16 & 255), static_cast<float>(color >> 8 & 255),
            static_cast<float>(color & 255)};
}

Color average(const Color& a, const Color& b) {
    return {(a[0] + b[0]) / 2, (a[1] + b[1]) / 2, (a[2] + b[2]) / 2};
}

/// Four of each material: selected or not, each from the front and from behind. The first ones are
/// of faces whose material is not there.
void findColors(const Mesh& mesh) {
    shading.colors.clear();
    for (int i = -1; i < mesh.nmat; ++i) {
        const Color front = colorOf(i < 0 ? defaultColor : mesh.materials[i].color);
        const Color behind = average(front, colorOf(behindColor));
        for (const Color& color : {front, behind}) shading.colors.push_back(color);
        for (const Color& color : {front, behind}) {
            shading.colors.push_back(average(color, colorOf(unselectedColor)));
        }
    }
}

void findLooks(const Mesh& mesh) {
    const std::vector<RasterTriangle>& triangles = shading.list.triangles;
    shading.looks.resize(triangles.size());
    inPieces(triangles.size(), pieceSize, [&](std::size_t from, std::size_t to) {
        for (std::size_t t = from; t < to; ++t) {
            __builtin_prefetch(&mesh.faces[triangles[std::min(t + 16, to - 1)].face]);
            const Face& face = mesh.faces[triangles[t].face];
            const int material = face.mat >= 0 && face.mat < mesh.nmat ? face.mat + 1 : 0;
            shading.looks[t] =
                static_cast<std::uint32_t>(4 * material + (face.selected != 0 ? 0 : 2));
        }
    });
}

/// The way to the light in the world, as the pane has it.
Vec3 wayToLight(bool left) {
    const double beside = displayOptions.lightFromRight * pi / 180;
    const double above = displayOptions.lightFromAbove * pi / 180;
    const double right = std::sin(beside) * std::cos(above);
    const double near = std::cos(beside) * std::cos(above);
    const double onScreen[] = {left ? right : near, -std::sin(above), left ? -near : right};
    Vec3 way;
    for (int i = 0; i < 3; ++i) {
        const auto& row = projection.toScreen.row[i];
        way += Vec3{row[0], row[1], row[2]} * (onScreen[i] / view.scale);
    }
    return way;
}

float cosineOf(const PackedNormal& normal, const Vec3& light) {
    const double sum = normal.x * light.x + normal.y * light.y + normal.z * light.z;
    return static_cast<float>(sum * (1 / PackedNormal::one));
}

void findCosines(const Vec3& light) {
    const std::vector<PackedNormal>& normals = shading.normals.smooth;
    shading.cosines.resize(normals.size());
    inPieces(normals.size(), pieceSize, [&](std::size_t from, std::size_t to) {
        for (std::size_t i = from; i < to; ++i) shading.cosines[i] = cosineOf(normals[i], light);
    });
}

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
    TileShader(const TriangleSet& shaded, const Vec3& wayToLight, const Canvas& onto)
        : set(shaded), light(wayToLight), canvas(onto) {}

    void shade(int column, int row) {
        const Tile& tile = shading.tiles.tile(column, row);
        const int left = column * Tile::width, top = row * Tile::height;
        const int width = std::min(Tile::width, shading.tiles.width() - left);
        const int height = std::min(Tile::height, shading.tiles.height() - top);
        for (int y = 0; y < height; ++y) {
            const std::uint32_t* const seen = tile.seen + y * Tile::width;
            for (int x = 0; x < width; ++x) {
                if (seen[x] == Seen::nothing) continue;
                if (seen[x] != code) take(seen[x]);
                put(left + x, top + y);
            }
        }
    }

  private:
    void take(std::uint32_t triangleSeen) {
        code = triangleSeen;
        const std::uint32_t t = Seen::triangle(code);
        const bool behind = (code & Seen::behind) != 0;
        color = &shading.colors[shading.looks[t] + (behind ? 1 : 0)];
        side = behind ? -1 : 1;
        if (!displayOptions.renderSmooth) {
            flat = pixelOf(*color, side * cosineOf(shading.normals.flat[t], light));
            return;
        }
        ScreenCorner corner[3];
        set.corners(t, corner);
        const auto& normal = shading.list.normals[t].corner;
        const std::vector<float>& cosines = shading.cosines;
        cosine = gradientOver(corner, cosines[normal[0]], cosines[normal[1]], cosines[normal[2]]);
    }

    void put(int x, int y) {
        const std::uint32_t pixel = displayOptions.renderSmooth
                                        ? pixelOf(*color, side * cosine.at(x, cosine.inRow(y)))
                                        : flat;
        if (shading.grain == 1) {
            canvas.pixels[y * canvas.stride + x] = pixel;
            return;
        }
        const int right = std::min((x + 1) * shading.grain, canvas.width);
        const int bottom = std::min((y + 1) * shading.grain, canvas.height);
        for (int row = y * shading.grain; row < bottom; ++row) {
            std::fill(canvas.pixels + row * canvas.stride + x * shading.grain,
                      canvas.pixels + row * canvas.stride + right, pixel);
        }
    }

    const TriangleSet& set;
    Vec3 light;
    Canvas canvas;
    std::uint32_t code = Seen::nothing;
    const Color* color = nullptr;
    double side = 1; ///< -1: seen from behind
    std::uint32_t flat = 0;
    Gradient cosine{};
};

/// The points as the right pane has them.
void turnPoints() {
    inPieces(shading.points.size(), pieceSize, [](std::size_t from, std::size_t to) {
        for (std::size_t i = from; i < to; ++i) {
            RasterPoint& p = shading.points[i];
            if (p.x != RasterPoint::nowhere) p = {p.z, p.y, -p.x};
        }
    });
}

} // namespace

void prepareShading(const Mesh& mesh, const Stale& changed, bool draft) {
    shading.grain = draft ? 2 : 1;
    if (changed.edges || !shading.faces) updateList(mesh);
    updateNormals(mesh, placePoints(mesh));
    const bool looksChanged = changed.edges || changed.picture;
    if (looksChanged || shading.looks.size() != shading.list.triangles.size()) findLooks(mesh);
    findColors(mesh);
}

void drawShaded(const Mesh& mesh, const Pane& pane) {
    if (!pane.left) turnPoints();
    const TriangleSet set{shading.points, shading.list.triangles,
                          [&mesh, &pane](std::uint32_t point) {
                              return placeInShaded(mesh.points[shading.list.pointOf[point]],
                                                   pane.left);
                          },
                          displayOptions.hideFacingAway};
    const auto grains = [](int pixels) { return (pixels + shading.grain - 1) / shading.grain; };
    shading.tiles.draw(grains(pane.canvas.width), grains(pane.canvas.height), set);
    const Vec3 light = wayToLight(pane.left);
    if (displayOptions.renderSmooth) findCosines(light);
    const int columns = shading.tiles.columns();
    inParallel(columns * shading.tiles.rows(), [&](int tile) {
        TileShader(set, light, pane.canvas).shade(tile % columns, tile / columns);
    });
}

ShadedPane shadedPane() { return {shading.tiles, shading.list.triangles, shading.grain}; }

/// The middle of a grain lies between those of its pixels.
ScreenCorner placeInShaded(const Point& p, bool left) {
    const double size = shading.grain, shift = (size - 1) / 2;
    const double x = (p.sx - shift) / size, y = (p.sy - shift) / size, z = (p.sz - shift) / size;
    return left ? ScreenCorner{x, y, z} : ScreenCorner{z, y, -x};
}

void forgetShading() { shading = Shading(); }

} // namespace polyfab
