// SPDX-License-Identifier: GPL-3.0-or-later
// How far it is between the two settable points.
#pragma once

namespace polyfab {

/// Tells the distance along each axis and in a straight line, in mesh units and in feet and inches,
/// a mesh unit taken as 100 inches.
void tellDistance();

} // namespace polyfab
