// SPDX-License-Identifier: GPL-3.0-or-later
// A filter decides nearly all cases; what it leaves is summed as an expansion, a list of doubles
// none of which overlap, after Shewchuk, "Adaptive precision floating-point arithmetic and fast
// robust geometric predicates", 1997.
#include "geometry/orientation.h"

#include <cfloat>
#include <cmath>

namespace polyfab {
namespace {

/// A sum of doubles without error: its parts, the smallest first.
class Expansion {
  public:
    void addProduct(double a, double b) {
        const double product = a * b;
        add(std::fma(a, b, -product));
        add(product);
    }
    /// That of the largest part, which is more than all others together.
    [[nodiscard]] int sign() const {
        for (int i = count - 1; i >= 0; --i) {
            if (parts[i] != 0) return parts[i] > 0 ? 1 : -1;
        }
        return 0;
    }

  private:
    /// Knuth's two-sum, part by part.
    void add(double value) {
        for (int i = 0; i < count; ++i) {
            const double sum = value + parts[i];
            const double virtually = sum - value;
            parts[i] = (value - (sum - virtually)) + (parts[i] - virtually);
            value = sum;
        }
        parts[count++] = value;
    }

    double parts[12]{};
    int count = 0;
};

} // namespace

int orientation(const Vec2& a, const Vec2& b, const Vec2& c) {
    const double left = (a.x - c.x) * (b.y - c.y), right = (a.y - c.y) * (b.x - c.x);
    const double area = left - right;
    constexpr double epsilon = DBL_EPSILON / 2;
    const double error = (3 + 16 * epsilon) * epsilon * (std::abs(left) + std::abs(right));
    if (area > error) return 1;
    if (area < -error) return -1;
    Expansion exact;
    exact.addProduct(a.x, b.y);
    exact.addProduct(-a.y, b.x);
    exact.addProduct(b.x, c.y);
    exact.addProduct(-b.y, c.x);
    exact.addProduct(c.x, a.y);
    exact.addProduct(-c.y, a.x);
    return exact.sign();
}

} // namespace polyfab
