// SPDX-License-Identifier: GPL-3.0-or-later
// What most tools begin with.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// Collects garbage and tells the editor of the new numbers. False after a message box: the mesh is
/// faulty, or memory ran out.
[[nodiscard]] bool collectForTool(Mesh& mesh);

} // namespace polyfab
