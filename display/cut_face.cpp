// SPDX-License-Identifier: GPL-3.0-or-later
// Ear clipping (Meisters, "Polygons have ears", 1975): only corners that bend inwards can lie in an
// ear, so a convex polygon takes linear time.
#include "display/cut_face.h"

#include "geometry/ear_clipping.h"
#include "geometry/polygon.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <tuple>

namespace polyfab {
namespace {

/// Looking at every bay from every corner is the quickest way for so few.
constexpr std::size_t fewCorners = 200;

bool comesBefore(const Vec3& a, const Vec3& b) {
    return std::tie(a.x, a.y, a.z) < std::tie(b.x, b.y, b.z);
}

Vec3 areaOf(std::span<const Vec3> corners) {
    return doubledArea(static_cast<int>(corners.size()),
                       [&](int k) { return corners[static_cast<std::size_t>(k)] - corners[0]; });
}

} // namespace

/// Whether a diagonal lies inside is told from the triangles on its two sides.
void PolygonCutter::cutQuad(std::span<const Vec3> corners) {
    const Vec3 normal = areaOf(corners);
    const auto turn = [&](std::size_t a, std::size_t b, std::size_t c) {
        return dot(normal, cross(corners[b] - corners[a], corners[c] - corners[a]));
    };
    const bool first = turn(0, 1, 2) > 0 && turn(0, 2, 3) > 0;
    const bool second = turn(1, 2, 3) > 0 && turn(1, 3, 0) > 0;
    bool useFirst = first;
    if (first == second) {
        const double length1 = squaredDistance(corners[0], corners[2]);
        const double length2 = squaredDistance(corners[1], corners[3]);
        const Vec3& end1 = std::min(corners[0], corners[2], comesBefore);
        const Vec3& end2 = std::min(corners[1], corners[3], comesBefore);
        useFirst = length1 != length2 ? length1 < length2 : comesBefore(end1, end2);
    }
    if (useFirst) {
        triangles = {{{0, 1, 2}}, {{0, 2, 3}}};
    } else {
        triangles = {{{1, 2, 3}}, {{1, 3, 0}}};
    }
}

/// From the first position in the order of coordinates on, towards that of its neighbours which
/// comes before the other.
void PolygonCutter::putInOrder(std::span<const Vec3> corners) {
    const auto n = static_cast<int>(corners.size());
    const auto start = static_cast<int>(
        std::min_element(corners.begin(), corners.end(), comesBefore) - corners.begin());
    const auto at = [&](int i) { return corners[static_cast<std::size_t>((i + n) % n)]; };
    turned = comesBefore(at(start - 1), at(start + 1));
    order.resize(corners.size());
    for (int i = 0; i < n; ++i) {
        order[static_cast<std::size_t>(i)] = (turned ? start - i + n : start + i) % n;
    }
}

/// Seen along the axis that the polygon faces most: what runs anticlockwise there, runs so here.
void PolygonCutter::flatten(std::span<const Vec3> corners) {
    std::vector<Vec3> ordered;
    for (const int corner : order) ordered.push_back(corners[static_cast<std::size_t>(corner)]);
    const Vec3 normal = areaOf(ordered);
    int axis = 0;
    for (int i = 1; i < 3; ++i) {
        if (std::abs(along(normal, i)) > std::abs(along(normal, axis))) axis = i;
    }
    const int across = (axis + 1) % 3, up = (axis + 2) % 3;
    const bool away = along(normal, axis) < 0;
    flat.clear();
    for (const Vec3& p : ordered) {
        const double x = along(p, across), y = along(p, up);
        flat.push_back(away ? Vec2{y, x} : Vec2{x, y});
    }
}

double PolygonCutter::area(int a, int b, int c) const {
    const Vec2 &p = flat[static_cast<std::size_t>(a)], &q = flat[static_cast<std::size_t>(b)],
               &r = flat[static_cast<std::size_t>(c)];
    return (q.x - p.x) * (r.y - p.y) - (q.y - p.y) * (r.x - p.x);
}

bool PolygonCutter::isEar(int corner) const {
    const auto i = static_cast<std::size_t>(corner);
    const int a = before[i], c = after[i];
    if (bendsInwards[i] != 0) return false;
    const auto isOn = [&](int p, int q) {
        return flat[static_cast<std::size_t>(p)] == flat[static_cast<std::size_t>(q)];
    };
    return std::none_of(bays.begin(), bays.end(), [&](int p) {
        if (bendsInwards[static_cast<std::size_t>(p)] == 0) return false;
        if (p == a || p == c || isOn(p, a) || isOn(p, corner) || isOn(p, c)) return false;
        return area(a, corner, p) >= 0 && area(corner, c, p) >= 0 && area(c, a, p) >= 0;
    });
}

void PolygonCutter::noteBend(int corner) {
    const auto i = static_cast<std::size_t>(corner);
    bendsInwards[i] = area(before[i], corner, after[i]) < 0 ? 1 : 0;
}

/// By places in the order.
void PolygonCutter::add(int a, int b, int c) {
    const auto number = [&](int place) { return order[static_cast<std::size_t>(place)]; };
    triangles.push_back({{number(turned ? c : a), number(b), number(turned ? a : c)}});
}

void PolygonCutter::clip(int corner) {
    const auto i = static_cast<std::size_t>(corner);
    const int a = before[i], c = after[i];
    add(a, corner, c);
    after[static_cast<std::size_t>(a)] = c;
    before[static_cast<std::size_t>(c)] = a;
    bendsInwards[i] = 0;
    noteBend(a);
    noteBend(c);
}

void PolygonCutter::clipFew() {
    const auto n = static_cast<int>(flat.size());
    before.resize(flat.size());
    after.resize(flat.size());
    bendsInwards.assign(flat.size(), 0);
    for (int i = 0; i < n; ++i) {
        before[static_cast<std::size_t>(i)] = (i + n - 1) % n;
        after[static_cast<std::size_t>(i)] = (i + 1) % n;
    }
    bays.clear();
    for (int i = 0; i < n; ++i) {
        noteBend(i);
        if (bendsInwards[static_cast<std::size_t>(i)] != 0) bays.push_back(i);
    }
    int corner = 1, failed = 0;
    for (int rest = n; rest > 3;) {
        const int next = after[static_cast<std::size_t>(corner)];
        if (failed < rest && !isEar(corner)) {
            ++failed;
        } else {
            clip(corner);
            failed = 0;
            --rest;
        }
        corner = next;
    }
    clip(corner);
}

void PolygonCutter::clipMany() {
    for (Vec2& p : flat) {
        if (!std::isfinite(p.x) || !std::isfinite(p.y)) p = {};
    }
    for (const auto& [a, b, c] : clipEarsAnyhow(flat)) add(a, b, c);
}

const std::vector<CutTriangle>& PolygonCutter::cut(std::span<const Vec3> corners) {
    triangles.clear();
    if (corners.size() == 4) {
        cutQuad(corners);
    } else {
        putInOrder(corners);
        flatten(corners);
        flat.size() <= fewCorners ? clipFew() : clipMany();
    }
    return triangles;
}

} // namespace polyfab
