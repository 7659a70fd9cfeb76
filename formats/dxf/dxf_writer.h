// SPDX-License-Identifier: GPL-3.0-or-later
// Writes the mesh as 3DFACE entities of a DXF file.
#pragma once

#include "formats/only_selected.h"
#include "workbench/notes.h"

#include <string>

namespace polyfab {

class SaveFile;
struct Mesh;

/// Writes the live faces to `path` in the order of the array, each as a fan of quadrilaterals
/// and triangles with three decimals. When a face is not selected (a deleted one counts) it asks
/// whether only the selected ones are wanted. Left out are faces of fewer than three corners and
/// those with a corner that has no point.
///
/// Notes count what the file does not keep. 1 on success, `workbench.wholeMeshWritten` then tells
/// whether all faces were written. 0 after a message when a coordinate is not finite or too large
/// for a line, and without one when the file cannot be created or written; an old file is then as
/// it was.
[[nodiscard]] int writeDxfFile(const Mesh& mesh, const std::string& path,
                               Wanted wanted = Wanted::asked);

/// Appends the live faces, or the selected ones, as import reads them best: each entity has the
/// name of its face's material as its layer, and the material's colour, and coordinates have all
/// digits. `lost` becomes sentences on what is lost all the same.
void appendDxf(SaveFile& file, const Mesh& mesh, bool onlySelected, Sentences& lost);

} // namespace polyfab
