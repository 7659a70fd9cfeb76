// SPDX-License-Identifier: GPL-3.0-or-later
// Menu commands that clean the mesh up and turn faces over.
#pragma once

namespace polyfab {

/// Collects the garbage of the mesh.
void collectGarbageNow();

/// Turns faces over so that all that are connected to the current face agree with it, and that one
/// runs anticlockwise on the screen. Nothing happens without a current face.
void orientFaces();

/// Turns every selected live face over.
void reverseSelectedFaces();

} // namespace polyfab
