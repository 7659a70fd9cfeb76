// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/shaded_edges.h"

#include "display/look.h"
#include "display/shading.h"
#include "picture/workers.h"

#include <algorithm>
#include <cmath>

namespace polyfab {
namespace {

constexpr std::uint32_t noFaceThere = 0xFFFFFFFF;

/// Draws the edges of the faces that are seen in one tile.
class EdgePainter {
  public:
    EdgePainter(const Mesh& drawn, const Pane& onto)
        : mesh(drawn), pane(onto), shaded(shadedPane()),
          width(std::max(1, look.selected.width / shaded.grain)) {}

    void paint(int column, int row) const {
        const int left = column * Tile::width, top = row * Tile::height;
        const int right = std::min(left + Tile::width, shaded.tiles.width());
        const int bottom = std::min(top + Tile::height, shaded.tiles.height());
        const Tile& tile = shaded.tiles.tile(column, row);
        for (int y = top; y < bottom; ++y) {
            const std::uint32_t* const seen = tile.seen + (y - top) * Tile::width - left;
            for (int x = left; x < right; ++x) {
                const bool within = width == 1 && x > left && y > top;
                if (within && seen[x] == seen[x - 1] && seen[x] == seen[x - Tile::width]) continue;
                paintPixel(x, y);
            }
        }
    }

  private:
    std::uint32_t faceAt(int x, int y) const {
        const std::uint32_t code = shaded.tiles.seen(x, y);
        return code == Seen::nothing ? noFaceThere : shaded.triangles[Seen::triangle(code)].face;
    }

    void paintPixel(int x, int y) const {
        const std::uint32_t here = faceAt(x, y);
        for (int k = 1; k <= width; ++k) {
            for (const std::uint32_t other :
                 {x < k ? here : faceAt(x - k, y), y < k ? here : faceAt(x, y - k)}) {
                if (other != here) return put(x, y, here != noFaceThere ? here : other);
            }
        }
    }

    void put(int x, int y, std::uint32_t face) const {
        constexpr unsigned share = 112; // of 256: small faces keep their shade between the lines
        const Stroke& stroke = mesh.faces[face].selected != 0 ? look.selected : look.unselected;
        const Canvas& canvas = pane.canvas;
        const int right = std::min((x + 1) * shaded.grain, canvas.width);
        const int bottom = std::min((y + 1) * shaded.grain, canvas.height);
        for (int row = y * shaded.grain; row < bottom; ++row) {
            for (int column = x * shaded.grain; column < right; ++column) {
                std::uint32_t& pixel = canvas.pixels[row * canvas.stride + column];
                pixel = blended(pixel, stroke.color, share);
            }
        }
    }

    const Mesh& mesh;
    const Pane& pane;
    ShadedPane shaded;
    int width; ///< of lines, in pixels of the tiles
};

/// The part of a line, from 0 to 1, that lies in a pane.
struct Stretch {
    double first = 0, last = 1;

    /// Leaves what lies between 0 and `size`.
    void cut(double from, double to, double size) {
        if (from == to) {
            if (!(from >= 0 && from <= size)) last = -1;
            return;
        }
        const double at0 = -from / (to - from), at1 = (size - from) / (to - from);
        first = std::max(first, std::min(at0, at1));
        last = std::min(last, std::max(at0, at1));
    }
};

/// Whether no face hides the place. Faces that are cut by it, or end there, reach before it.
bool isSeen(const DepthTiles& tiles, const ScreenCorner& at) {
    constexpr double before = 0.5;
    const int x = static_cast<int>(std::lround(at.x)), y = static_cast<int>(std::lround(at.y));
    for (int row = std::max(y - 1, 0); row <= std::min(y + 1, tiles.height() - 1); ++row) {
        for (int i = std::max(x - 1, 0); i <= std::min(x + 1, tiles.width() - 1); ++i) {
            if (tiles.depth(i, row) >= at.depth - before) return true;
        }
    }
    return false;
}

} // namespace

void drawFaceEdges(const Mesh& mesh, const Pane& pane) {
    const EdgePainter painter(mesh, pane);
    const DepthTiles& tiles = shadedPane().tiles;
    inParallel(tiles.columns() * tiles.rows(),
               [&](int i) { painter.paint(i % tiles.columns(), i / tiles.columns()); });
}

void drawSeenLine(const Pane& pane, const Point& from, const Point& to, const Stroke& stroke) {
    const DepthTiles& tiles = shadedPane().tiles;
    const ScreenCorner a = placeInShaded(from, pane.left), b = placeInShaded(to, pane.left);
    Stretch stretch;
    stretch.cut(a.x, b.x, tiles.width() - 1);
    stretch.cut(a.y, b.y, tiles.height() - 1);
    if (!(stretch.first <= stretch.last)) return;
    const auto at = [&](double t) {
        return ScreenCorner{a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t,
                            a.depth + (b.depth - a.depth) * t};
    };
    const double length = std::max(std::abs(b.x - a.x), std::abs(b.y - a.y));
    const int steps = static_cast<int>(std::ceil(length * (stretch.last - stretch.first)));
    const auto share = [&](int step) {
        return steps == 0 ? stretch.first
                          : stretch.first + (stretch.last - stretch.first) * step / steps;
    };
    const Place start = pane.at(from), end = pane.at(to);
    const auto place = [&](int step) {
        return Place{start.x + (end.x - start.x) * share(step),
                     start.y + (end.y - start.y) * share(step)};
    };
    for (int i = 0; i <= steps; ++i) {
        const int first = i;
        while (i <= steps && isSeen(tiles, at(share(i)))) ++i;
        if (i > first) pane.line(place(first), place(i - 1), stroke);
    }
}

} // namespace polyfab
