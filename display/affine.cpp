// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/affine.h"

#include <algorithm>
#include <cmath>

namespace polyfab {
namespace {

/// Cofactor of the entry in row i and column k.
double cofactor(const AffineMap& map, int i, int k) {
    const double* const a = map.row[(i + 1) % 3];
    const double* const b = map.row[(i + 2) % 3];
    return a[(k + 1) % 3] * b[(k + 2) % 3] - a[(k + 2) % 3] * b[(k + 1) % 3];
}

void add(Extent& extent, const AffineMap& map, const Point& p) {
    const auto near = [](double v) { return std::abs(v) <= farthest; };
    if (!near(p.x) || !near(p.y) || !near(p.z)) return;
    const Vec3 at = map({p.x, p.y, p.z});
    if (extent.empty()) extent = {at, at};
    for (int axis = 0; axis < 3; ++axis) {
        along(extent.low, axis) = std::min(along(extent.low, axis), along(at, axis));
        along(extent.high, axis) = std::max(along(extent.high, axis), along(at, axis));
    }
}

} // namespace

AffineMap product(const AffineMap& outer, const AffineMap& inner) {
    AffineMap map;
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 4; ++k) {
            map.row[i][k] = k == 3 ? outer.row[i][3] : 0;
            for (int j = 0; j < 3; ++j) map.row[i][k] += outer.row[i][j] * inner.row[j][k];
        }
    }
    return map;
}

double determinantOf(const AffineMap& map) {
    double determinant = 0;
    for (int k = 0; k < 3; ++k) determinant += map.row[0][k] * cofactor(map, 0, k);
    return determinant;
}

AffineMap inverseOf(const AffineMap& map) {
    const double determinant = determinantOf(map);
    AffineMap inverse;
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) inverse.row[i][k] = cofactor(map, k, i) / determinant;
    }
    const Vec3 back = inverse({map.row[0][3], map.row[1][3], map.row[2][3]});
    for (int i = 0; i < 3; ++i) inverse.row[i][3] = -along(back, i);
    return inverse;
}

AffineMap scaling(const Vec3& factors) {
    AffineMap map;
    for (int i = 0; i < 3; ++i) map.row[i][i] = along(factors, i);
    return map;
}

AffineMap rotation(int axis, double radians) {
    const int next = (axis + 1) % 3;
    const int last = (axis + 2) % 3;
    AffineMap map;
    map.row[next][next] = map.row[last][last] = std::cos(radians);
    map.row[last][next] = std::sin(radians);
    map.row[next][last] = -std::sin(radians);
    return map;
}

AffineMap about(const Vec3& pivot, const AffineMap& map) {
    AffineMap moved = map;
    for (auto& row : moved.row) row[3] = 0;
    const Vec3 image = moved(pivot);
    for (int i = 0; i < 3; ++i) moved.row[i][3] = along(pivot, i) - along(image, i);
    return moved;
}

Extent extentOfFaces(const Mesh& mesh, const AffineMap& map, bool selectedOnly) {
    Extent extent;
    for (const Face* face = mesh.faces; face != mesh.faces + mesh.nf; ++face) {
        if (face->q == nullptr || (selectedOnly && !face->selected)) continue;
        for (const FaceCorner* q = face->q; q != face->q + face->n; ++q) {
            if (q->p != nullptr) add(extent, map, *q->p);
        }
    }
    return extent;
}

Extent extentOfPoints(const Mesh& mesh, const AffineMap& map) {
    Extent extent;
    for (const Point* p = mesh.points; p != mesh.points + mesh.np; ++p) add(extent, map, *p);
    return extent;
}

} // namespace polyfab
