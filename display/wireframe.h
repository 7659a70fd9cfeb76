// SPDX-License-Identifier: GPL-3.0-or-later
// The picture of the mesh in both panes, wireframe or shaded.
#pragma once

#include "display/markers.h"
#include "mesh/mesh.h"
#include "platform/platform.h"

namespace polyfab {

/// The picture of the mesh in a window of this client size. Makes again what `stale` names (and the
/// layout when the size is another one), lowers the flags and draws; with nothing stale it only
/// returns the picture it has. What it shows besides is for displayOptions to say; whoever changes
/// that or the markers raises a flag too. The picture is valid until the next call. When memory
/// runs out it is empty and the flags stay raised; if that was for shaded panes, a note says so and
/// they are wireframes from then on. While the mouse drags, shaded panes that take long are drafts.
[[nodiscard]] const Bitmap& drawPanes(Mesh& mesh, Size client, const Markers& markers = {});

/// Whether the last picture is a draft, to be drawn anew when the mouse rests.
[[nodiscard]] bool pictureIsDraft();

/// The panes that are rendered, side by side, in full and without marks, grid and numbers. May
/// throw std::bad_alloc.
[[nodiscard]] Bitmap renderedPanes(Mesh& mesh);

} // namespace polyfab
