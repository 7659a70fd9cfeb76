// SPDX-License-Identifier: GPL-3.0-or-later
// Triangles are sorted into the tiles that they reach, each worker into bins of its own, until the
// bins are full; then each tile is drawn by one worker, and so on in turns. Coverage is by edge
// functions (Pineda, "A parallel algorithm for polygon rasterization", 1988).
#include "picture/triangles.h"

#include "picture/workers.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cmath>
#include <optional>

namespace polyfab {

namespace {

constexpr int one = RasterPoint::one;

constexpr std::uint32_t chunk = 4096; ///< triangles that a worker takes at a time

/// Whole pixels from `first` to `last`, both included.
struct Range {
    int first, last;
    bool isEmpty() const { return first > last; }
    void cut(int from, int to) {
        first = std::max(first, from);
        last = std::min(last, to);
    }
};

/// The pixels whose middles lie between the positions.
Range pixelsBetween(std::int32_t low, std::int32_t high) {
    return {(low + (one - 1)) >> 8, high >> 8};
}

Range rangeOf(std::int32_t a, std::int32_t b, std::int32_t c) {
    return pixelsBetween(std::min({a, b, c}), std::max({a, b, c}));
}

/// A piece of a triangle that reaches too far: what is left inside the reach.
struct Piece {
    RasterPoint corner[3];
    std::uint32_t triangle;
};

} // namespace

struct TriangleBins {
    static constexpr std::uint32_t none = 0xFFFFFFFF;
    static constexpr std::uint32_t ofPiece = 0x80000000; ///< bit of an entry that is a piece
    static constexpr std::size_t usualBlocks = 4096, mostPieces = 4096;

    struct Block {
        std::uint32_t next;
        std::uint32_t count;
        std::uint32_t entries[62];
    };
    std::vector<std::uint32_t> first; ///< per tile, its newest block
    std::vector<Block> blocks;
    std::vector<Piece> pieces;
    std::uint32_t used = 0;
    std::uint32_t next = 0, end = 0; ///< triangles of the chunk that are still to be sorted

    void resize(std::size_t tiles, std::size_t triangles) {
        // Even a triangle that reaches every tile finds room in empty bins, in all its pieces.
        const std::size_t wanted = 8 * tiles + std::min(usualBlocks, triangles / 32);
        first.resize(tiles);
        if (blocks.size() < wanted) blocks.resize(wanted);
        pieces.reserve(mostPieces);
        empty();
        next = end = 0;
    }
    void empty() {
        std::fill(first.begin(), first.end(), none);
        pieces.clear();
        used = 0;
    }
    bool hasRoom(std::size_t tiles, std::size_t morePieces) const {
        return used + tiles <= blocks.size() && pieces.size() + morePieces <= mostPieces;
    }
    void add(std::size_t tile, std::uint32_t entry) {
        std::uint32_t& block = first[tile];
        if (block == none || blocks[block].count == std::size(blocks[block].entries)) {
            blocks[used].next = block;
            blocks[used].count = 0;
            block = used++;
        }
        blocks[block].entries[blocks[block].count++] = entry;
    }
};

namespace {

/// An edge function over pixels: not below 0 on the inner side.
template <typename Int>
struct EdgeFunction {
    Int value; ///< at the first pixel
    Int right, down;

