// SPDX-License-Identifier: GPL-3.0-or-later
// Making a face of vertexes that are clicked one after the other, in vertex handling.
#pragma once

#include <cstdint>

namespace polyfab {

/// The point becomes the next corner of the new face or, if it is one, none any more.
void collectVertex(std::int32_t point);

/// Makes the face of three corners or more, in the current group and material; it becomes the
/// current face. A note tells of that, or of what is missing.
void makeNewFace();

/// There is no corner any more. To be called by whatever may number points anew, and when the mode
/// is left.
void dropNewFace();

} // namespace polyfab
