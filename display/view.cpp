// SPDX-License-Identifier: GPL-3.0-or-later
// The view transform, its inverse, and the fitting of the mesh into both panes.
#include "display/view.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace polyfab {
namespace {

constexpr double fill = 0.88;      ///< share of a pane side that a fitted mesh takes
constexpr double farthest = 1e300; ///< sums and products of what lies nearer stay finite
constexpr double direction[3] = {1, -1, -1};

using Triple = std::array<double, 3>;

/// Extent of the panes along screen x, y and z, never less than a pixel.
Triple sides(Size client) {
    const Panes panes = panesOf(client);
    return {std::max(1.0, double(panes.leftWidth)), std::max(1.0, double(panes.height)),
            std::max(1.0, double(panes.rightWidth))};
}

double smallest(const Triple& values) { return *std::min_element(values.begin(), values.end()); }

double middle(double side) { return (side - 1) / 2; }

void placeOffset(const Triple& offset) { view.offset = {offset[0], offset[1], offset[2]}; }

/// The turned axes at one pixel per unit, without the offset.
AffineMap turn() {
    AffineMap map;
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) map.row[i][k] = direction[i] * view.rotation[i][k];
    }
    return map;
}

/// Inverse of the linear part, by cofactors: a rotation that has drifted is inverted as it is.
AffineMap inverted(const AffineMap& map) {
    const auto minor = [&](int i, int k) {
        const double* const a = map.row[(i + 1) % 3];
        const double* const b = map.row[(i + 2) % 3];
        return a[(k + 1) % 3] * b[(k + 2) % 3] - a[(k + 2) % 3] * b[(k + 1) % 3];
    };
    double determinant = 0;
    for (int k = 0; k < 3; ++k) determinant += map.row[0][k] * minor(0, k);
    AffineMap inverse;
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) inverse.row[i][k] = minor(k, i) / determinant;
    }
    return inverse;
}

/// The box of positions along the turned axes.
struct Box {
    AffineMap map = turn();
    Triple low{farthest, farthest, farthest};
    Triple high{-farthest, -farthest, -farthest};

    void add(const Point& p) {
        const auto near = [](double v) { return std::abs(v) <= farthest; };
        if (!near(p.x) || !near(p.y) || !near(p.z)) return;
        const Vec3 v = map({p.x, p.y, p.z});
        const Triple at{v.x, v.y, v.z};
        for (std::size_t i = 0; i < 3; ++i) {
            low[i] = std::min(low[i], at[i]);
            high[i] = std::max(high[i], at[i]);
        }
    }
    bool empty() const { return low[0] > high[0]; }
};

Box boxOf(const Mesh& mesh) {
    Box box;
    bool live = false;
    for (int i = 0; i < mesh.nf; ++i) {
        const Face& face = mesh.faces[i];
        if (face.q == nullptr) continue;
        live = true;
        for (int k = 0; k < face.n; ++k) {
            if (face.q[k].p != nullptr) box.add(*face.q[k].p);
        }
    }
    for (int i = 0; !live && i < mesh.np; ++i) box.add(mesh.points[i]);
    if (box.empty()) box.low = box.high = {0, 0, 0};
    return box;
}

/// Pixels per unit at which the box fills the tightest of the three sides.
double fittingScale(const Box& box, const Triple& side) {
    double size = 0;
    double reach = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        size = std::max(size, box.high[i] - box.low[i]);
        reach = std::max({reach, std::abs(box.low[i]), std::abs(box.high[i])});
    }
    // What is as good as one point has no size of its own; further magnified, rounding would throw
    // it off the panes.
    if (size <= 1e-9 * reach || size == 0) return smallest(side) * fill / std::max(1.0, reach);
    double scale = farthest;
    for (std::size_t i = 0; i < 3; ++i) {
        const double extent = box.high[i] - box.low[i];
        if (extent > 0) scale = std::min(scale, side[i] * fill / extent);
    }
    return scale;
}

} // namespace

Panes panesOf(Size client) {
    const int left = std::max(client.width, 0) / 2;
    return {left, left + 1, std::max(client.width - left - 1, 0), std::max(client.height, 0)};
}

void resetView() {
    const Size client = view.client;
    const Triple side = sides(client);
    view = View();
    view.client = client;
    view.scale = smallest(side) / 2;
    view.offset = {middle(side[0]), middle(side[1]), middle(side[2])};
    stale = Stale();
    applyView();
}

void applyView() {
    AffineMap& forth = projection.toScreen;
    AffineMap& back = projection.toWorld;
    forth = turn();
    back = inverted(forth);
    const double offset[3] = {view.offset.x, view.offset.y, view.offset.z};
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) {
            forth.row[i][k] *= view.scale;
            back.row[i][k] /= view.scale;
        }
        forth.row[i][3] = offset[i];
        back.row[i][3] = 0;
    }
    const Vec3 origin = back(view.offset);
    back.row[0][3] = -origin.x;
    back.row[1][3] = -origin.y;
    back.row[2][3] = -origin.z;
    stale.points = true;
}

void fitView(const Mesh& mesh) {
    const Triple side = sides(view.client);
    const Box box = boxOf(mesh);
    view.scale = fittingScale(box, side);
    Triple offset;
    for (std::size_t i = 0; i < 3; ++i) {
        offset[i] = middle(side[i]) - view.scale * (box.low[i] / 2 + box.high[i] / 2);
    }
    placeOffset(offset);
    applyView();
}

void resizeView(Size client) {
    const Triple before = sides(view.client);
    const Triple after = sides(client);
    const double factor = smallest(after) / smallest(before);
    Triple offset{view.offset.x, view.offset.y, view.offset.z};
    for (std::size_t i = 0; i < 3; ++i) {
        offset[i] = middle(after[i]) + (offset[i] - middle(before[i])) * factor;
    }
    placeOffset(offset);
    view.scale *= factor;
    view.client = client;
    applyView();
}

void transformPoints(Mesh& mesh) {
    const AffineMap map = projection.toScreen;
    for (Point *p = mesh.points, *end = p + mesh.np; p != end; ++p) {
        const Vec3 screen = map({p->x, p->y, p->z});
        p->sx = screen.x;
        p->sy = screen.y;
        p->sz = screen.z;
    }
}

} // namespace polyfab
