// SPDX-License-Identifier: GPL-3.0-or-later
// Moving, scaling and rotating the selected faces by numbers.
#pragma once

#include <array>
#include <string>

namespace polyfab {

/// What was typed last, offered again the next time: three distances, three factors, three angles
/// in degrees, and about what.
using TransformTexts = std::array<std::string, 10>;

inline const TransformTexts noTransform = {"0", "0", "0", "1", "1", "1", "0", "0", "0", "b"};

/// Asks for all of them in one dialog, and scales the selected faces along the world's axes, turns
/// them about x, then y, then z, and moves them. What stays where it is: the middle of the box, the
/// world's origin or settable point 1. A factor of 0, and what is no finite number, is refused.
void transformBy();

} // namespace polyfab
