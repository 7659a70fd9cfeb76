// SPDX-License-Identifier: GPL-3.0-or-later
// Cutting a corner list that passes points more than once into loops that do not.
#pragma once

#include <cstddef>
#include <vector>

namespace polyfab {

using Corners = std::vector<std::size_t>; ///< corners, by number

struct FaceLoops {
    std::vector<Corners> loops;
    Corners rest;
    int spikes = 0; ///< taken out of the rest on the way
};

/// Cuts out the loop between the first corner whose point came before and that earlier corner (the
/// loop has the earlier of the two, the rest starts with the later one), removes the spikes that
/// this leaves at the ends of the rest, and goes on until no point of the rest comes twice.
/// `point[corner]` is below point.size() and tells the points apart; the list has neither spikes
/// nor repeated neighbours, across its ends included. Takes the time of n^1.5.
[[nodiscard]] FaceLoops cutLoops(const Corners& corners, const std::vector<std::size_t>& point);

} // namespace polyfab
