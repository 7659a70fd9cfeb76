// SPDX-License-Identifier: GPL-3.0-or-later
// Which of the parts of closed surfaces bound what is wanted of the bodies they enclose.
#pragma once

#include "mesh/mesh.h"
#include "tools/boolean/arrange.h"
#include "tools/boolean/boxes.h"
#include "tools/boolean/exact.h"
#include "tools/boolean/soup.h"

#include <cstdint>
#include <vector>

namespace polyfab::boolean {

enum class Want : char {
    all = 'a',
    unite = 'u',
    common = 'i',
    difference = 'd', ///< the body of one polygon without the others
};

enum class Fate : std::int8_t { removed, kept, keptTurned };

enum class Outcome { chosen, notClosed };

/// What becomes of each cell; the arrangement must have those of all polygons. A body is a
/// connected piece that encloses a volume, with the pieces all inside it that run the other way
/// round and so make hollows; one that is inside out anywhere else is a body too. Of the cells of a
/// sheet at most one is kept. Nothing is chosen when some piece is not closed or not oriented. May
/// throw std::exception.
[[nodiscard]] Outcome chooseCells(const Mesh& mesh, const Soup& soup, const BoxTree& tree,
                                  const ExactPoints& points, const Arrangement& arrangement,
                                  Want want, std::int32_t polygon, std::vector<Fate>& fates,
                                  Effort& effort);

} // namespace polyfab::boolean
