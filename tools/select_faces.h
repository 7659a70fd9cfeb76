// SPDX-License-Identifier: GPL-3.0-or-later
// Commands that select faces by what is selected already, or by the current face. What is
// unselected and not mentioned stays so.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// What was selected is not, and the other way about.
void invertSelection(Mesh& mesh);

/// Selects the faces that share a point with a selected one.
void growSelection(Mesh& mesh);

/// Unselects the selected faces that share a point with an unselected one.
void shrinkSelection(Mesh& mesh);

/// Selects the faces that can be reached from selected ones over shared points.
void selectConnected(Mesh& mesh);

// Like the current face, and nothing else; with Shift down they are added. Without a current face
// nothing is changed.

/// Selects the faces of its material (group).
void selectSameMaterial(Mesh& mesh);
void selectSameGroup(Mesh& mesh);

/// Asks for an angle, and selects the faces that lie within it of the current face's plane: their
/// normals differ by no more, and the way from the middle of the current face to theirs rises from
/// the plane by no more.
void selectSamePlane(Mesh& mesh);

} // namespace polyfab
