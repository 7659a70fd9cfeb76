// SPDX-License-Identifier: GPL-3.0-or-later
// Putting faces in order by group or material, in time that does not depend on how many there are.
#pragma once

#include <cstddef>
#include <numeric>
#include <vector>

namespace polyfab {

using FaceList = std::vector<int>; ///< indices of faces in the mesh

/// Orders the faces by a key in [0, keys); faces of the same key keep their order.
template <typename Key>
FaceList sortedBy(const FaceList& faces, int keys, Key key) {
    std::vector<int> start(static_cast<std::size_t>(keys) + 1);
    for (const int face : faces) ++start[static_cast<std::size_t>(key(face)) + 1];
    std::partial_sum(start.begin(), start.end(), start.begin());
    FaceList sorted(faces.size());
    for (const int face : faces) {
        sorted[static_cast<std::size_t>(start[static_cast<std::size_t>(key(face))]++)] = face;
    }
    return sorted;
}

} // namespace polyfab
