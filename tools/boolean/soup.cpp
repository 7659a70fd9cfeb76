// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/boolean/soup.h"

#include "mesh/faces.h"
#include "mesh/hash_slots.h"
#include "tools/boolean/arrange.h"
#include "workbench/long_work.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

namespace polyfab::boolean {
namespace {

/// The best cuts of polygons with more corners would take too long to find.
constexpr std::size_t mostForBest = 40;
constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr int mostExponent = 100; ///< of positions taken as they are: boxes are of floats

class SoupMaker {
  public:
    SoupMaker(const Mesh& owner, Soup& made, Effort& work) : mesh(owner), soup(made), effort(work) {
        soup.placeOf.assign(static_cast<std::size_t>(mesh.np), -1);
        slots.reset(2 * static_cast<std::size_t>(mesh.np) + 16);
    }

    void add(const Face& face) {
        if (face.n < 3) return;
        if (!isFinite(face)) {
            ++soup.notFinite;
            return;
        }
        list.clear();
        for (const FaceCorner& corner : corners(face)) list.push_back(placeOf(corner));
        dropSpikes(list, std::equal_to());
        if (list.size() < 3) return;
        const std::int32_t first = sizeOf(soup.triangles);
        soup.polygons.push_back({indexIn(mesh.faces, &face), first, 0});
        cutUp();
        soup.polygons.back().n = sizeOf(soup.triangles) - first;
    }

  private:
    std::int32_t placeOf(const FaceCorner& corner) {
        const std::int32_t point = pointOf(mesh, corner);
        std::int32_t& place = nth(soup.placeOf, point);
        if (place < 0) place = findPlace(point);
        return place;
    }

    std::int32_t findPlace(std::int32_t point) {
        const Vec3 at = worldPosition(mesh.points[point]) * soup.scale;
        std::int32_t& slot = slots.find(hashOfNumbers(at.x, at.y, at.z), [&](std::int32_t other) {
            const Vec3& v = nth(soup.places, other);
            return v.x == at.x && v.y == at.y && v.z == at.z;
        });
        if (slot == HashSlots::empty) {
            slot = sizeOf(soup.places);
            soup.places.push_back(at);
            soup.pointAt.push_back(point);
        }
        nth(soup.pointAt, slot) = std::min(nth(soup.pointAt, slot), point);
        return slot;
    }

    [[nodiscard]] const Vec3& at(std::size_t k) const { return nth(soup.places, list[k]); }

    /// The polygon is seen along the axis that its normal (Newell's) is nearest to.
    [[nodiscard]] int broadAxis() const {
        Vec3 normal;
        for (std::size_t k = 1; k + 1 < list.size(); ++k) {
            normal += cross(at(k) - at(0), at(k + 1) - at(0));
        }
        sign = 1;
        int broadest = 0;
        for (int axis = 1; axis < 3; ++axis) {
            if (std::abs(along(normal, axis)) > std::abs(along(normal, broadest))) broadest = axis;
        }
        if (along(normal, broadest) < 0) sign = -1;
        return broadest;
    }

    [[nodiscard]] bool turnsAt(std::size_t a, std::size_t b, std::size_t c, int axis) const {
        return turn(at(a), at(b), at(c), axis) == sign;
    }

    void cutUp() {
        const std::size_t n = list.size();
        if (n == 3) return addTriangle(0, 1, 2);
        const int axis = broadAxis();
        if (n > mostForBest ? cutNotched(axis) : cutBest(axis, false) || cutBest(axis, true))
            return;
        for (std::size_t k = 2; k < n; ++k) addTriangle(0, k - 1, k);
    }

    [[nodiscard]] double areaOf(std::size_t i, std::size_t k, std::size_t j) const {
        const Vec3 normal = cross(at(k) - at(i), at(j) - at(i));
        return std::sqrt(dot(normal, normal));
    }

    /// 0 for a sliver.
    [[nodiscard]] double shapeOf(std::size_t i, std::size_t k, std::size_t j) const {
        const Vec3 &a = at(i), &b = at(k), &c = at(j);
        return areaOf(i, k, j)
               / (squaredDistance(a, b) + squaredDistance(b, c) + squaredDistance(c, a));
    }

    /// The way to cut it whose worst triangle has the best shape, chain by chain: slivers along
    /// sides that are nearly straight would lie in any plane, and meet what the polygon itself does
    /// not. Where sides cross there is none but with triangles that run the wrong way, as small as
    /// can be: whether to look for that.
    bool cutBest(int axis, bool backwards) {
        const std::size_t n = list.size();
        best.assign(n * n, {infinite, 0});
        for (std::size_t span = 2; span < n; ++span) {
            for (std::size_t i = 0; i + span < n; ++i) chooseTip(i, i + span, axis, backwards);
            effort.goesOn(static_cast<std::int64_t>(span * (n - span)));
        }
        if (best[n - 1].shape == -infinite) return false;
        addBest(0, n - 1);
        return true;
    }

