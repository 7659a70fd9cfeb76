// SPDX-License-Identifier: GPL-3.0-or-later
// One of the two panes of a picture, and where mesh and world lie in it.
#pragma once

#include "display/view.h"
#include "picture/raster.h"
#include "picture/smooth.h"

namespace polyfab {

struct Pane {
    Bitmap& picture;
    bool left;
    int start; ///< its first column in the picture
    Canvas canvas;
    bool smooth;           ///< lines have smooth edges
    double Point::*across; ///< which screen position runs across it

    Place at(const Point& p) const { return {p.*across, p.sy}; }
    Place at(const Vec3& world) const {
        const Vec3 screen = projection.toScreen(world);
        return {left ? screen.x : screen.z, screen.y};
    }
    /// Whether the place, or one within `margin` pixels, is in the pane. NaN never is.
    bool shows(const Place& place, double margin = 0) const {
        return place.x > -1 - margin && place.x < canvas.width + margin && place.y > -1 - margin
               && place.y < canvas.height + margin;
    }
    void line(const Place& from, const Place& to, const Stroke& stroke) const {
        if (smooth) return drawSmoothLine(canvas, from, to, stroke);
        drawLine(canvas, from.x, from.y, to.x, to.y, stroke);
    }
};

/// A pane of a picture that has the size of the view.
[[nodiscard]] inline Pane makePane(Bitmap& picture, bool left) {
    const Panes panes = panesOf(view.client);
    const int start = left ? 0 : panes.rightStart;
    const Canvas canvas{picture.pixels.data() + start, left ? panes.leftWidth : panes.rightWidth,
                        panes.height, picture.width};
    return {picture, left, start, canvas, false, left ? &Point::sx : &Point::sz};
}

} // namespace polyfab
