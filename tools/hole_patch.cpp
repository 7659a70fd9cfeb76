// SPDX-License-Identifier: GPL-3.0-or-later
// The dynamic programme over all triangulations of a polygon in space is that of Barequet and
// Sharir, "Filling gaps in the boundary of a polyhedron", 1995. What the cut into chains costs in
// area is mostly won back by going over the patch window by window.
#include "tools/hole_patch.h"

#include "geometry/polygon.h"
#include "tools/flat_polygon.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace polyfab {
namespace {

constexpr std::size_t mostAtOnce = 160; ///< corners for which all triangulations are compared
constexpr std::size_t mostCoarse = 320; ///< the same where a loop has more
constexpr std::size_t mostInChain = 64;
constexpr std::size_t mostInWindow = 32; ///< triangles
constexpr std::size_t rounds = 8;
constexpr double takenCosts = 1e6; ///< more than all triangles in units of the extent

double lengthOf(const Vec3& v) { return std::sqrt(dot(v, v)); }

double extentOf(std::span<const Vec3> loop) {
    double extent = 0;
    for (const Vec3& at : loop) extent = std::max(extent, largestPart(at - loop[0]));
    return extent;
}

/// The loop near the origin and of about unit size.
std::vector<Vec3> normalized(std::span<const Vec3> loop) {
    const double extent = extentOf(loop);
    std::vector<Vec3> scaled;
    scaled.reserve(loop.size());
    for (const Vec3& at : loop) {
        const Vec3 way = at - loop[0];
        scaled.push_back(extent > 0 ? Vec3{way.x / extent, way.y / extent, way.z / extent} : way);
    }
    return scaled;
}

/// The area, and a thousandth of what the equilateral triangle of this circumference has more.
double weightOf(const Vec3& a, const Vec3& b, const Vec3& c) {
    const double area = lengthOf(cross(b - a, c - a)) / 2;
    const double around = lengthOf(b - a) + lengthOf(c - b) + lengthOf(a - c);
    const double equilateral = around * around / (12 * std::sqrt(3.0));
    return area + 1e-3 * (equilateral - area);
}

using Corners = std::vector<std::int32_t>;

class Patcher {
  public:
    Patcher(const LoopToPatch& patched, std::vector<PatchTriangle>& result)
        : loop(patched), at(normalized(patched.at)), triangles(result) {}

    /// False when it takes an edge that is taken, or was stopped. `shift`: where in a loop of many
    /// corners the coarse triangles have theirs.
    bool patch(const Corners& corners, std::size_t shift, std::size_t most) {
        if (loop.stopped()) return false;
        return corners.size() <= most ? patchAtOnce(corners) : patchCoarsely(corners, shift);
    }

    /// Makes the patch of a loop that was cut into chains lighter.
    void improve() {
        const std::size_t n = triangles.size();
        for (std::size_t round = 0; round < rounds && !loop.stopped(); ++round) {
            improveWindows(round * 7919 % n);
        }
    }

  private:
    struct Best {
        double weight;
        std::int32_t apex;
    };
    Best& best(std::size_t i, std::size_t k) { return table[i * mostCoarse + k]; }

    /// Whether it takes no edge that is taken.
    bool patchAtOnce(const Corners& corners) {
        const std::size_t n = corners.size();
        table.resize(mostCoarse * mostCoarse);
        for (std::size_t i = 0; i + 1 < n; ++i) best(i, i + 1) = {0, -1};
        for (std::size_t width = 2; width < n; ++width) {
            for (std::size_t i = 0; i + width < n; ++i) findBest(corners, i, i + width);
        }
        if (best(0, n - 1).weight >= takenCosts) return false;
        collect(corners, 0, n - 1);
        return true;
    }

    void findBest(const Corners& corners, std::size_t i, std::size_t k) {
        const auto place = [&](std::size_t corner) -> const Vec3& {
            return at[static_cast<std::size_t>(corners[corner])];
        };
        Best found{INFINITY, static_cast<std::int32_t>(i + 1)};
        for (std::size_t apex = i + 1; apex < k; ++apex) {
            const double sides = best(i, apex).weight + best(apex, k).weight;
            if (sides >= found.weight) continue;
            const double weight = sides + weightOf(place(i), place(apex), place(k));
            if (weight < found.weight) found = {weight, static_cast<std::int32_t>(apex)};
        }
        const bool whole = i == 0 && k + 1 == corners.size();
        if (!whole && loop.taken(corners[i], corners[k])) found.weight += takenCosts;
        best(i, k) = found;
    }

    void collect(const Corners& corners, std::size_t from, std::size_t to) {
        std::vector<std::pair<std::size_t, std::size_t>> open{{from, to}};
        while (!open.empty()) {
            const auto [i, k] = open.back();
            open.pop_back();
            if (k - i < 2) continue;
            const auto apex = static_cast<std::size_t>(best(i, k).apex);
            triangles.push_back({corners[i], corners[apex], corners[k]});
            open.emplace_back(i, apex);
            open.emplace_back(apex, k);
        }
    }

    bool patchCoarsely(const Corners& corners, std::size_t shift) {
        const std::size_t n = corners.size();
        // Where the coarse triangles and all chains together take the same time.
        const auto pieces = static_cast<std::size_t>(
            std::min(std::pow(static_cast<double>(n), 0.6), static_cast<double>(mostCoarse)));
        const auto start = [&](std::size_t piece) { return (piece * n / pieces + shift) % n; };
        Corners coarse;
        for (std::size_t piece = 0; piece < pieces; ++piece) {
            coarse.push_back(corners[start(piece)]);
            const std::int32_t next = corners[start(piece + 1)];
            if (loop.taken(coarse.back(), next)) return false;
        }
        if (!patchAtOnce(coarse)) return false;
        for (std::size_t piece = 0; piece < pieces; ++piece) {
            Corners chain;
            for (std::size_t i = start(piece); i != start(piece + 1); i = (i + 1) % n) {
                chain.push_back(corners[i]);
            }
            chain.push_back(corners[start(piece + 1)]);
            if (!patch(chain, 0, mostInChain)) return false;
        }
        return true;
    }

