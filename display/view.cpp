// SPDX-License-Identifier: GPL-3.0-or-later
// The view transform, its inverse, what moves and turns it, and the fitting of the mesh into both
// panes.
#include "display/view.h"

#include "display/box.h"
#include "geometry/affine.h"
#include "mesh/extent.h"
#include "mesh/faces.h"
#include "mesh/stale.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace polyfab {
namespace {

constexpr double fill = 0.88;            ///< share of a pane side that a fitted mesh takes
constexpr double smallestScale = 1e-305; ///< the largest is its inverse
constexpr double direction[3] = {1, -1, -1};

using Triple = std::array<double, 3>;

/// Extent of the panes along screen x, y and z, never less than a pixel.
Triple sides(Size client) {
    const Panes panes = panesOf(client);
    return {std::max(1.0, double(panes.leftWidth)), std::max(1.0, double(panes.height)),
            std::max(1.0, double(panes.rightWidth))};
}

double smallest(const Triple& values) { return *std::min_element(values.begin(), values.end()); }

Vec3 middleOf(Size client) {
    const Triple side = sides(client);
    return {(side[0] - 1) / 2, (side[1] - 1) / 2, (side[2] - 1) / 2};
}

AffineMap axesOf(const View& of) {
    AffineMap map;
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) map.row[i][k] = direction[i] * of.rotation[i][k];
    }
    return map;
}

/// The rotation's rows made unit vectors at right angles again, the first one kept in direction.
void straighten(double (&rotation)[3][3]) {
    double(&r)[3][3] = rotation;
    const auto normalise = [](double* row) {
        const double length = std::hypot(row[0], row[1], row[2]);
        for (int k = 0; k < 3; ++k) row[k] /= length;
    };
    normalise(r[0]);
    const double shared = r[0][0] * r[1][0] + r[0][1] * r[1][1] + r[0][2] * r[1][2];
    for (int k = 0; k < 3; ++k) r[1][k] -= shared * r[0][k];
    normalise(r[1]);
    for (int k = 0; k < 3; ++k) {
        const int next = (k + 1) % 3;
        const int last = (k + 2) % 3;
        r[2][k] = r[0][next] * r[1][last] - r[0][last] * r[1][next];
    }
}

/// Takes another scale and offset, and the box with them.
void placeView(double scale, const Vec3& offset) {
    const View before = view;
    view.scale = scale;
    view.offset = offset;
    view.sheet = offset + (before.sheet - before.offset) * (scale / before.scale);
    box = carried(box, before, view);
    applyView();
}

/// Takes another rotation. The world position in the middle of the panes stays there.
void takeRotation(const AffineMap& turned) {
    const Vec3 middles = middleOfPanes();
    const Vec3 centre = projection.toWorld(middles);
    for (int i = 0; i < 3; ++i) std::copy_n(turned.row[i], 3, view.rotation[i]);
    straighten(view.rotation);
    const Vec3 from = screenAxes()(centre);
    view.offset = {middles.x - view.scale * from.x, middles.y - view.scale * from.y,
                   middles.z - view.scale * from.z};
    applyView();
}

/// Pixels per unit at which the box fills the tightest of the three sides.
double fittingScale(const Extent& extent, const Triple& side) {
    double size = 0;
    double reach = 0;
    for (int i = 0; i < 3; ++i) {
        const double low = along(extent.low, i);
        const double high = along(extent.high, i);
        size = std::max(size, high - low);
        reach = std::max({reach, std::abs(low), std::abs(high)});
    }
    // What is as good as one point has no size of its own; further magnified, rounding would throw
    // it off the panes.
    if (size <= 1e-9 * reach || size == 0) return smallest(side) * fill / std::max(1.0, reach);
    double scale = farthest;
    for (int i = 0; i < 3; ++i) {
        const double length = along(extent.high, i) - along(extent.low, i);
        if (length > 0) scale = std::min(scale, side[static_cast<std::size_t>(i)] * fill / length);
    }
    return scale;
}

