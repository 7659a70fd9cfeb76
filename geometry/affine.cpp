// SPDX-License-Identifier: GPL-3.0-or-later
#include "geometry/affine.h"

#include <cmath>

namespace polyfab {
namespace {

/// Cofactor of the entry in row i and column k.
double cofactor(const AffineMap& map, int i, int k) {
    const double* const a = map.row[(i + 1) % 3];
    const double* const b = map.row[(i + 2) % 3];
    return a[(k + 1) % 3] * b[(k + 2) % 3] - a[(k + 2) % 3] * b[(k + 1) % 3];
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

} // namespace polyfab
