// SPDX-License-Identifier: GPL-3.0-or-later
// First the rasteriser finds which triangle is seen at each pixel, then only those are shaded.
#include "display/shading.h"

#include "display/look.h"
#include "display/options.h"
#include "display/shade_normals.h"
#include "display/surface_looks.h"
#include "display/texture_densities.h"
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

/// What is kept from picture to picture, and what is made anew for each.
struct Shading {
    TriangleList list;
    ShadeNormals normals;
    SurfaceLooks looks;
    std::vector<float> densities; ///< of pictures, while some face shows one
    std::optional<std::uint64_t> faces, positions,
        directions;                      ///< prints of what those were made of
    std::optional<std::uint64_t> cutFor; ///< the print of the positions that polygons are cut for
    bool hasFlat = false, hasSmooth = false;
    bool isTextured = false; ///< the list has texture coordinates
    int grain = 1;           ///< pixels to a side of what is shaded as one: 2 in drafts
    std::vector<RasterPoint> points;
    std::vector<float> cosines; ///< per smooth normal, of its angle with the light
    DepthTiles tiles;
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

/// Lays the pictures of triangles on them as a pane shows them.
class PictureLayer {
  public:
    PictureLayer(const Mesh& shown, bool left)
        : mesh(shown), unitsPerPixel(shading.grain / view.scale) {
        const auto& row = projection.toScreen.row[left ? 2 : 0];
        toViewer = Vec3{row[0], row[1], row[2]} * (1 / view.scale);
    }

    /// False when the triangle shows none.
    bool lay(std::uint32_t triangle, LaidTexture& to) const {
        const ShownPicture& picture = shading.looks.picture(triangle);
        if (picture.texture == nullptr) return false;
        TexturePlace place[3];
        for (int k = 0; k < 3; ++k) {
            const std::uint32_t number = shading.list.texCoords[triangle].corner[k];
            if (number >= static_cast<std::uint32_t>(mesh.nt)) return false;
            const TexCoord& at = mesh.texcoords[number];
            const PicturePlacing& placing = picture.placing;
            place[k] = {at.u * placing.uScale + placing.uOffset,
                        at.v * placing.vScale + placing.vOffset};
        }
        return to.lay(place, picture.texture->levelFor(texels(triangle, picture)));
    }
    [[gnu::always_inline]] inline void callFor(std::uint32_t texCoord) const {
        __builtin_prefetch(&mesh.texcoords[texCoord]);
    }
    bool hasHoles(std::uint32_t triangle) const {
        const Texture* const texture = shading.looks.picture(triangle).texture;
        return texture != nullptr && texture->hasHoles();
    }

  private:
    /// Those of the picture that a pixel shows.
    double texels(std::uint32_t triangle, const ShownPicture& picture) const {
        const Image& image = picture.texture->image();
        const double inPicture =
            std::abs(picture.placing.uScale * picture.placing.vScale) * image.width * image.height;
        const double slant = std::abs(cosineOf(shading.normals.flat[triangle], toViewer));
        return shading.densities[triangle] * inPicture * unitsPerPixel * unitsPerPixel
               / std::max(slant, 1e-6);
    }

    const Mesh& mesh;
    double unitsPerPixel;
    Vec3 toViewer;
};

/// Shades what is seen in one tile.
class TileShader {
  public:
    TileShader(const TriangleSet& shaded, const PictureLayer* pictures, const Vec3& wayToLight,
               const Canvas& onto)
        : set(shaded), layer(pictures), light(wayToLight), canvas(onto) {}

    void shade(int column, int row) const {
        const Tile& tile = shading.tiles.tile(column, row);
        const int left = column * Tile::width, top = row * Tile::height;
        const int width = std::min(Tile::width, shading.tiles.width() - left);
        const int height = std::min(Tile::height, shading.tiles.height() - top);
        for (int y = 0; y < height; ++y) {
            const std::uint32_t* const seen = tile.seen + y * Tile::width;
            if (y + 2 < height) callForTriangles(seen + 2 * Tile::width, width);
            if (y + 1 < height) callForCorners(seen + Tile::width, width);
            for (int x = 0; x < width;) {
                const std::uint32_t code = seen[x];
                const int first = x;
                while (++x < width && seen[x] == code) {
                }
                if (code != Seen::nothing) shadeRun(code, {left + first, left + x, top + y});
            }
        }
    }

  private:
    /// Pixels of a row that show the same triangle.
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

    static Slope cosineOver(std::uint32_t triangle, double side) {
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

    const TriangleSet& set;
    const PictureLayer* layer; ///< or null
    Vec3 light;
    Canvas canvas;
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
    const PictureLayer layer(mesh, pane.left);
    if (shading.isTextured && shading.looks.hasHoles()) {
        set.layWithHoles = [&](std::uint32_t triangle, LaidTexture& to) {
            return layer.hasHoles(triangle) && layer.lay(triangle, to);
        };
    }
    const auto grains = [](int pixels) { return (pixels + shading.grain - 1) / shading.grain; };
    shading.tiles.draw(grains(pane.canvas.width), grains(pane.canvas.height), set);
    const Vec3 light = wayToLight(pane.left);
    if (displayOptions.renderSmooth) findCosines(light);
    const int columns = shading.tiles.columns();
    inParallel(columns * shading.tiles.rows(), [&](int tile) {
        TileShader(set, shading.isTextured ? &layer : nullptr, light, pane.canvas)
            .shade(tile % columns, tile / columns);
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
