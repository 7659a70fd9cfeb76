// SPDX-License-Identifier: GPL-3.0-or-later
// The view: one transform that places the mesh in both panes. Screen x runs right, screen y down
// and screen z away from the viewer. The left pane shows (x, y), the right one (z, y): the object
// seen from its right side. All screen figures are device pixels; whole numbers are pixel middles.
#pragma once

#include "geometry/projection.h"
#include "mesh/mesh.h"
#include "platform/platform.h"

namespace polyfab {

/// screen = scale * diag(1, -1, -1) * rotation * world + offset
struct View {
    double rotation[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    double scale = 0.5; ///< pixels per world unit
    Vec3 offset;        ///< x and z count from the left edges of their own panes
    Vec3 sheet;         ///< a position that moves and grows with the view and does not turn
    Size client;        ///< window area that the two panes share
};

inline View view;

/// Columns of the window: the left pane, a line one pixel wide, the right pane.
struct Panes {
    int leftWidth;
    int rightStart;
    int rightWidth;
    int height;
};

[[nodiscard]] Panes panesOf(Size client);

/// Upright, the origin in the middles of the panes, two world units across the smaller pane side.
/// Keeps the client size; everything becomes stale.
void resetView();

/// Fills `projection` from the view and raises stale.points. To be called after any change of the
/// view; the operations below do so themselves.
void applyView();

/// World positions along the screen's axes, at one unit per unit and without an offset.
[[nodiscard]] AffineMap screenAxes();

/// The screen position in the middles of both panes.
[[nodiscard]] Vec3 middleOfPanes();

/// That view turned as the other one is, about what it shows in the middles of its panes.
[[nodiscard]] View turnedLike(View turned, const View& other);

// Moving and magnifying the view carries the box along, so that it stays around what it was around.
// Turning the view leaves the box alone.

/// Moves the picture by this many pixels.
void panView(const Vec3& by);

/// Magnifies the picture; the screen position `about` stays where it is. What would leave the range
/// of usable scales (1e-305 to 1e305 pixels per unit) is not done.
void zoomView(double factor, const Vec3& about);

/// Turns the view about an axis (0 x, 1 y, 2 z) through the middle of the panes, in the sense of
/// rotation(): about the screen's axis, which comes after all existing rotations, or about the
/// object's own axis, which comes before them. The rotation is made exact each time, so it never
/// drifts.
void turnView(int axis, double radians, bool screenAxis);

/// Shows the world's axes along the screen's; what is in the middle of the panes stays there.
void resetAttitude();

/// Moves the world's origin into the middles of the panes.
void centreOrigin();

/// Scales and centres the corners of all live faces (all points if there is none) so that they fill
/// both panes but for a margin. The rotation stays. Positions beyond 1e300 do not count; a mesh
/// without extent is shown at a scale to build on.
void fitView(const Mesh& mesh);

/// The same for the corners of the selected faces. False, and nothing done, when there is none.
bool fitViewToSelected(const Mesh& mesh);

/// The panes of another client size show what they showed, around the same middle, scaled with the
/// smaller pane side. Empty panes count as one pixel wide, so that nothing is lost on the way back.
void resizeView(Size client);

} // namespace polyfab
