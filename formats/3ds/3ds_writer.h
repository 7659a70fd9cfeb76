// SPDX-License-Identifier: GPL-3.0-or-later
// Writes the mesh to a 3DS chunk file.
#pragma once

#include "formats/only_selected.h"
#include "workbench/notes.h"

#include <string>
#include <vector>

namespace polyfab {

class SaveFile;
struct Mesh;

/// Collects the garbage of the mesh and writes it to `path`: the materials, then an object for each
/// group with a selected face, or for each where all is wanted, its faces as fans of triangles.
/// Coordinates become 32-bit floats; normals and texture coordinates are not written. When a face
/// is not selected it asks whether only the selected ones are wanted.
///
/// 1 on success, `workbench.wholeMeshWritten` then tells whether no face was left out; faces that
/// were wanted, but are in a group without a selected one, are counted in a message. 0 after a
/// message when the mesh is faulty, the file cannot be created or written, or the mesh is more than
/// a file can hold: 65,535 points or triangles in a group, a coordinate beyond the range of a
/// float, 16 MiB in all. An old file is then as it was. Notes count what the file does not keep.
[[nodiscard]] int write3dsFile(Mesh& mesh, const std::string& path, Wanted wanted = Wanted::asked);

/// Appends the live faces, or the selected ones, as all programs read them: colours with red first,
/// also texture coordinates, large groups as several objects of one name, and files of any size.
/// `pictures` has per material the name of the file with its picture, or "". Returns "" or what the
/// file can't hold; `lost` becomes sentences on what is lost all the same.
[[nodiscard]] std::string append3ds(SaveFile& file, const Mesh& mesh, bool onlySelected,
                                    const std::vector<std::string>& pictures, Sentences& lost);

} // namespace polyfab
