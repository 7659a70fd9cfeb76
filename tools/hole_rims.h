// SPDX-License-Identifier: GPL-3.0-or-later
// The rims of holes: closed ways along loose edges, which are sides of one live face alone.
#pragma once

#include "mesh/mesh.h"

#include <cstdint>
#include <span>
#include <vector>

namespace polyfab {

struct RimSide {
    std::int32_t face;
    std::int32_t place; ///< of the corner that it starts at
};

/// Ways along loose sides, each in the direction of its faces.
struct Rims {
    std::vector<RimSide> sides;
    std::vector<std::int32_t> ends; ///< of each way, where its sides end
    std::vector<bool> closed;       ///< whether it comes back to where it starts

    [[nodiscard]] std::size_t count() const { return ends.size(); }
    [[nodiscard]] std::span<const RimSide> rim(std::size_t number) const {
        const std::int32_t begin = number == 0 ? 0 : ends[number - 1];
        return std::span(sides).subspan(static_cast<std::size_t>(begin),
                                        static_cast<std::size_t>(ends[number] - begin));
    }
};

/// Finds the rims of the mesh; every loose side is on one of them. None passes a point twice: where
/// holes touch at a point the way goes on along the same hole, as the face before that point sees
/// it. Where no side leads on, as on a surface with one side, a way ends unclosed. The mesh stays
/// as it is. False without memory, which has been said. May throw std::bad_alloc.
[[nodiscard]] bool findRims(const Mesh& mesh, Rims& rims);

} // namespace polyfab