void fitExtent(const Extent& extent) {
    const double scale = fittingScale(extent, sides(view.client));
    const Vec3 middle = extent.middle();
    const Vec3 centre = middleOfPanes();
    placeView(scale, {centre.x - scale * middle.x, centre.y - scale * middle.y,
                      centre.z - scale * middle.z});
}

} // namespace

Panes panesOf(Size client) {
    const int left = std::max(client.width, 0) / 2;
    return {left, left + 1, std::max(client.width - left - 1, 0), std::max(client.height, 0)};
}

void resetView() {
    const Size client = view.client;
    view = View();
    view.client = client;
    view.scale = smallest(sides(client)) / 2;
    view.offset = middleOfPanes();
    stale = Stale();
    applyView();
}

AffineMap screenAxes() { return axesOf(view); }

Vec3 middleOfPanes() { return middleOf(view.client); }

void applyView() {
    AffineMap& forth = projection.toScreen;
    AffineMap& back = projection.toWorld;
    forth = screenAxes();
    back = inverseOf(forth); // a rotation that has drifted is inverted as it is
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) {
            forth.row[i][k] *= view.scale;
            back.row[i][k] /= view.scale;
        }
        forth.row[i][3] = along(view.offset, i);
        back.row[i][3] = 0;
    }
    const Vec3 origin = back(view.offset);
    for (int i = 0; i < 3; ++i) back.row[i][3] = -along(origin, i);
    stale.points = true;
}

View turnedLike(View turned, const View& other) {
    const Vec3 middle = middleOf(turned.client);
    const Vec3 from = inverseOf(axesOf(turned))(middle - turned.offset);
    std::copy_n(&other.rotation[0][0], 9, &turned.rotation[0][0]);
    turned.offset = middle - axesOf(turned)(from);
    return turned;
}

void panView(const Vec3& by) {
    placeView(view.scale, {view.offset.x + by.x, view.offset.y + by.y, view.offset.z + by.z});
}

void zoomView(double factor, const Vec3& about) {
    const double scale = view.scale * factor;
    if (!(scale >= smallestScale && scale <= 1 / smallestScale)) return;
    Vec3 offset;
    for (int i = 0; i < 3; ++i) {
        along(offset, i) = along(about, i) + (along(view.offset, i) - along(about, i)) * factor;
        if (!std::isfinite(along(offset, i))) return;
    }
    placeView(scale, offset);
}

void turnView(int axis, double radians, bool screenAxis) {
    AffineMap existing;
    for (int i = 0; i < 3; ++i) std::copy_n(view.rotation[i], 3, existing.row[i]);
    // The screen's y and z run against the world's.
    const AffineMap added = rotation(axis, direction[axis] * radians);
    takeRotation(screenAxis ? product(added, existing) : product(existing, added));
}

void resetAttitude() { takeRotation(AffineMap()); }

void centreOrigin() { placeView(view.scale, middleOfPanes()); }

void fitView(const Mesh& mesh) {
    Extent extent = extentOfFaces(mesh, screenAxes(), false);
    if (std::none_of(mesh.faces, mesh.faces + mesh.nf, isLive)) {
        extent = extentOfPoints(mesh, screenAxes());
    }
    if (extent.empty()) extent = {{0, 0, 0}, {0, 0, 0}};
    fitExtent(extent);
}

bool fitViewToSelected(const Mesh& mesh) {
    const Extent extent = extentOfFaces(mesh, screenAxes(), true);
    if (extent.empty()) return false;
    fitExtent(extent);
    return true;
}

void resizeView(Size client) {
    const double factor = smallest(sides(client)) / smallest(sides(view.client));
    const Vec3 before = middleOfPanes();
    view.client = client;
    const Vec3 after = middleOfPanes();
    Vec3 offset;
    for (int i = 0; i < 3; ++i) {
        along(offset, i) = along(after, i) + (along(view.offset, i) - along(before, i)) * factor;
    }
    placeView(view.scale * factor, offset);
}

} // namespace polyfab
