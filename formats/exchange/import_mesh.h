// SPDX-License-Identifier: GPL-3.0-or-later
// The commands that import and export the mesh formats of other programs. The work is done in a
// child process; whatever becomes of it, the open mesh is safe.
#pragma once

#include "formats/only_selected.h"

#include <cstdint>
#include <string>

namespace polyfab {

struct Mesh;

/// Asks for a file and whether its mesh is added or replaces the present one. After a failure,
/// which a message explains, the mesh is as it was; only where the editor itself finds no memory
/// for the new elements it is empty.
void importOtherMesh();

/// The same for a file that is known already.
void importNamedMesh(const std::string& path, bool append);

/// Asks for a file and writes the mesh, or the selected faces of it, in the format that the suffix
/// names. The file and those beside it that the format may need are replaced when all are complete.
/// The mesh counts as altered as before: other formats keep less of it.
void exportOtherMesh();

enum class WithLooks : std::uint8_t { saved, refused, failed };

/// Writes the mesh to an OBJ file as export does, with a library of its own, and copies of pictures
/// where they are needed. Sets the current file and `workbench.wholeMeshWritten`. Refused: there is
/// no face, or a library that is there is to stay, which a note tells. Failed: a note tells why.
/// The old file is then as it was.
[[nodiscard]] WithLooks saveWithLooks(const Mesh& mesh, const std::string& chosen, Wanted wanted);

} // namespace polyfab