    EdgeFunction(const RasterPoint& from, const RasterPoint& to, int x, int y) {
        const Int dx = to.x - from.x, dy = to.y - from.y;
        const bool topOrLeft = dy < 0 || (dy == 0 && dx > 0);
        value = dx * (Int{y} * one - from.y) - dy * (Int{x} * one - from.x) - (topOrLeft ? 0 : 1);
        right = -dy * one;
        down = dx * one;
    }
    Int at(int stepsRight, int stepsDown) const {
        return value + right * stepsRight + down * stepsDown;
    }
};

/// Cuts the steps to the right, counted from 0, to those where the function is not below 0.
void cutRow(Range& steps, std::int64_t value, std::int64_t right) {
    if (right > 0) {
        if (value < 0) {
            const std::int64_t least = (-value + right - 1) / right;
            steps.first = static_cast<int>(std::max<std::int64_t>(steps.first, least));
        }
    } else if (value < 0) {
        steps.last = -1;
    } else if (right < 0) {
        const std::int64_t most = value / -right;
        steps.last = static_cast<int>(std::min<std::int64_t>(steps.last, most));
    }
}

/// Draws triangles into one tile.
class TilePainter {
  public:
    TilePainter(const TriangleSet& drawn, Tile& into, int column, int row, int width, int height)
        : set(drawn), tile(into), left(column * Tile::width), top(row * Tile::height),
          right(std::min(left + Tile::width, width) - 1),
          bottom(std::min(top + Tile::height, height) - 1) {}

    void clear() {
        std::fill(std::begin(tile.depth), std::end(tile.depth),
                  std::numeric_limits<float>::infinity());
        std::fill(std::begin(tile.seen), std::end(tile.seen), Seen::nothing);
    }

    void draw(std::uint32_t triangle) {
        const auto& corner = set.triangles[triangle].corner;
        draw(set.points[corner[0]], set.points[corner[1]], set.points[corner[2]], triangle);
    }
    void draw(const Piece& piece) {
        draw(piece.corner[0], piece.corner[1], piece.corner[2], piece.triangle);
    }

  private:
    void draw(const RasterPoint& a, const RasterPoint& b, const RasterPoint& c,
              std::uint32_t triangle) {
        Range across = rangeOf(a.x, b.x, c.x), down = rangeOf(a.y, b.y, c.y);
        constexpr int small = 16;
        const bool isSmall = across.last - across.first < small && down.last - down.first < small;
        across.cut(left, right);
        down.cut(top, bottom);
        if (across.isEmpty() || down.isEmpty()) return;
        const std::int64_t area =
            std::int64_t{b.x - a.x} * (c.y - a.y) - std::int64_t{b.y - a.y} * (c.x - a.x);
        if (area == 0) return;
        // Area above 0: clockwise on the screen, where y runs down.
        const bool behind = (area > 0) != (set.triangles[triangle].turned != 0);
        if (behind && set.frontOnly) return;
        const RasterPoint& second = area > 0 ? b : c;
        const RasterPoint& third = area > 0 ? c : b;
        code = triangle << 1 | (behind ? Seen::behind : 0);
        depth.reset();
        holed = set.layWithHoles && set.layWithHoles(triangle, picture);
        if (isSmall) {
            drawSmall(a, second, third, across, down);
        } else {
            drawRows(a, second, third, across, down);
        }
    }

    /// Each pixel is looked at, four at a time: in a fine mesh the processor could not guess which
    /// of them lie inside.
    void drawSmall(const RasterPoint& a, const RasterPoint& b, const RasterPoint& c, Range across,
                   Range down) {
        using Edge = EdgeFunction<std::int32_t>;
        const Edge edges[3] = {Edge(a, b, across.first, down.first),
                               Edge(b, c, across.first, down.first),
                               Edge(c, a, across.first, down.first)};
        for (int y = down.first; y <= down.last; y += 2) {
            for (int x = across.first; x <= across.last; x += 2) {
                unsigned outside = 0;
                for (unsigned i = 0; i < 4; ++i) {
                    const int east = x - across.first + static_cast<int>(i & 1),
                              south = y - down.first + static_cast<int>(i >> 1);
                    const std::int32_t signs = edges[0].at(east, south) | edges[1].at(east, south)
                                               | edges[2].at(east, south);
                    outside |= static_cast<std::uint32_t>(signs) >> 31 << i;
                }
                outside |= (x == across.last ? 0xAU : 0U) | (y == down.last ? 0xCU : 0U);
                for (unsigned inside = ~outside & 0xF; inside != 0; inside &= inside - 1) {
                    const int i = std::countr_zero(inside);
                    drawPixel(x + (i & 1), y + (i >> 1));
                }
            }
        }
    }

