// SPDX-License-Identifier: GPL-3.0-or-later
// A fixture with a recording platform and an empty OB that leaves no block behind.
#pragma once

#include "mesh/mesh.h"
#include "mesh/store.h"
#include "tests/support/fake_platform.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace polyfab::test {

inline constexpr double infinity = std::numeric_limits<double>::infinity();
inline constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// Empties OB. A clear leaves the groups behind; here nothing may outlive the test.
inline void emptyMesh() {
    Group* groups = OB->groups;
    OB->clear(true);
    farfree(&groups);
}

class MeshTest : public testing::Test {
  protected:
    MeshTest() { createMesh(); }

    ~MeshTest() override {
        emptyMesh();
        destroyMesh();
        EXPECT_TRUE(leavesGroups || storeBlocks() == blocksBefore);
    }

    FakePlatform shown;
    bool leavesGroups = false; ///< as clearing the mesh, and so each reading of a file, does

  private:
    const int blocksBefore = storeBlocks();
};

using Log = std::vector<std::string>;
using Numbers = std::vector<int>;

/// Adds a face on the points of these numbers to OB.
inline Face* addFace(const Numbers& points) {
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

} // namespace polyfab::test
