// SPDX-License-Identifier: GPL-3.0-or-later
// A fixture with a recording platform and an empty OB that leaves no block behind.
#pragma once

#include "mesh/mesh.h"
#include "mesh/store.h"
#include "tests/support/fake_platform.h"

#include <gtest/gtest.h>

namespace polyfab::test {

class MeshTest : public testing::Test {
  protected:
    MeshTest() { createMesh(); }

    ~MeshTest() override {
        // releaseAll leaves the groups behind; here nothing may outlive the test.
        Group* groups = OB->groups;
        destroyMesh();
        farfree(&groups);
    }

    FakePlatform shown;
};

/// Adds the 8 points and 6 outward quads of a cube from -1 to 1 to OB.
inline void addCube() {
    int base = OB->np;
    for (int i = 0; i < 8; ++i) {
        OB->addPoint((i & 1) ? 1 : -1, (i & 2) ? 1 : -1, (i & 4) ? 1 : -1, false);
    }
    constexpr int quads[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                                 {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
    for (const auto& quad : quads) {
        Point* list[4];
        for (int k = 0; k < 4; ++k) list[k] = &OB->points[base + quad[k]];
        OB->addFaceByPoints(list, 4, false);
    }
}

} // namespace polyfab::test
