// SPDX-License-Identifier: GPL-3.0-or-later
// What can be counted and measured of the whole surface.
#pragma once

#include "mesh/mesh.h"

#include <cstdint>
#include <optional>

namespace polyfab {

struct MeshFacts {
    std::int64_t points = 0, faces = 0; ///< live ones
    std::int64_t looseEdges = 0;        ///< of one face
    std::int64_t badEdges = 0;          ///< that two faces run the same way
    std::int64_t overusedEdges = 0;     ///< of three faces or more
    std::int64_t holes = 0;             ///< closed ways along loose edges
    std::int64_t parts = 0;             ///< surfaces that hang together by edges
    std::optional<std::int64_t> genus;  ///< of all parts, if any, when they are closed and agree
    double area = 0, volume = 0;        ///< of the faces that are finite
    std::int64_t notFinite = 0;         ///< faces
};

/// False without memory, which has been said. The mesh stays as it is.
[[nodiscard]] bool findFacts(const Mesh& mesh, MeshFacts& facts);

/// Shows them in a box.
void tellFacts(Mesh& mesh);

} // namespace polyfab
