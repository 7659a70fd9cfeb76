// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "geometry/vec3.h"

#include <gtest/gtest.h>

namespace polyfab::test {

inline void expectNear(const Vec3& a, const Vec3& b, double tolerance = 1e-12) {
    for (int axis = 0; axis < 3; ++axis) {
        EXPECT_NEAR(along(a, axis), along(b, axis), tolerance) << "xyz"[axis];
    }
}

} // namespace polyfab::test
