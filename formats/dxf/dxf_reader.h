// SPDX-License-Identifier: GPL-3.0-or-later
// Reads the 3DFACE entities of DXF files.
#pragma once

#include <string>

namespace polyfab {

struct Mesh;

/// Reads the file in place of the mesh, or with `append` adds it to the mesh. Each 3DFACE becomes a
/// face of up to four corners in the material that its layer names; corners at exactly the same
/// position share one point, also with points that are there already. Then collects garbage.
///
/// Returns the number of entity boundaries, which are the 3DFACE lines and the ENDSEC or EOF that
/// ends the reading: the first ENDSEC does, whichever section it closes. 0 after a message when the
/// file can't be opened or read to its end, or has no boundary, and when memory runs out; what was
/// read until then stays. Moves the arrays. Shows its progress in the title.
[[nodiscard]] int readDxfFile(Mesh& mesh, const std::string& path, bool append);

} // namespace polyfab
