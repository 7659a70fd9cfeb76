// SPDX-License-Identifier: GPL-3.0-or-later
// Ears are cut off one by one (Meisters, "Polygons have ears", 1975), the one with the largest of
// all smallest angles first. What may lie in an ear are only corners that are not convex; a grid
// finds those near it.
#include "geometry/ear_clipping.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <queue>
#include <utility>

namespace polyfab {
namespace {

/// The least box around some points.
struct Bounds {
    static constexpr double none = INFINITY;
    double left = none, right = -none, low = none, high = -none;

    void add(const Vec2& p) {
        left = std::min(left, p.x);
        right = std::max(right, p.x);
        low = std::min(low, p.y);
        high = std::max(high, p.y);
    }
};

/// Cosine of the smallest angle of the triangle.
double sharpness(const Vec2& a, const Vec2& b, const Vec2& c) {
    const auto cosine = [](const Vec2& at, const Vec2& p, const Vec2& q) {
        const double px = p.x - at.x, py = p.y - at.y, qx = q.x - at.x, qy = q.y - at.y;
        return (px * qx + py * qy) / std::sqrt((px * px + py * py) * (qx * qx + qy * qy));
    };
    return std::max({cosine(a, b, c), cosine(b, c, a), cosine(c, a, b)});
}

/// Corners by where they lie: about one in each cell.
class CornerGrid {
  public:
    explicit CornerGrid(std::span<const Vec2> polygon) {
        for (const Vec2& p : polygon) bounds.add(p);
        side = std::max<std::size_t>(
            1, static_cast<std::size_t>(std::sqrt(static_cast<double>(polygon.size()))));
        cells.resize(side * side);
    }
    void add(const Vec2& p, std::int32_t corner) { cell(p).push_back(corner); }
    void remove(const Vec2& p, std::int32_t corner) {
        auto& list = cell(p);
        const auto place = std::find(list.begin(), list.end(), corner);
        if (place != list.end()) list.erase(place);
    }
    /// A corner that the test holds of in one of the cells that the box meets, or -1.
    template <typename Test>
    [[nodiscard]] std::int32_t findIn(const Bounds& box, Test test) const {
        for (std::size_t y = row(box.low); y <= row(box.high); ++y) {
            for (std::size_t x = column(box.left); x <= column(box.right); ++x) {
                const auto& list = cells[y * side + x];
                const auto found = std::find_if(list.begin(), list.end(), test);
                if (found != list.end()) return *found;
            }
        }
        return -1;
    }

  private:
    [[nodiscard]] std::size_t place(double at, double low, double high) const {
        if (!(high > low)) return 0;
        const double part = (at - low) / (high - low) * static_cast<double>(side);
        return std::min(side - 1, static_cast<std::size_t>(std::max(part, 0.0)));
    }
    [[nodiscard]] std::size_t column(double x) const { return place(x, bounds.left, bounds.right); }
    [[nodiscard]] std::size_t row(double y) const { return place(y, bounds.low, bounds.high); }
    std::vector<std::int32_t>& cell(const Vec2& p) { return cells[row(p.y) * side + column(p.x)]; }

    Bounds bounds;
    std::size_t side = 1;
    std::vector<std::vector<std::int32_t>> cells;
};

template <typename List>
auto& at(List& list, std::int32_t i) {
    return list[static_cast<std::size_t>(i)];
}

class EarClipper {
  public:
    explicit EarClipper(std::span<const Vec2> clipped)
        : polygon(clipped), before(clipped.size()), after(clipped.size()), stamp(clipped.size(), 0),
          waiting(clipped.size()), blunt(clipped), n(static_cast<std::int32_t>(clipped.size())) {
        for (std::int32_t i = 0; i < n; ++i) {
            at(before, i) = i == 0 ? n - 1 : i - 1;
            at(after, i) = i == n - 1 ? 0 : i + 1;
        }
        for (std::int32_t i = 0; i < n; ++i) {
            if (turn(i) <= 0) blunt.add(place(i), i);
        }
        for (std::int32_t i = 0; i < n; ++i) enter(i);
    }

    /// False when no ear was left before all were clipped.
    bool clip(std::vector<std::array<std::int32_t, 3>>& triangles) {
        for (std::int32_t left = n; left > 3;) {
            if (ears.empty()) return false;
            const Ear ear = ears.top();
            ears.pop();
            if (ear.stamp != at(stamp, ear.corner)) continue;
            if (const std::int32_t corner = blocker(ear.corner); corner >= 0) {
                at(waiting, corner).push_back(ear);
                continue;
            }
            triangles.push_back(ordered(ear.corner));
            remove(ear.corner);
            --left;
        }
        if (turn(anyLeft) <= 0) return false;
        triangles.push_back(ordered(anyLeft));
        return true;
    }

