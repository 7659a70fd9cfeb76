// SPDX-License-Identifier: GPL-3.0-or-later
// Each worker draws a part of the triangles, into one tile at a time that it has for itself. What
// follows each other in a part lies near each other, so that it seldom goes to another tile.
// Coverage is by edge functions (Pineda, "A parallel algorithm for polygon rasterization", 1988).
#include "picture/triangles.h"

#include "picture/workers.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cmath>
#include <limits>
#include <optional>
#include <thread>

namespace polyfab {

namespace {

constexpr int one = RasterPoint::one;

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

} // namespace

/// The tile that a worker draws into, and that no other one has meanwhile.
class TileHolder {
  public:
    explicit TileHolder(DepthTiles& of) : tiles(of) {}
    ~TileHolder() { release(); }
    TileHolder(const TileHolder&) = delete;
    TileHolder& operator=(const TileHolder&) = delete;

    Tile& hold(int column, int row) {
        const std::size_t wanted = tiles.number(column, row);
        if (wanted != number) {
            release();
            number = wanted;
            while (tiles.held[number].test_and_set(std::memory_order_acquire)) {
                std::this_thread::yield();
            }
        }
        return tiles.tiles[number];
    }

  private:
    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    void release() {
        if (number != none) tiles.held[number].clear(std::memory_order_release);
    }

    DepthTiles& tiles;
    std::size_t number = none;
};

namespace {

/// A triangle, or a piece of one, in 256ths of a pixel.
struct Shape {
    const RasterPoint &a, &b, &c;
};

/// Draws triangles one after the other.
class TrianglePainter {
  public:
    TrianglePainter(const TriangleSet& drawn, DepthTiles& into)
        : set(drawn), tiles(into), width(into.width()), height(into.height()),
          mayHaveHoles(drawn.layWithHoles) {}

    void draw(std::uint32_t triangle) {
        const auto& corner = set.triangles[triangle].corner;
        const Shape shape{set.points[corner[0]], set.points[corner[1]], set.points[corner[2]]};
        const auto [left, right] = std::minmax({shape.a.x, shape.b.x, shape.c.x});
        if (right < 0 || left > (width - 1) * one || left == RasterPoint::nowhere) return;
        const auto [top, bottom] = std::minmax({shape.a.y, shape.b.y, shape.c.y});
        if (bottom < 0 || top > (height - 1) * one) return;
        const Range across = pixelsBetween(left, right), down = pixelsBetween(top, bottom);
        if (across.isEmpty() || down.isEmpty()) return;
        number = triangle;
        frame.reset();
        if (std::min(left, top) < -RasterPoint::reach
            || std::max(right, bottom) > RasterPoint::reach) {
            return drawFar();
        }
        draw(shape, across, down);
    }

  private:
    void drawFar();

    void draw(const Shape& shape, Range across, Range down) {
        constexpr int small = 16;
        const bool isSmall = across.last - across.first < small && down.last - down.first < small;
        across.cut(0, width - 1);
        down.cut(0, height - 1);
        const auto& [a, b, c] = shape;
        const std::int64_t area =
            std::int64_t{b.x - a.x} * (c.y - a.y) - std::int64_t{b.y - a.y} * (c.x - a.x);
        if (area == 0) return;
        // Area above 0: clockwise on the screen, where y runs down.
        const bool behind = (area > 0) != (set.triangles[number].turned != 0);
        if (behind && set.frontOnly) return;
        code = number << 1 | (behind ? Seen::behind : 0);
        const Shape clockwise{a, area > 0 ? b : c, area > 0 ? c : b};
        if (isSmall) {
            drawSmall(clockwise, across, down);
        } else {
            drawRows(clockwise, across, down);
        }
    }