    struct Chain {
        double shape; ///< of the worst triangle between the chain and the line between its ends
        std::size_t tip;
    };

    void chooseTip(std::size_t i, std::size_t j, int axis, bool backwards) {
        const std::size_t n = list.size();
        Chain& chosen = best[i * n + j] = {-infinite, i + 1};
        for (std::size_t k = i + 1; k < j; ++k) {
            const double rest = std::min(best[i * n + k].shape, best[k * n + j].shape);
            if (!(rest > chosen.shape)) continue;
            const bool turns = turnsAt(i, k, j, axis);
            if (!turns && !backwards) continue;
            const double shape = std::min(rest, turns ? shapeOf(i, k, j) : -areaOf(i, k, j));
            if (shape > chosen.shape) chosen = {shape, k};
        }
    }

    void addBest(std::size_t i, std::size_t j) {
        if (j < i + 2) return;
        const std::size_t k = best[i * list.size() + j].tip;
        addTriangle(i, k, j);
        addBest(i, k);
        addBest(k, j);
    }

    bool cutNotched(int axis) {
        std::vector<Vec3> outline;
        for (std::size_t k = 0; k < list.size(); ++k) outline.push_back(at(k));
        if (sign < 0) std::reverse(outline.begin(), outline.end());
        const std::vector<Ids> pieces = fillOutline(outline, axis, effort);
        const auto numberOf = [&](std::int32_t k) {
            const auto number = static_cast<std::size_t>(k);
            return sign < 0 ? list.size() - 1 - number : number;
        };
        for (const auto& [a, b, c] : pieces) {
            sign < 0 ? addTriangle(numberOf(c), numberOf(b), numberOf(a))
                     : addTriangle(numberOf(a), numberOf(b), numberOf(c));
        }
        return !pieces.empty();
    }

    void addTriangle(std::size_t a, std::size_t b, std::size_t c) {
        const std::size_t n = list.size();
        const auto isInner = [&](std::size_t from, std::size_t to) { return (from + 1) % n != to; };
        Triangle t{{list[a], list[b], list[c]}, sizeOf(soup.polygons) - 1, -1, false, 0};
        t.inner =
            static_cast<std::uint8_t>(isInner(a, b) | isInner(b, c) << 1 | isInner(c, a) << 2);
        setAxis(t);
        soup.triangles.push_back(t);
    }

    void setAxis(Triangle& t) const {
        const Vec3 &a = soup.corner(t, 0), &b = soup.corner(t, 1), &c = soup.corner(t, 2);
        const Vec3 normal = cross(b - a, c - a);
        const Vec3 size{std::abs(normal.x), std::abs(normal.y), std::abs(normal.z)};
        int axis = size.x > size.y ? 0 : 1;
        if (size.z > along(size, axis)) axis = 2;
        for (int tries = 0; tries < 3 && t.axis < 0; ++tries, axis = (axis + 1) % 3) {
            const int way = turn(a, b, c, axis);
            if (way == 0) continue;
            t.axis = static_cast<std::int8_t>(axis);
            t.isTurned = way < 0;
        }
    }

    const Mesh& mesh;
    Soup& soup;
    Effort& effort;
    HashSlots slots;                ///< places
    std::vector<std::int32_t> list; ///< corners of the polygon, places
    std::vector<Chain> best;        ///< of each chain of its corners
    mutable int sign = 1;           ///< 1: it runs anticlockwise along the axis
};

double scaleFor(const Mesh& mesh) {
    double most = 0;
    for (const Face& face : selectedFaces(mesh)) {
        if (!isFinite(face)) continue;
        for (const FaceCorner& corner : corners(face)) {
            most = std::max(most, largestPart(worldPosition(*corner.p)));
        }
    }
    const int exponent = most > 0 ? std::ilogb(most) : 0;
    return std::ldexp(1.0, std::clamp(exponent, -mostExponent, mostExponent) - exponent);
}

} // namespace

Soup makeSoup(const Mesh& mesh, Effort& effort) {
    Soup soup;
    soup.scale = scaleFor(mesh);
    SoupMaker maker(mesh, soup, effort);
    LoopProgress progress(mesh.nf);
    for (const Face& face : selectedFaces(mesh)) {
        progress.step();
        maker.add(face);
        if (!effort.goesOn(face.n)) break;
    }
    return soup;
}

} // namespace polyfab::boolean
