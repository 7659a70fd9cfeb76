// SPDX-License-Identifier: GPL-3.0-or-later
// No point of a surface that is thinned gets farther from it than allowed.
#pragma once

#include "mesh/table.h"
#include "tools/thin/thin_surface.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace polyfab {

/// Knows of every point that there was at first a triangle that is near enough.
class ThinDistance {
  public:
    /// With `most` 0 any distance is allowed, and nothing is kept.
    ThinDistance(ThinSurface& surface, double most);
    [[nodiscard]] explicit operator bool() const { return firstOf && nextOf && original; }

    /// Whether the points of the triangles around this edge are near enough to what is left of
    /// those when both ends are at `to`. Remembers what it found.
    bool allows(std::int32_t gone, std::int32_t stays, const Vec3& to);
    /// Carries out what was allowed last.
    void accept();

  private:
    struct Shape {
        std::int32_t triangle;
        Vec3 a, b, c;
    };
    bool place(std::int32_t point);

    ThinSurface& surface;
    double mostSquared;
    Table<std::int32_t> firstOf;         ///< of each triangle: the first of its points
    Table<std::int32_t> nextOf;          ///< of each point
    Table<Vec3> original;                ///< of each point: where it was
    std::vector<std::int32_t> triangles; ///< around the edge
    std::vector<Shape> left;             ///< those that stay, as they would be
    std::vector<std::pair<std::int32_t, std::int32_t>> placed; ///< points, and their new triangles
};

} // namespace polyfab
