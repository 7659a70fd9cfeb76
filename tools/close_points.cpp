// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/close_points.h"

#include "mesh/hash_slots.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>

namespace polyfab {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

/// In units of the reach. Wider cells are less often astride a border, and hold more points that
/// are not close.
constexpr double smallCell = 4;

/// Where the points lie far apart for their reach, as most do, cells as large as this many of them
/// need on a surface save most of the looking into neighbours.
constexpr double wantedPerCell = 32;

/// So many points a point may find in its own list before cells count as crowded.
constexpr std::int64_t mostPerPoint = 256;

/// For one or two points a list.
int bitsFor(std::int32_t count) {
    return static_cast<int>(std::bit_width(static_cast<std::uint32_t>(count / 4))) + 1;
}

} // namespace

// A difference whose computed square is at most `square` exceeds the root by rounding, and where
// squares vanish, below 2^-537, by that much.
ClosePoints::ClosePoints(const Mesh& owner, std::int32_t marked, double most)
    : mesh(owner), count(marked), square(most), reach(std::sqrt(most) * (1 + 1e-15) + 0x1p-537),
      bits(bitsFor(marked)), starts((std::int64_t{1} << bits) + 1), entries(marked) {
    if (!*this) return;
    const double least = smallCell * reach;
    const double wanted = extent() / std::sqrt(count / wantedPerCell);
    countLists(std::max(least, wanted));
    if (wanted > least && crowded()) countLists(least);
    // A counting sort; it fills each list from its end, so that the numbers rise.
    std::int32_t* const first = &starts[0];
    std::partial_sum(first, first + (std::int64_t{1} << bits) + 1, first);
    eachMarked([&](std::int64_t list, const Vec3& position, std::int32_t number) {
        entries[--starts[list]] = {position.x, position.y, position.z, number};
    });
}

/// Of the points in any of the axes.
double ClosePoints::extent() const {
    Vec3 low{infinity, infinity, infinity}, high{-infinity, -infinity, -infinity};
    for (const Point* p = mesh.points; p != mesh.points + mesh.np; ++p) {
        if (!p->mark || !hasDistance(worldPosition(*p))) continue;
        low = {std::min(low.x, p->x), std::min(low.y, p->y), std::min(low.z, p->z)};
        high = {std::max(high.x, p->x), std::max(high.y, p->y), std::max(high.z, p->z)};
    }
    return std::max({high.x - low.x, high.y - low.y, high.z - low.z});
}

/// Chooses the cell and puts the number of points of each list into `starts`.
void ClosePoints::countLists(double cell) {
    cellsPerUnit = 1 / cell;
    std::fill_n(&starts[0], (std::int64_t{1} << bits) + 1, 0);
    eachMarked([&](std::int64_t list, const Vec3&, std::int32_t) { ++starts[list]; });
}

bool ClosePoints::crowded() const {
    std::int64_t squares = 0;
    for (std::int64_t list = 0; list < std::int64_t{1} << bits; ++list) {
        squares += std::int64_t{starts[list]} * starts[list];
    }
    return squares > mostPerPoint * count;
}

/// Calls use(list, position, number) for the points that something can be close to, highest first.
template <typename Use>
void ClosePoints::eachMarked(Use use) const {
    for (std::int32_t i = mesh.np - 1; i >= 0; --i) {
        const Point& point = mesh.points[i];
        const Vec3 position = worldPosition(point);
        if (point.mark && hasDistance(position)) use(listOf(cellOf(position)), position, i);
    }
}

bool ClosePoints::hasDistance(const Vec3& position) const {
    const auto fits = [&](double v) {
        return square == infinity ? !std::isnan(v) : std::isfinite(v);
    };
    return fits(position.x) && fits(position.y) && fits(position.z);
}

/// Never falls as the coordinate rises, so that everything between two coordinates is in the cells
/// between theirs. When everything is close, one cell holds all that is finite. Only so far out
/// that cells can't be counted is each number a cell by itself, wherever its name falls: the reach
/// is less than its last digit.
double ClosePoints::cellOf(double coordinate) const {
    if (square == infinity) return std::isinf(coordinate) ? std::copysign(1, coordinate) : 0;
    constexpr double most = 1e300;
    const double cell = std::floor(coordinate * cellsPerUnit);
    return std::abs(cell) <= most ? cell : coordinate;
}

Vec3 ClosePoints::cellOf(const Vec3& position) const {
    return {cellOf(position.x), cellOf(position.y), cellOf(position.z)};
}

ClosePoints::Range ClosePoints::around(double coordinate) const {
    if (square != infinity) return {cellOf(coordinate - reach), cellOf(coordinate + reach)};
    return {coordinate == -infinity ? 0.0 : -1.0, coordinate == infinity ? 0.0 : 1.0};
}

double ClosePoints::after(double cell) {
    return std::max(cell + 1, std::nextafter(cell, infinity));
}

std::int64_t ClosePoints::listOf(const Vec3& cell) const {
    return static_cast<std::int64_t>(hashOfNumbers(cell.x, cell.y, cell.z) >> (64 - bits));
}

} // namespace polyfab
