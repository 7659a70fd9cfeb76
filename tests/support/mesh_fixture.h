// SPDX-License-Identifier: GPL-3.0-or-later
// A fixture with a recording platform and an empty OB that leaves no block behind.
#pragma once

#include "tests/support/fake_platform.h"
#include "tests/support/random_mesh.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace polyfab::test {

inline constexpr double infinity = std::numeric_limits<double>::infinity();
inline constexpr double nan = std::numeric_limits<double>::quiet_NaN();

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

} // namespace polyfab::test
