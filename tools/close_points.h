// SPDX-License-Identifier: GPL-3.0-or-later
// Which points of a set that only shrinks are close to a given one: a hash grid in which a point
// found once is never looked at again.
#pragma once

#include "geometry/vec3.h"
#include "mesh/faces.h"
#include "mesh/table.h"

#include <cstdint>

namespace polyfab {

class ClosePoints {
  public:
    /// The marked points, `count` of them, at their positions now. Two are close when their
    /// squaredDistance is at most `square`, which may be infinite (whatever has a distance is close
    /// then) or not a number (nothing is).
    ClosePoints(const Mesh& mesh, std::int32_t count, double square);
    /// Whether there was memory; test it before the first use.
    explicit operator bool() const { return starts && entries; }

    /// Takes out every point of a lower number that is close to this one, calling found(number) for
    /// each. To be called with falling numbers: higher ones are forgotten.
    ///
    /// When those that were found are not given themselves, the points given keep a distance from
    /// each other. Only so many of them fit around a small cell, so however the points lie, each is
    /// looked at a limited number of times.
    template <typename Found>
    void takeOut(std::int32_t number, Found found) {
        const Vec3 position = worldPosition(mesh.points[number]);
        if (!hasDistance(position)) return;
        const Range xs = around(position.x), ys = around(position.y), zs = around(position.z);
        for (double x = xs.first; x <= xs.last; x = after(x)) {
            for (double y = ys.first; y <= ys.last; y = after(y)) {
                for (double z = zs.first; z <= zs.last; z = after(z)) {
                    takeFrom(listOf({x, y, z}), number, position, found);
                }
            }
        }
    }

  private:
    struct Entry {
        double x, y, z;
        std::int32_t number; ///< noMore: the list ends before this
    };
    static constexpr std::int32_t noMore = -1;

    /// Cells along one axis. They are whole numbers, but may be larger than an integer can be.
    struct Range {
        double first, last;
    };

    [[nodiscard]] bool hasDistance(const Vec3& position) const;
    [[nodiscard]] double cellOf(double coordinate) const;
    [[nodiscard]] Vec3 cellOf(const Vec3& position) const;
    [[nodiscard]] Range around(double coordinate) const;
    [[nodiscard]] static double after(double cell);
    [[nodiscard]] std::int64_t listOf(const Vec3& cell) const;
    template <typename Use>
    void eachMarked(Use use) const;
    [[nodiscard]] double extent() const;
    void countLists(double cell);
    [[nodiscard]] bool crowded() const;

    template <typename Found>
    void takeFrom(std::int64_t list, std::int32_t number, const Vec3& position, Found found) {
        std::int32_t kept = starts[list];
        const std::int32_t end = starts[list + 1];
        for (std::int32_t i = kept; i < end && entries[i].number != noMore; ++i) {
            const Entry& entry = entries[i];
            if (entry.number >= number) break; // it and all behind it had their turns
            if (squaredDistance(position, entry) <= square) {
                found(entry.number);
            } else {
                entries[kept++] = entry;
            }
        }
        if (kept < end) entries[kept].number = noMore;
    }

    const Mesh& mesh;
    std::int32_t count;
    double square;
    double reach; ///< what is close differs by no more in any coordinate
    double cellsPerUnit = 0;
    int bits;                   ///< of the numbers of lists
    Table<std::int32_t> starts; ///< of each list: where it starts in `entries`
    Table<Entry> entries;       ///< list by list, numbers rising; some cells may share a list
};

} // namespace polyfab
