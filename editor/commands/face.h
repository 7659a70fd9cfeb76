// SPDX-License-Identifier: GPL-3.0-or-later
// Menu commands that clean the mesh up, turn faces over, strip them of normals and texture, and
// forget the current face and edge.
#pragma once

namespace polyfab {

/// Collects the garbage of the mesh. There is no current edge afterwards.
void collectGarbageNow();

/// Turns faces over so that all that are connected to the current face agree with it, and that one
/// runs anticlockwise on the screen. Nothing happens without a current face.
void orientFaces();

/// Turns every selected live face over. A current edge of one of them is none any more.
void reverseSelectedFaces();

/// Take the normals (texture coordinates) from all corners of the selected live faces; those
/// themselves stay in the mesh until the garbage is collected.
void removeNormals();
void removeTexCoords();

/// No face (edge) is the current one.
void setNoCurrentFace();
void setNoCurrentEdge();

} // namespace polyfab
