// SPDX-License-Identifier: GPL-3.0-or-later
// Commands on the named tables: new group or material for the selected faces, merging of equal
// names, lists of names as text files. They ask and report through the platform.
#pragma once

#include "mesh/mesh.h"

#include <string>

namespace polyfab {

/// Asks, then makes a new "NewGroup" and puts every live selected face into it.
void putSelectedIntoNewGroup(Mesh& mesh);
/// Asks, then makes a new black "NewMaterial" and gives it to every live selected face.
void putSelectedIntoNewMaterial(Mesh& mesh);

/// Moves the faces of every group whose name an earlier group bears into that group. The emptied
/// groups stay in the table.
void amalgamateGroups(Mesh& mesh);
/// The same for materials; colours are not compared.
void amalgamateMaterials(Mesh& mesh);

/// Asks for a text file and writes every name to it, one a line, in index order. `fileName`, the
/// mesh file's name, is the dialog's suggestion and gets ".txt" in place of its last four
/// characters (unless it is no longer than three).
void writeGroupNames(const Mesh& mesh, std::string& fileName);
void writeMaterialNames(const Mesh& mesh, std::string& fileName);

} // namespace polyfab