    /// Each pixel is looked at, four at a time: in a fine mesh the processor could not guess which
    /// of them lie inside.
    void drawSmall(const Shape& shape, Range across, Range down) {
        using Edge = EdgeFunction<std::int32_t>;
        const Edge edges[3] = {Edge(shape.a, shape.b, across.first, down.first),
                               Edge(shape.b, shape.c, across.first, down.first),
                               Edge(shape.c, shape.a, across.first, down.first)};
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
    void drawRows(const Shape& shape, Range across, Range down) {
        using Edge = EdgeFunction<std::int64_t>;
        Edge edges[3] = {Edge(shape.a, shape.b, across.first, down.first),
                         Edge(shape.b, shape.c, across.first, down.first),
                         Edge(shape.c, shape.a, across.first, down.first)};
        for (int y = down.first; y <= down.last; ++y) {
            Range steps{0, across.last - across.first};
            for (Edge& edge : edges) {
                cutRow(steps, edge.value, edge.right);
                edge.value += edge.down;
            }
            const int last = across.first + steps.last;
            for (int x = across.first + steps.first; x <= last;) {
                const int end = std::min(last, x | (Tile::width - 1));
                drawRow(x, end, y);
                x = end + 1;
            }
        }
    }

    const TriangleFrame& frameNow() {
        if (!frame) {
            ScreenCorner corner[3];
            set.corners(number, corner);
            frame.emplace(corner);
            depth = {corner[0].depth, corner[1].depth, corner[2].depth};
            isHoled = mayHaveHoles && set.layWithHoles(number, picture);
        }
        return *frame;
    }

    void drawPixel(int x, int y) {
        const Shares shares = frameNow().at(x, y);
        const auto near = static_cast<float>(depth.at(shares));
        Tile& tile = holder.hold(x / Tile::width, y / Tile::height);
        const int at = y % Tile::height * Tile::width + x % Tile::width;
        if (near > tile.depth[at] || (near == tile.depth[at] && !isBefore(tile.seen[at]))) return;
        if (isHoled && Texture::isHole(picture.nearest(shares))) return;
        tile.depth[at] = near;
        tile.seen[at] = code;
    }

    /// The pixels lie in one tile.
    void drawRow(int from, int to, int y) {
        const TriangleFrame at = frameNow();
        if (isHoled) {
            for (int x = from; x <= to; ++x) drawPixel(x, y);
            return;
        }
        const int count = to - from + 1;
        float near[Tile::width];
        for (int i = 0; i < count; ++i) near[i] = static_cast<float>(depth.at(at.at(from + i, y)));
        Tile& tile = holder.hold(from / Tile::width, y / Tile::height);
        const int start = y % Tile::height * Tile::width + from % Tile::width;
        float* const depths = tile.depth + start;
        std::uint32_t* const seen = tile.seen + start;
        const std::uint32_t now = code;
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
        const auto face = set.triangles[number].face,
                   otherFace = set.triangles[Seen::triangle(other)].face;
        return face != otherFace ? face < otherFace : code < other;
    }

    const TriangleSet& set;
    DepthTiles& tiles;
    TileHolder holder{tiles};
    int width, height;
    bool mayHaveHoles;
    // Of the triangle that is drawn:
    std::uint32_t number = 0, code = 0;
    std::optional<TriangleFrame> frame; ///< worked out for the first pixel, with what follows
    Slope depth;
    bool isHoled = false;
    LaidTexture picture; ///< of one that is holed
};

struct Flat {
    double x, y;
};

/// A triangle, or what cuts have left of it.
struct Outline {
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
Outline cut(const Outline& shape, double Flat::*u, double bound) {
    const auto inside = [&](const Flat& p) { return bound < 0 ? p.*u >= bound : p.*u <= bound; };
    Outline kept;
    for (int i = 0; i < shape.n; ++i) {
        const Flat &from = shape.corner[i], &to = shape.corner[i + 1 < shape.n ? i + 1 : 0];
        if (inside(from)) kept.add(from);
        if (inside(from) != inside(to)) kept.add(crossing(from, to, u, bound));
    }
    return kept;
}

Outline withinReach(const ScreenCorner (&corner)[3]) {
    constexpr double bound = RasterPoint::reach / double{one};
    Outline shape;
    for (const ScreenCorner& c : corner) shape.add({c.x, c.y});
    for (double Flat::*const u : {&Flat::x, &Flat::y}) shape = cut(cut(shape, u, bound), u, -bound);
    return shape;
}

void TrianglePainter::drawFar() {
    ScreenCorner corner[3];
    set.corners(number, corner);
    const Outline outline = withinReach(corner);
    const auto at = [&](int i) { return rasterPoint(outline.corner[i].x, outline.corner[i].y, 0); };
    for (int i = 2; i < outline.n; ++i) {
        const RasterPoint a = at(0), b = at(i - 1), c = at(i);
        const Range across = rangeOf(a.x, b.x, c.x), down = rangeOf(a.y, b.y, c.y);
        draw({a, b, c}, across, down);
    }
}

} // namespace

void DepthTiles::resize(int width, int height) {
    wide = std::max(width, 0);
    high = std::max(height, 0);
    tileColumns = (wide + Tile::width - 1) / Tile::width;
    tileRows = (high + Tile::height - 1) / Tile::height;
    const std::size_t count = number(0, tileRows);
    if (tiles.size() != count) held = std::make_unique<std::atomic_flag[]>(count);
    tiles.resize(count);
}

void DepthTiles::clear() {
    inParallel(static_cast<int>(tiles.size()), [&](int i) {
        Tile& tile = tiles[static_cast<std::size_t>(i)];
        std::fill(std::begin(tile.depth), std::end(tile.depth),
                  std::numeric_limits<float>::infinity());
        std::fill(std::begin(tile.seen), std::end(tile.seen), Seen::nothing);
    });
}

/// Workers take their pieces from as many far apart stretches as there may be of them: of pieces
/// that follow each other each would wait for the tile of the other.
void DepthTiles::draw(int width, int height, const TriangleSet& set) {
    resize(width, height);
    clear();
    constexpr std::size_t stretches = 16;
    const std::size_t all = set.triangles.size();
    const std::size_t piece = std::clamp<std::size_t>(all / 256, 1, 4096);
    const std::size_t inStretch = (all + stretches * piece - 1) / (stretches * piece);
    inParallel(static_cast<int>(stretches * inStretch), [&](int part) {
        const auto i = static_cast<std::size_t>(part);
        const std::size_t from = (i % stretches * inStretch + i / stretches) * piece;
        const std::size_t end = std::min(from + piece, all);
        TrianglePainter painter(set, *this);
        for (std::size_t t = from; t < end; ++t) painter.draw(static_cast<std::uint32_t>(t));
    });
}

} // namespace polyfab
