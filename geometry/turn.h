// SPDX-License-Identifier: GPL-3.0-or-later
// Sines and cosines of parts of a turn that are symmetric to the bit: what lies opposite, across an
// axis or a quarter of a turn on has the very same figures, and those of quarter turns are whole.
#pragma once

#include <vector>

namespace polyfab {

struct Turn {
    double cosine = 1, sine = 0;
};

/// Of the angle that is `part` of `whole` in a turn. Both are finite, and `whole` is above 0.
[[nodiscard]] Turn turnBy(double part, double whole);

/// The angles that cut a turn into n, from 0 on.
[[nodiscard]] std::vector<Turn> turnsOf(int n);

} // namespace polyfab
