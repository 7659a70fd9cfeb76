// SPDX-License-Identifier: GPL-3.0-or-later
// Dragging points: they follow the mouse while a button is down, change the mesh once when it goes
// up, and are back where they stood when the user presses Escape before.
#pragma once

#include "geometry/vec3.h"
#include "mesh/mesh.h"

#include <functional>
#include <vector>

namespace polyfab {

/// Starts a drag of these points, each named once. A drag that still runs ends first. `moved`, when
/// given, is called once when the drag ends with a point at another position than before.
void beginPointDrag(std::vector<std::int32_t> points, std::function<void()> moved = {});

/// Puts every dragged point where `place` maps the world position at which it stood when the drag
/// began. Without a drag nothing happens.
void placeDraggedPoints(const std::function<Vec3(const Vec3&)>& place);

[[nodiscard]] bool pointDragRuns();

/// Ends the drag. The mesh is changed when a point has another position than before.
void endPointDrag();

/// Ends the drag and puts every point back.
void cancelPointDrag();

/// Ends the drag without a look at the mesh, which may be another one by now.
void forgetPointDrag();

} // namespace polyfab
