// SPDX-License-Identifier: GPL-3.0-or-later
// The wireframe picture of the mesh in both panes.
#pragma once

#include "display/markers.h"
#include "mesh/mesh.h"
#include "platform/platform.h"

namespace polyfab {

/// The picture of the mesh in a window of this client size. Makes again what `stale` names (and the
/// layout when the size is another one), lowers the flags and draws; with nothing stale it only
/// returns the picture it has. What it shows besides is for displayOptions to say; whoever changes
/// that or the markers raises a flag too. The picture is valid until the next call. When memory
/// runs out it is empty and the flags stay raised.
[[nodiscard]] const Bitmap& drawPanes(Mesh& mesh, Size client, const Markers& markers = {});

} // namespace polyfab
