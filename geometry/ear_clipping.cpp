// SPDX-License-Identifier: GPL-3.0-or-later
// Ears are cut off one by one (Meisters, "Polygons have ears", 1975), the one with the largest of
// all smallest angles first. What may lie in an ear are only corners that are not convex.
#include "geometry/ear_clipping.h"

#include "geometry/corner_tree.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <queue>
#include <utility>

namespace polyfab {
namespace {

/// Cosine of the smallest angle of the triangle.
double sharpness(const Vec2& a, const Vec2& b, const Vec2& c) {
    const auto cosine = [](const Vec2& at, const Vec2& p, const Vec2& q) {
        const double px = p.x - at.x, py = p.y - at.y, qx = q.x - at.x, qy = q.y - at.y;
        return (px * qx + py * qy) / std::sqrt((px * px + py * py) * (qx * qx + qy * qy));
    };
    return std::max({cosine(a, b, c), cosine(b, c, a), cosine(c, a, b)});
}

template <typename List>
auto& at(List& list, std::int32_t i) {
    return list[static_cast<std::size_t>(i)];
}

class EarClipper {
  public:
    /// `anyhow`: corners are cut off also where there is no ear.
    EarClipper(std::span<const Vec2> clipped, bool anyhow)
        : polygon(clipped), before(clipped.size()), after(clipped.size()), stamp(clipped.size(), 0),
          waiting(clipped.size()), blunt(clipped), n(static_cast<std::int32_t>(clipped.size())),
          cutsAll(anyhow) {
        for (std::int32_t i = 0; i < n; ++i) {
            at(before, i) = i == 0 ? n - 1 : i - 1;
            at(after, i) = i == n - 1 ? 0 : i + 1;
        }
        for (std::int32_t i = 0; i < n; ++i) {
            if (turn(i) <= 0) blunt.add(i);
        }
        for (std::int32_t i = 0; i < n; ++i) enter(i);
    }

    /// False when no ear was left before all were clipped.
    bool clip(std::vector<std::array<std::int32_t, 3>>& triangles) {
        for (std::int32_t left = n; left > 3; --left) {
            const std::int32_t corner = nextEar();
            if (corner < 0 && !cutsAll) return false;
            remove(corner < 0 ? anyLeft : corner, triangles);
        }
        if (turn(anyLeft) <= 0 && !cutsAll) return false;
        triangles.push_back(ordered(anyLeft));
        return true;
    }

  private:
    static constexpr double flat = 2; ///< beyond all cosines: no area
    /// Boxes; the worst shapes that do not cross themselves need less than ten millions at 32,767
    /// corners.
    static constexpr std::int64_t mostLooks = 200'000'000;

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

    /// Spikes go first, as ears would be seen where they turn back on themselves; corners in a
    /// line last, as others may have use for them.
    void enter(std::int32_t i) {
        const int bend = turn(i);
        if (bend < 0 || (bend == 0 && !cutsAll)) return;
        const Vec2 &a = place(at(before, i)), &b = place(i), &c = place(at(after, i));
        const bool turnsBack = (a.x - b.x) * (c.x - b.x) + (a.y - b.y) * (c.y - b.y) >= 0;
        const double grade = bend != 0 ? sharpness(a, b, c) : turnsBack ? -flat : flat;
        ears.push({grade, i, at(stamp, i)});
    }

    /// The best of those that are left, or -1.
    std::int32_t nextEar() {
        while (!ears.empty() && !(cutsAll && looks > mostLooks)) {
            const Ear ear = ears.top();
            ears.pop();
            const std::int32_t i = ear.corner;
            if (ear.stamp != at(stamp, i)) continue;
            if (std::abs(ear.sharpness) == flat) return i;
            const std::int32_t blocker =
                blunt.findIn(place(at(before, i)), place(i), place(at(after, i)), looks);
            if (blocker < 0) return i;
            at(waiting, blocker).push_back(ear);
        }
        return -1;
    }

    void remove(std::int32_t i, std::vector<std::array<std::int32_t, 3>>& triangles) {
        const std::int32_t a = at(before, i), c = at(after, i);
        const bool bluntA = turn(a) <= 0, bluntC = turn(c) <= 0;
        if (turn(i) <= 0) unblock(i);
        triangles.push_back(ordered(i));
        ++at(stamp, i);
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
        if (!wasBlunt && isBlunt) blunt.add(corner);
        if (wasBlunt && !isBlunt) unblock(corner);
    }

    void unblock(std::int32_t corner) {
        blunt.remove(corner);
        for (const Ear& ear : at(waiting, corner)) ears.push(ear);
        at(waiting, corner).clear();
    }

    std::span<const Vec2> polygon;
    std::vector<std::int32_t> before, after, stamp;
    std::vector<std::vector<Ear>> waiting; ///< for this corner not to be in their way
    CornerTree blunt; ///< the corners that are left and do not turn to the left
    std::priority_queue<Ear> ears;
    std::int32_t n;
    std::int32_t anyLeft = 0;
    bool cutsAll;
    std::int64_t looks = 0;
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
    if (polygon.size() < 3 || !EarClipper(polygon, false).clip(triangles)) triangles.clear();
    return triangles;
}

std::vector<std::array<std::int32_t, 3>> clipEarsAnyhow(std::span<const Vec2> polygon) {
    std::vector<std::array<std::int32_t, 3>> triangles;
    static_cast<void>(EarClipper(polygon, true).clip(triangles));
    return triangles;
}

} // namespace polyfab
