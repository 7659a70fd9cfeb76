// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/distance.h"

#include "platform/platform.h"
#include "workbench/state.h"

#include <climits>
#include <cmath>
#include <cstdio>

namespace polyfab {
namespace {

struct Length {
    int feet;
    double inches; ///< what is left of a foot
};

/// Feet that no int holds are counted as far as they go, the rest stays inches; NaN has no feet.
Length feetAndInches(double units) {
    const double inches = 100 * units;
    const double feet = inches / 12;
    const int whole = feet < INT_MAX ? static_cast<int>(feet) : feet >= INT_MAX ? INT_MAX : 0;
    return {whole, inches - 12.0 * whole};
}

} // namespace

void tellDistance() {
    const auto& [a, b] = workbench.settable;
    const double dx = std::abs(b.x - a.x), dy = std::abs(b.y - a.y), dz = std::abs(b.z - a.z);
    const double distance = std::sqrt(dx * dx + dy * dy + dz * dz);
    const Length x = feetAndInches(dx), y = feetAndInches(dy), z = feetAndInches(dz),
                 line = feetAndInches(distance);
    char text[2048]; // the inches of the largest doubles take 313 characters
    std::snprintf(text, sizeof text,
                  "dx=%g, dy=%g, dz=%g, distance=%g\n"
                  "dx=%d ft %6.3f in, dy=%d ft %6.3f in, dz=%d ft %6.3f in, "
                  "distance=%d ft %6.3f in",
                  dx, dy, dz, distance, x.feet, x.inches, y.feet, y.inches, z.feet, z.inches,
                  line.feet, line.inches);
    platform().message("distance between the two settable points", text, Icon::none);
}

} // namespace polyfab