    /// Cuts the patch into windows of some connected triangles and makes the best of each. The
    /// first of them begins at this triangle.
    void improveWindows(std::size_t start) {
        const std::size_t n = triangles.size();
        const Neighbours across = neighbours();
        const std::vector<PatchTriangle> before = std::move(triangles);
        triangles.clear();
        std::vector<bool> taken(n, false);
        for (std::size_t i = 0; i < n; ++i) {
            const std::size_t first = (start + i) % n;
            if (taken[first]) continue;
            std::vector<std::size_t> window{first};
            taken[first] = true;
            for (std::size_t w = 0; w < window.size(); ++w) {
                for (const std::int32_t beyond : across[window[w]]) {
                    const auto other = static_cast<std::size_t>(beyond);
                    if (beyond < 0 || taken[other] || window.size() == mostInWindow) continue;
                    taken[other] = true;
                    window.push_back(other);
                }
            }
            improve(before, window);
        }
    }

    /// The corners of connected triangles are, in the order of the loop, a loop themselves.
    void improve(const std::vector<PatchTriangle>& before, const std::vector<std::size_t>& window) {
        Corners corners;
        for (const std::size_t triangle : window) {
            corners.insert(corners.end(), before[triangle].begin(), before[triangle].end());
        }
        std::sort(corners.begin(), corners.end());
        corners.erase(std::unique(corners.begin(), corners.end()), corners.end());
        if (!loop.stopped() && patchAtOnce(corners)) return;
        for (const std::size_t triangle : window) triangles.push_back(before[triangle]);
    }

    /// The triangles behind the three sides of each triangle; -1: none.
    using Neighbours = std::vector<std::array<std::int32_t, 3>>;
    [[nodiscard]] Neighbours neighbours() const {
        struct Side {
            std::int32_t low, high, number;
        };
        std::vector<Side> sides;
        for (std::size_t i = 0; i < triangles.size(); ++i) {
            for (std::size_t k = 0; k < 3; ++k) {
                const auto [low, high] =
                    std::minmax(triangles[i][k], triangles[i][k == 2 ? 0 : k + 1]);
                sides.push_back({low, high, static_cast<std::int32_t>(3 * i + k)});
            }
        }
        std::sort(sides.begin(), sides.end(), [](const Side& a, const Side& b) {
            return a.low != b.low ? a.low < b.low : a.high < b.high;
        });
        Neighbours across(triangles.size(), {-1, -1, -1});
        for (std::size_t i = 1; i < sides.size(); ++i) {
            const Side &a = sides[i - 1], &b = sides[i];
            if (a.low != b.low || a.high != b.high) continue;
            const auto at3 = [&](std::int32_t number) -> std::int32_t& {
                return across[static_cast<std::size_t>(number / 3)]
                             [static_cast<std::size_t>(number % 3)];
            };
            at3(a.number) = b.number / 3;
            at3(b.number) = a.number / 3;
        }
        return across;
    }

    const LoopToPatch& loop;
    std::vector<Vec3> at;
    std::vector<Best> table; ///< of the chain from one corner to another: how it is patched best
    std::vector<PatchTriangle>& triangles;
};

/// Whether the triangle has a side across the loop that is taken.
bool usesTaken(const LoopToPatch& loop, const PatchTriangle& triangle) {
    const auto n = static_cast<std::int32_t>(loop.at.size());
    const auto across = [&](std::int32_t low, std::int32_t high) {
        return high - low > 1 && high - low < n - 1 && loop.taken(low, high);
    };
    const auto& [a, b, c] = triangle;
    return across(a, b) || across(b, c) || across(a, c);
}

} // namespace

bool isFlat(std::span<const Vec3> loop) {
    constexpr double rounding = 1e-6;
    const std::vector<Vec3> at = normalized(loop);
    const Vec3 normal = unit(doubledArea(static_cast<int>(at.size()),
                                         [&](int k) { return at[static_cast<std::size_t>(k)]; }));
    return !isZero(normal) && std::all_of(at.begin(), at.end(), [&](const Vec3& place) {
        return std::abs(dot(place, normal)) <= rounding;
    });
}

std::vector<PatchTriangle> patchLoop(const LoopToPatch& loop) {
    std::vector<PatchTriangle> triangles;
    if (isFlat(loop.at)) triangles = trianglesOf(loop.at);
    if (!triangles.empty() && std::none_of(triangles.begin(), triangles.end(), [&](const auto& t) {
            return usesTaken(loop, t);
        })) {
        return triangles;
    }
    Patcher patcher(loop, triangles);
    Corners corners(loop.at.size());
    for (std::size_t i = 0; i < corners.size(); ++i) corners[i] = static_cast<std::int32_t>(i);
    // Where coarse triangles meet an edge that is taken, others may not.
    const std::size_t tries = corners.size() <= mostAtOnce ? 1 : 8;
    for (std::size_t shift = 0; shift < tries && !loop.stopped(); ++shift) {
        triangles.clear();
        if (!patcher.patch(corners, shift, mostAtOnce)) continue;
        if (corners.size() > mostAtOnce) patcher.improve();
        return triangles;
    }
    triangles.clear();
    return triangles;
}

} // namespace polyfab
