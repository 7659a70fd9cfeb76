// SPDX-License-Identifier: GPL-3.0-or-later
// Points that lie very close together are welded into one, or moved to the same place.
//
// The first two tools collect garbage and mark bad edges first, ask for the largest distance, and
// consider the points of the selected faces, or of these faces' loose edges only. The points take
// turns, highest number first: each that is still there takes every lower one that is close to it
// (so that of three in a row the middle one may go and leave the other two apart). What a point
// takes goes no further. Every 256th of those that take shows its number in the title; an abort
// request before any point's turn ends the tool with what was taken until then.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// The corners on a point that was taken, those of unselected faces included, go over to the point
/// that took it, which stays where it is.
void weldclose(Mesh& mesh, bool allEdges);

/// A point that was taken moves to the one that took it, on the screen too; both stay.
void bringclose(Mesh& mesh, bool allEdges);

} // namespace polyfab
