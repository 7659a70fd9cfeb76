// SPDX-License-Identifier: GPL-3.0-or-later
// The order of the groups.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// Moves the group at index `from` to index `to`; those between shift by one place to close the
/// gap, and every face stays in its group. Both indices must be those of groups. The current group
/// keeps its index, so that it may be another group afterwards. Sets `changed`.
void moveGroup(Mesh& mesh, int from, int to);

} // namespace polyfab
