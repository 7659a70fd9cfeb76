// SPDX-License-Identifier: GPL-3.0-or-later
// First the rasteriser finds which triangle is seen at each pixel, then only those are shaded.
#include "display/shading.h"

#include "display/options.h"
#include "display/picture_layer.h"
#include "display/shading_data.h"
#include "display/texture_densities.h"
#include "display/tile_shader.h"
#include "display/view.h"
#include "mesh/face_angle.h"
#include "picture/workers.h"

#include <atomic>
#include <bit>
#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

namespace polyfab {
namespace {

constexpr std::size_t pieceSize = 1 << 14;

/// What is kept from picture to picture, and what it was made of.
struct Shading : ShadingData {
    std::optional<std::uint64_t> faces, positions,
        directions;                      ///< prints of what those were made of
    std::optional<std::uint64_t> cutFor; ///< the print of the positions that polygons are cut for
    bool hasFlat = false, hasSmooth = false;
};

Shading shading;

std::uint64_t printOfVector(std::uint64_t place, double x, double y, double z) {
    const auto a = std::bit_cast<std::uint64_t>(x), b = std::bit_cast<std::uint64_t>(y),
               c = std::bit_cast<std::uint64_t>(z);
    return printOf(place, a * 0x9FB21C651E98DF25U ^ std::rotl(b * 0xC2B2AE3D27D4EB4FU, 21)
                              ^ std::rotl(c * 0x165667B19E3779F9U, 42));
}

/// The sum of print(i, element) over the elements of an array that have these numbers.
template <typename T, typename Print>
std::uint64_t printOfThose(const std::vector<std::uint32_t>& numbers, const T* array, Print print) {
    std::atomic<std::uint64_t> sum = 0;
    inPieces(numbers.size(), pieceSize, [&](std::size_t from, std::size_t to) {
        std::uint64_t part = 0;
        for (std::size_t i = from; i < to; ++i) {
            // In a mesh of no order the next ones are far apart; they are called for in time, also
            // where one begins at the end of a line of the cache.
            const T* const next = &array[numbers[std::min(i + 32, to - 1)]];
            __builtin_prefetch(next);
            __builtin_prefetch(next + 1);
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

/// Whether a list that has lost corners' normals, as these had no direction, may need them by now.
bool needsLostNormals(const Mesh& mesh) {
    return shading.normals.lostSome && shading.directions != printOfNormals(mesh);
}

/// Lists the triangles of faces that have this print.
void listAnew(const Mesh& mesh, std::uint64_t faces) {
    shading.faces.reset(); // the list may be left half made
    shading.isTextured = shading.looks.hasPictures();
    listTriangles(mesh, shading.list, shading.isTextured);
    shading.normals.lostSome = false;
    shading.densities = {};
    shading.faces = faces;
    shading.positions.reset();
    shading.directions.reset();
}

/// Whether the triangles are listed anew, perhaps in another order. The faces are looked at when
/// they may have changed.
bool updateList(const Mesh& mesh, bool mayHaveChanged) {
    const bool textured = shading.looks.hasPictures();
    const std::uint64_t faces = mayHaveChanged ? printOfFaces(mesh) : *shading.faces;
    if (shading.faces == faces && shading.isTextured == textured && !needsLostNormals(mesh)) {
        return false;
    }
    listAnew(mesh, faces);
    return true;
}

/// Whether polygons were cut anew, as their corners have moved. Drafts do not wait for that.
bool cutAnew(const Mesh& mesh, std::uint64_t positions) {
    if (!shading.list.hasPolygons || shading.cutFor == positions) return false;
    listAnew(mesh, *shading.faces);
    return true;
}

/// Normals do not turn while nothing else in the mesh changes.
void updateNormals(const Mesh& mesh, std::uint64_t positions, bool mayHaveTurned) {
    const bool moved = shading.positions != positions;
    const std::uint64_t directions =
        moved || mayHaveTurned ? printOfNormals(mesh) : *shading.directions;
    if (moved || shading.directions != directions) shading.hasFlat = shading.hasSmooth = false;
    if (shading.hasSmooth || (shading.hasFlat && !displayOptions.renderSmooth)) return;
    shading.positions.reset();
    findFlatNormals(mesh, shading.list, shading.normals);
    if (displayOptions.renderSmooth) findSmoothNormals(mesh, shading.list, shading.normals);
    shading.positions = positions;
    shading.directions = directions;
    shading.hasFlat = true;
    shading.hasSmooth = displayOptions.renderSmooth;
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

void findCosines(const Vec3& light) {
    const std::vector<PackedNormal>& normals = shading.normals.smooth;
    shading.cosines.resize(normals.size());
    inPieces(normals.size(), pieceSize, [&](std::size_t from, std::size_t to) {
        for (std::size_t i = from; i < to; ++i) shading.cosines[i] = cosineOf(normals[i], light);
    });
}

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
    bool looksChanged = changed.edges || changed.picture || !shading.faces;
    if (looksChanged) shading.looks.findPictures(mesh);
    const bool listed = updateList(mesh, changed.edges || !shading.faces);
    looksChanged |= listed;
    std::uint64_t positions = placePoints(mesh);
    if (listed) shading.cutFor = positions;
    if (!draft && cutAnew(mesh, positions)) {
        looksChanged = true;
        positions = placePoints(mesh);
        shading.cutFor = positions;
    }
    const bool moved = shading.positions != positions;
    updateNormals(mesh, positions, looksChanged);
    if (shading.isTextured && (moved || looksChanged)) {
        findTextureDensities(mesh, shading.list, shading.densities);
    }
    if (looksChanged || !shading.looks.fit(mesh, shading.list)) {
        shading.looks.findTriangles(mesh, shading.list);
    }
    shading.looks.findColors(mesh);
}

void drawShaded(const Mesh& mesh, const Pane& pane) {
    if (!pane.left) turnPoints();
    TriangleSet set{shading.points,
                    shading.list.triangles,
                    [&mesh, &pane](std::uint32_t point) {
                        return placeInShaded(mesh.points[shading.list.pointOf[point]], pane.left);
                    },
                    {},
                    displayOptions.hideFacingAway};
    const PictureLayer layer(shading, mesh, pane.left);
    if (shading.isTextured && shading.looks.hasHoles()) {
        set.layWithHoles = [&](std::uint32_t triangle, LaidTexture& to) {
            return layer.hasHoles(triangle) && layer.lay(triangle, to);
        };
    }
    const auto grains = [](int pixels) { return (pixels + shading.grain - 1) / shading.grain; };
    shading.tiles.draw(grains(pane.canvas.width), grains(pane.canvas.height), set);
    const Vec3 light = wayToLight(pane.left);
    if (displayOptions.renderSmooth) findCosines(light);
    shadeTiles(shading, set, shading.isTextured ? &layer : nullptr, light, pane.canvas);
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