    /// The pixels of each row that lie inside are worked out.
    void drawRows(const RasterPoint& a, const RasterPoint& b, const RasterPoint& c, Range across,
                  Range down) {
        using Edge = EdgeFunction<std::int64_t>;
        Edge edges[3] = {Edge(a, b, across.first, down.first), Edge(b, c, across.first, down.first),
                         Edge(c, a, across.first, down.first)};
        const int width = across.last - across.first, height = down.last - down.first;
        for (const Edge& edge : edges) {
            const std::int64_t most = edge.value + std::max<std::int64_t>(edge.right, 0) * width
                                      + std::max<std::int64_t>(edge.down, 0) * height;
            if (most < 0) return;
        }
        for (int y = down.first; y <= down.last; ++y) {
            Range steps{0, width};
            for (Edge& edge : edges) {
                cutRow(steps, edge.value, edge.right);
                edge.value += edge.down;
            }
            if (!steps.isEmpty()) drawRow(across.first + steps.first, across.first + steps.last, y);
        }
    }

    const Gradient& depthNow() {
        if (!depth) {
            ScreenCorner corner[3];
            set.corners(Seen::triangle(code), corner);
            depth = GradientFrame(corner).of(corner[0].depth, corner[1].depth, corner[2].depth);
        }
        return *depth;
    }

    void drawPixel(int x, int y) {
        const Gradient& gradient = depthNow();
        const auto near = static_cast<float>(gradient.at(x, gradient.inRow(y)));
        const int at = (y - top) * Tile::width + x - left;
        if (near > tile.depth[at] || (near == tile.depth[at] && !isBefore(tile.seen[at]))) return;
        if (holed && Texture::isHole(picture.nearest(x, y))) return;
        tile.depth[at] = near;
        tile.seen[at] = code;
    }

    void drawRow(int from, int to, int y) {
        if (holed) {
            for (int x = from; x <= to; ++x) drawPixel(x, y);
            return;
        }
        const Gradient gradient = depthNow();
        const double row = gradient.inRow(y);
        const int count = to - from + 1;
        float* const depths = tile.depth + (y - top) * Tile::width + from - left;
        std::uint32_t* const seen = tile.seen + (depths - tile.depth);
        const std::uint32_t now = code;
        float near[Tile::width];
        for (int i = 0; i < count; ++i) near[i] = static_cast<float>(gradient.at(from + i, row));
        unsigned equals = 0;
        for (int i = 0; i < count; ++i) {
            const bool nearer = near[i] < depths[i];
            equals |= near[i] == depths[i] ? 1U : 0U;
            depths[i] = nearer ? near[i] : depths[i];
            seen[i] = nearer ? now : seen[i];
        }
        if (equals == 0) return;
        for (int i = 0; i < count; ++i) {
            if (near[i] == depths[i] && isBefore(seen[i])) seen[i] = now;
        }
    }

    /// Whether this triangle is seen where another one is as near.
    bool isBefore(std::uint32_t other) const {
        if (other == Seen::nothing) return true;
        const auto face = set.triangles[Seen::triangle(code)].face,
                   otherFace = set.triangles[Seen::triangle(other)].face;
        return face != otherFace ? face < otherFace : code < other;
    }

    const TriangleSet& set;
    Tile& tile;
    int left, top, right, bottom; ///< pixels of the tile, all of them included
    std::uint32_t code = 0;
    std::optional<Gradient> depth; ///< worked out for the first pixel
    bool holed = false;
    LaidTexture picture; ///< of one that is holed
};

/// Sorts triangles into the bins of one worker.
class Sorter {
  public:
    Sorter(TriangleBins& into, const TriangleSet& sorted, const DepthTiles& over)
        : bins(into), set(sorted), tiles(over) {}

