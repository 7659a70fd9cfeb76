// SPDX-License-Identifier: GPL-3.0-or-later
// The outlines become faces of the mesh.
#pragma once

#include "mesh/mesh.h"
#include "tools/boolean/arrange.h"
#include "tools/boolean/effort.h"
#include "tools/boolean/outlines.h"
#include "tools/boolean/patches.h"
#include "tools/boolean/soup.h"

#include <cstdint>
#include <vector>

namespace polyfab::boolean {

struct Tally {
    std::int64_t cut = 0;     ///< faces that came to pieces or lost some
    std::int64_t added = 0;   ///< points
    std::int64_t removed = 0; ///< faces of which nothing is left
    std::int64_t turned = 0;  ///< faces kept the other way round
};

/// Puts the pieces in the place of the faces that were cut, further corners on the edges of their
/// neighbours, selected or not, and makes the points at each place one. Faces that stay whole stay
/// as they are. False when nothing was done, because the effort is
/// over or a face would get too many corners, or without room, when the mesh is what a failed
/// growth leaves. May throw std::exception while the mesh is as it was.
[[nodiscard]] bool install(Mesh& mesh, const Soup& soup, const Arrangement& arrangement,
                           const std::vector<Fate>& fates, const Outlines& outlines,
                           const CutEdges& cuts, const ExactPoints& points, Effort& effort,
                           Tally& tally);

} // namespace polyfab::boolean
