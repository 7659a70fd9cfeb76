// SPDX-License-Identifier: GPL-3.0-or-later
// Ways to fill OB, for tests and fuzz targets.
#pragma once

#include "mesh/mesh.h"
#include "mesh/store.h"

#include <vector>

namespace polyfab::test {

/// Empties OB. A clear leaves the groups behind; here nothing may outlive the test.
inline void emptyMesh() {
    Group* groups = OB->groups;
    OB->clear(true);
    farfree(&groups);
}

/// Adds a face on the points of these numbers to OB.
inline Face* addFace(const std::vector<int>& points) {
    std::vector<Point*> list;
    for (const int point : points) list.push_back(OB->points + point);
    return OB->addFaceByPoints(list.data(), static_cast<int>(list.size()), false);
}

/// Adds the 8 points and 6 outward quads of a cube from -1 to 1 to OB.
inline void addCube() {
    const int base = OB->np;
    for (int i = 0; i < 8; ++i) {
        OB->addPoint((i & 1) ? 1 : -1, (i & 2) ? 1 : -1, (i & 4) ? 1 : -1, false);
    }
    constexpr int quads[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                                 {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
    for (const auto& [a, b, c, d] : quads) addFace({base + a, base + b, base + c, base + d});
}

/// Adds rows and columns of quads in the plane z = 0 that look along z to OB.
inline void addGrid(int columns, int rows) {
    const int base = OB->np;
    for (int y = 0; y <= rows; ++y) {
        for (int x = 0; x <= columns; ++x) OB->addPoint(x, y, 0, false);
    }
    for (int p = base; p < base + rows * (columns + 1); ++p) {
        if ((p - base) % (columns + 1) == columns) continue;
        addFace({p, p + 1, p + columns + 2, p + columns + 1});
    }
}

} // namespace polyfab::test