    /// Sorts those of its chunk that are left. False when the bins are full.
    bool sortChunk() {
        for (; bins.next < bins.end; ++bins.next) {
            if (!sort(bins.next)) return false;
        }
        return true;
    }

  private:
    bool sort(std::uint32_t triangle) {
        const auto& corner = set.triangles[triangle].corner;
        const RasterPoint &a = set.points[corner[0]], &b = set.points[corner[1]],
                          &c = set.points[corner[2]];
        if (a.x == RasterPoint::nowhere || b.x == RasterPoint::nowhere
            || c.x == RasterPoint::nowhere) {
            return true;
        }
        const Range across = reached(a.x, b.x, c.x, tiles.width());
        const Range down = reached(a.y, b.y, c.y, tiles.height());
        if (across.isEmpty() || down.isEmpty()) return true;
        if (a.isFar() || b.isFar() || c.isFar()) return sortFar(triangle);
        return add(across, down, triangle);
    }

    static Range reached(std::int32_t a, std::int32_t b, std::int32_t c, int size) {
        const auto [low, high] = std::minmax({a, b, c});
        Range range{low > RasterPoint::farthest - one ? size : (low + (one - 1)) >> 8, high >> 8};
        range.cut(0, size - 1);
        return range;
    }

    bool add(const Range& across, const Range& down, std::uint32_t entry) {
        const int left = across.first / Tile::width, right = across.last / Tile::width;
        const int top = down.first / Tile::height, bottom = down.last / Tile::height;
        const auto columns = static_cast<std::size_t>(tiles.columns());
        if (left == right && top == bottom) { // nearly all in a fine mesh
            if (!bins.hasRoom(1, 0)) return false;
            bins.add(static_cast<std::size_t>(top) * columns + static_cast<std::size_t>(left),
                     entry);
            return true;
        }
        const auto all =
            static_cast<std::size_t>(right - left + 1) * static_cast<std::size_t>(bottom - top + 1);
        if (!bins.hasRoom(all, 0)) return false;
        for (int row = top; row <= bottom; ++row) {
            const std::size_t start = static_cast<std::size_t>(row) * columns;
            for (int column = left; column <= right; ++column) {
                bins.add(start + static_cast<std::size_t>(column), entry);
            }
        }
        return true;
    }

    bool sortFar(std::uint32_t triangle);