  private:
    struct Ear {
        double sharpness;
        std::int32_t corner, stamp;
        bool operator<(const Ear& other) const { return sharpness > other.sharpness; }
    };

    [[nodiscard]] const Vec2& place(std::int32_t i) const { return at(polygon, i); }
    [[nodiscard]] int turn(std::int32_t i) const {
        return orientation(place(at(before, i)), place(i), place(at(after, i)));
    }
    [[nodiscard]] std::array<std::int32_t, 3> ordered(std::int32_t i) const {
        std::array triangle{at(before, i), i, at(after, i)};
        std::sort(triangle.begin(), triangle.end()); // the order of the polygon
        return triangle;
    }

    void enter(std::int32_t i) {
        if (turn(i) <= 0) return;
        ears.push(
            {sharpness(place(at(before, i)), place(i), place(at(after, i))), i, at(stamp, i)});
    }

    /// A corner that lies in the triangle of this one or on its third side, or -1.
    [[nodiscard]] std::int32_t blocker(std::int32_t i) const {
        const Vec2 &a = place(at(before, i)), &b = place(i), &c = place(at(after, i));
        Bounds box;
        for (const Vec2* p : {&a, &b, &c}) box.add(*p);
        return blunt.findIn(box, [&](std::int32_t other) {
            const Vec2& p = place(other);
            if (p == a || p == b || p == c) return false;
            return orientation(a, b, p) > 0 && orientation(b, c, p) > 0
                   && orientation(c, a, p) >= 0;
        });
    }

    void remove(std::int32_t i) {
        const std::int32_t a = at(before, i), c = at(after, i);
        const bool bluntA = turn(a) <= 0, bluntC = turn(c) <= 0;
        at(after, a) = c;
        at(before, c) = a;
        anyLeft = a;
        turned(a, bluntA);
        turned(c, bluntC);
    }

    void turned(std::int32_t corner, bool wasBlunt) {
        const bool isBlunt = turn(corner) <= 0;
        ++at(stamp, corner);
        enter(corner);
        if (!wasBlunt && isBlunt) blunt.add(place(corner), corner);
        if (!wasBlunt || isBlunt) return;
        blunt.remove(place(corner), corner);
        for (const Ear& ear : at(waiting, corner)) ears.push(ear);
        at(waiting, corner).clear();
    }

    std::span<const Vec2> polygon;
    std::vector<std::int32_t> before, after, stamp;
    std::vector<std::vector<Ear>> waiting; ///< for this corner not to be in their way
    CornerGrid blunt; ///< the corners that are left and do not turn to the left
    std::priority_queue<Ear> ears;
    std::int32_t n;
    std::int32_t anyLeft = 0;
};

/// Whether the two segments cross at a point that is inside of both.
bool cross(const Vec2& a, const Vec2& b, const Vec2& c, const Vec2& d) {
    return orientation(a, b, c) * orientation(a, b, d) < 0
           && orientation(c, d, a) * orientation(c, d, b) < 0;
}

} // namespace

bool sidesCross(std::span<const Vec2> polygon) {
    struct Side {
        const Vec2 *from, *to;
        Bounds box;
    };
    std::vector<Side> sides;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const Vec2 &from = polygon[i], &to = polygon[i + 1 == polygon.size() ? 0 : i + 1];
        sides.push_back({&from, &to, {}});
        sides.back().box.add(from);
        sides.back().box.add(to);
    }
    std::sort(sides.begin(), sides.end(),
              [](const Side& a, const Side& b) { return a.box.left < b.box.left; });
    for (std::size_t i = 0; i < sides.size(); ++i) {
        const Side& a = sides[i];
        for (std::size_t k = i + 1; k < sides.size() && sides[k].box.left <= a.box.right; ++k) {
            const Side& b = sides[k];
            if (b.box.low > a.box.high || a.box.low > b.box.high) continue;
            if (cross(*a.from, *a.to, *b.from, *b.to)) return true;
        }
    }
    return false;
}

std::vector<std::array<std::int32_t, 3>> clipEars(std::span<const Vec2> polygon) {
    std::vector<std::array<std::int32_t, 3>> triangles;
    if (polygon.size() < 3 || !EarClipper(polygon).clip(triangles)) triangles.clear();
    return triangles;
}

} // namespace polyfab
