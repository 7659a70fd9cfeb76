// SPDX-License-Identifier: GPL-3.0-or-later
// Edges of a surface shrink to points, those first whose loss changes its shape the least.
#pragma once

#include "tools/thin/thin_surface.h"

#include <cstdint>

namespace polyfab {

struct ThinGoal {
    std::int64_t faces; ///< to be left
    double farthest;    ///< that a point may go from the planes around it; 0: any
};

/// Why it ended.
enum class ThinEnd : std::uint8_t { reached, nothingLeft, tooFar, stopped, noMemory };

/// Shrinks edges until the goal is reached. `faces`: how many there are now, and then; a face that
/// was cut into triangles counts as one until one of them changes, from then on they count
/// themselves. `changed`: of each triangle, whether it is not what it was. May throw
/// std::bad_alloc.
[[nodiscard]] ThinEnd thinSurface(ThinSurface& surface, const ThinGoal& goal, std::int64_t& faces,
                                  Table<std::uint8_t>& changed);

} // namespace polyfab
