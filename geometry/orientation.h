// SPDX-License-Identifier: GPL-3.0-or-later
// On which side of a line a point lies, decided without error.
#pragma once

namespace polyfab {

struct Vec2 {
    double x = 0, y = 0;
    bool operator==(const Vec2&) const = default;
};

/// 1 when the three points run anticlockwise, -1 clockwise, 0 when they lie on one line. Exact
/// unless a product of coordinates overflows or falls below the smallest doubles.
[[nodiscard]] int orientation(const Vec2& a, const Vec2& b, const Vec2& c);

} // namespace polyfab