    TriangleBins& bins;
    const TriangleSet& set;
    const DepthTiles& tiles;
};

struct Flat {
    double x, y;
};

/// A triangle, or what cuts have left of it.
struct Shape {
    Flat corner[8]; ///< each of four cuts adds one at most
    int n = 0;
    void add(const Flat& p) { corner[n++] = p; }
};

/// Where the side between two corners crosses u = bound. It is the same from either end.
Flat crossing(Flat a, Flat b, double Flat::*u, double bound) {
    if (b.x < a.x || (b.x == a.x && b.y < a.y)) std::swap(a, b);
    double Flat::*const v = u == &Flat::x ? &Flat::y : &Flat::x;
    Flat at{};
    at.*u = bound;
    at.*v = a.*v + (b.*v - a.*v) * ((bound - a.*u) / (b.*u - a.*u));
    return at;
}

/// What lies beyond u = bound is cut off.
Shape cut(const Shape& shape, double Flat::*u, double bound) {
    const auto inside = [&](const Flat& p) { return bound < 0 ? p.*u >= bound : p.*u <= bound; };
    Shape kept;
    for (int i = 0; i < shape.n; ++i) {
        const Flat &from = shape.corner[i], &to = shape.corner[i + 1 < shape.n ? i + 1 : 0];
        if (inside(from)) kept.add(from);
        if (inside(from) != inside(to)) kept.add(crossing(from, to, u, bound));
    }
    return kept;
}

Shape withinReach(const ScreenCorner (&corner)[3]) {
    constexpr double bound = RasterPoint::reach / double{one};
    Shape shape;
    for (const ScreenCorner& c : corner) shape.add({c.x, c.y});
    for (double Flat::*const u : {&Flat::x, &Flat::y}) shape = cut(cut(shape, u, bound), u, -bound);
    return shape;
}

bool Sorter::sortFar(std::uint32_t triangle) {
    constexpr std::size_t most = 6; // pieces of one triangle
    if (!bins.hasRoom(most * bins.first.size(), most)) return false;
    ScreenCorner corner[3];
    set.corners(triangle, corner);
    const Shape shape = withinReach(corner);
    const auto at = [&](int i) { return rasterPoint(shape.corner[i].x, shape.corner[i].y, 0); };
    for (int i = 2; i < shape.n; ++i) {
        const Piece piece{{at(0), at(i - 1), at(i)}, triangle};
        const auto& [a, b, c] = piece.corner;
        const Range across = reached(a.x, b.x, c.x, tiles.width());
        const Range down = reached(a.y, b.y, c.y, tiles.height());
        if (across.isEmpty() || down.isEmpty()) continue;
        add(across, down, TriangleBins::ofPiece | static_cast<std::uint32_t>(bins.pieces.size()));
        bins.pieces.push_back(piece);
    }
    return true;
}

/// Draws all that was sorted into a tile.
void paint(TilePainter& painter, const std::vector<TriangleBins>& bins, std::size_t tile) {
    for (const TriangleBins& bin : bins) {
        for (std::uint32_t block = bin.first[tile]; block != TriangleBins::none;) {
            const TriangleBins::Block& now = bin.blocks[block];
            for (const std::uint32_t entry : std::span(now.entries, now.count)) {
                if ((entry & TriangleBins::ofPiece) != 0) {
                    painter.draw(bin.pieces[entry & ~TriangleBins::ofPiece]);
                } else {
                    painter.draw(entry);
                }
            }
            block = now.next;
        }
    }
}

} // namespace

DepthTiles::DepthTiles() = default;
DepthTiles::~DepthTiles() = default;

DepthTiles::DepthTiles(DepthTiles&&) noexcept = default;
DepthTiles& DepthTiles::operator=(DepthTiles&&) noexcept = default;

void DepthTiles::resize(int width, int height, std::size_t triangles) {
    wide = std::max(width, 0);
    high = std::max(height, 0);
    tileColumns = (wide + Tile::width - 1) / Tile::width;
    tileRows = (high + Tile::height - 1) / Tile::height;
    tiles.resize(static_cast<std::size_t>(tileColumns) * static_cast<std::size_t>(tileRows));
    const auto chunks = static_cast<int>(std::min<std::size_t>(triangles / chunk + 1, 1000));
    bins.resize(static_cast<std::size_t>(std::min(chunks, workers())));
    for (TriangleBins& bin : bins) bin.resize(tiles.size(), triangles);
}

void DepthTiles::draw(int width, int height, const TriangleSet& set) {
    resize(width, height, set.triangles.size());
    const auto all = static_cast<std::uint32_t>(set.triangles.size());
    std::atomic<std::uint32_t> next = 0;
    std::atomic<bool> full = true;
    for (bool first = true; full; first = false) {
        full = false;
        inParallel(static_cast<int>(bins.size()), [&](int worker) {
            TriangleBins& bin = bins[static_cast<std::size_t>(worker)];
            bin.empty();
            Sorter sorter(bin, set, *this);
            while (sorter.sortChunk()) {
                bin.next = next.fetch_add(chunk);
                if (bin.next >= all) return void(bin.next = bin.end = 0);
                bin.end = std::min(bin.next + chunk, all);
            }
            full = true;
        });
        inParallel(static_cast<int>(tiles.size()), [&](int i) {
            const auto tile = static_cast<std::size_t>(i);
            TilePainter painter(set, tiles[tile], i % tileColumns, i / tileColumns, wide, high);
            if (first) painter.clear();
            paint(painter, bins, tile);
        });
    }
}

} // namespace polyfab
