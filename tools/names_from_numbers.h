// SPDX-License-Identifier: GPL-3.0-or-later
// Texture map areas and parts, which are only numbered and in no file, become groups or materials.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// Makes a new group "area N" for each texture map area with a live face and moves its faces there.
/// More groups than a mesh can have are refused by a message; the mesh stays as it is.
void makeAreasIntoGroups(Mesh& mesh);

/// The same for parts: groups "part N".
void makePartsIntoGroups(Mesh& mesh);

/// Materials "part N", each in the colour that the first face of the part had.
void makePartsIntoMaterials(Mesh& mesh);

} // namespace polyfab
